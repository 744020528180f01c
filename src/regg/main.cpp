#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "regg/hive_tool.h"

namespace {

using machine::ToolReport;

ToolReport failed(base::ErrorKind why, const std::string& detail) {
    ToolReport report;
    report.why = why;
    report.detail = detail;
    return report;
}

base::Result<regg::Setting> setting_of_environment() {
    const char* drives = std::getenv("BRIGHTLOCK_DRIVES");
    const char* mounts = std::getenv("BRIGHTLOCK_MOUNTS");
    auto map = machine::DriveMap::parse(drives ? drives : "");
    if (!map) return map.error();
    const std::string folder = mounts ? mounts : machine::default_state_folder() + "/mounts/host";
    return regg::Setting{std::move(*map), machine::MountTable(folder)};
}

ToolReport work(const std::vector<std::string>& words) {
    try {
        const auto setting = setting_of_environment();
        return setting ? regg::run(*setting, words) : failed(setting.error().kind, setting.error().message);
    } catch (const std::exception&) {
        return failed(base::ErrorKind::no_space, "there is not enough memory for this hive");
    }
}

/// To the program that asked, or to the person at the terminal.
void tell(const ToolReport& report) {
    const char* descriptor = std::getenv(machine::report_descriptor_variable);
    if (descriptor) {
        (void)machine::write_all(std::atoi(descriptor), machine::encode(report));  // nobody else to tell
    } else if (!report.detail.empty()) {
        (void)std::fprintf(stderr, "regg: %s\n", report.detail.c_str());
    }
}

}  // namespace

int main(int count, char** words) {
    (void)std::signal(SIGXFSZ, SIG_IGN);  // a limit on file sizes is an error to report like a full disk
    (void)std::signal(SIGPIPE, SIG_IGN);  // who asked may be gone; what is begun is ended all the same
    const ToolReport report = work({words + 1, words + count});
    tell(report);
    return report.succeeded ? EXIT_SUCCESS : EXIT_FAILURE;
}
