#pragma once

#include "host.h"
#include "machine/offline/offline_machine.h"
#include "machine/offline/sample_installation.h"
#include "machine/subject.h"

/// A sample installation in a folder of its own, with a machine on it. The real hive tool serves it.
class OfflineFixture {
  public:
    explicit OfflineFixture(SampleFamily family = SampleFamily::winxp) {
        must(make_sample_installation(disk().string(), family));
        options.drives = {{'C', disk().string()}};
        options.executables = PROGRAM_FOLDER;
        options.state_folder = (folder_.path() / "state").string();
        options.on_report = [this](const ToolReport& report) { reports.push_back(report); };
        open();
    }

    /// Another run of the program on the same installation, in place of the one before.
    void open() {
        machine_.reset();
        machine_ = must(OfflineMachine::open(options));
    }

    fs::path disk() const { return folder_.path() / "disk"; }
    fs::path scratch() const { return folder_.path(); }
    fs::path hive_of(const std::string& user) const {
        std::string profiles = machine_->installation().profiles_directory.substr(3);  // without C:
        std::replace(profiles.begin(), profiles.end(), '\\', '/');
        return disk() / profiles / user / "NTUSER.DAT";
    }
    const std::string& mounts_folder() const { return machine_->mounts().folder(); }
    Machine machine() { return machine_->machine(); }
    OfflineMachine& offline() { return *machine_; }

    uint32_t load(const std::string& user) {
        return tool("load \"" + windows_hive_of(user) + "\" HKU\\" + user);
    }
    uint32_t unload(const std::string& user) { return tool("unload HKU\\" + user); }
    uint32_t tool(const std::string& arguments) {
        return run_command(machine().processes, hive_tool + arguments);
    }
    static std::string windows_hive_of(const std::string& user) {
        return "C:\\Documents and Settings\\" + user + "\\NTUSER.DAT";
    }

    /// What the hive tool told of failures and losses, a line each.
    std::string troubles() const {
        std::string out;
        for (const ToolReport& report : reports) {
            if (report.succeeded && !report.changes_lost) continue;
            out += (report.changes_lost ? "lost: " : "failed: ") + report.detail + "\n";
        }
        return out;
    }

    OfflineOptions options;
    std::vector<ToolReport> reports;

  private:
    TemporaryFolder folder_;
    std::unique_ptr<OfflineMachine> machine_;
};
