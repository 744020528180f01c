#include <sched.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "regg/hive_tool.h"

namespace {

using machine::first_inherited;
using machine::HandedHive;

regg::Run failed(base::ErrorKind why, const std::string& detail) {
    regg::Run run;
    run.report.why = why;
    run.report.detail = detail;
    return run;
}

/// How many descriptors the program that started us has left to us.
int count_inherited() {
    const char* const count = std::getenv(machine::inherited_variable);
    return count ? std::atoi(count) : 0;
}

std::optional<HandedHive> handed_hive() {
    const int count = count_inherited();
    if (count < 2) return std::nullopt;
    return HandedHive{machine::Descriptor(first_inherited + 1),
                      count < 3 ? machine::Descriptor() : machine::Descriptor(first_inherited + 2)};
}

base::Result<regg::Setting> setting_of_environment() {
    const char* drives = std::getenv("BRIGHTLOCK_DRIVES");
    const char* mounts = std::getenv("BRIGHTLOCK_MOUNTS");
    auto map = machine::DriveMap::parse(drives ? drives : "");
    if (!map) return map.error();
    const std::string folder = mounts ? mounts : machine::default_state_folder() + "/mounts/host";
    return regg::Setting{std::move(*map), machine::MountTable(folder), handed_hive()};
}

regg::Run work(const std::vector<std::string>& words) {
    try {
        auto setting = setting_of_environment();
        return setting ? regg::run(std::move(*setting), words)
                       : failed(setting.error().kind, setting.error().message);
    } catch (const std::exception&) {
        return failed(base::ErrorKind::no_space, "there is not enough memory for this hive");
    }
}

/// To the program that asked, or to the person at the terminal.
void tell(const regg::Run& run) {
    if (count_inherited() > 0) {
        (void)machine::send(first_inherited, machine::encode(run.report), run.hive);  // nobody else to tell
    } else if (!run.report.detail.empty()) {
        (void)std::fprintf(stderr, "regg: %s\n", run.report.detail.c_str());
    }
}

}  // namespace

int main(int count, char** words) {
    (void)std::signal(SIGXFSZ, SIG_IGN);  // a limit on file sizes is an error to report like a full disk
    (void)std::signal(SIGPIPE, SIG_IGN);  // who asked may be gone; what is begun is ended all the same
    const regg::Run run = work({words + 1, words + count});
    tell(run);
    (void)sched_yield();  // who waits for the report goes first: clearing away may take as long as the work
    return run.report.succeeded ? EXIT_SUCCESS : EXIT_FAILURE;
}
