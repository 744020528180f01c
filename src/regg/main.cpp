#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "regg/hive_tool.h"

namespace {

regf::Result<regg::Setting> setting_of_environment() {
    const char* drives = std::getenv("BRIGHTLOCK_DRIVES");
    const char* mounts = std::getenv("BRIGHTLOCK_MOUNTS");
    auto map = machine::DriveMap::parse(drives ? drives : "");
    if (!map) return map.error();
    const std::string folder = mounts ? mounts : machine::default_state_folder() + "/mounts/host";
    return regg::Setting{std::move(*map), drives != nullptr, machine::MountTable(folder)};
}

int work(const std::vector<std::string>& words) {
    const auto setting = setting_of_environment();
    std::string note;
    const auto done = setting ? regg::run(*setting, words, note) : regf::Result<Done>(setting.error());
    const std::string& line = done ? note : done.error().message;
    if (!line.empty()) (void)std::fprintf(stderr, "regg: %s\n", line.c_str());
    return done ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int count, char** words) {
    (void)std::signal(SIGXFSZ, SIG_IGN);  // a limit on file sizes is an error to report like a full disk
    try {
        return work({words + 1, words + count});
    } catch (const std::exception&) {  // a hive may be larger than the memory
        (void)std::fputs("regg: there is not enough memory for this hive\n", stderr);
        return EXIT_FAILURE;
    }
}
