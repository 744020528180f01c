#include "machine/offline/offline_machine.h"

#include <fcntl.h>
#include <unistd.h>

#include "base/product.h"
#include "base/text.h"

namespace machine {

namespace {

base::Result<DriveMap> map_drives(const OfflineOptions& options) {
    DriveMap drives;
    for (const auto& [letter, folder] : options.drives) {
        if (const auto added = drives.add_drive(letter, folder); !added) return added.error();
    }
    const auto program = parse_path(options.program_directory);
    if (!program || program->parts.empty())
        return base::Error{
            base::ErrorKind::invalid,
            "the program's folder must be a Windows path such as C:\\Program Files\\Brightlock "
            "Suite"};
    if (const auto added = drives.add(*program, options.executables); !added) return added.error();
    return drives;
}

}  // namespace

base::Result<std::unique_ptr<OfflineMachine>> OfflineMachine::open(const OfflineOptions& options) {
    auto drives = map_drives(options);
    if (!drives) return drives.error();
    auto installation = describe_installation(*drives);
    if (!installation) return installation.error();
    auto software = locate_hive(*drives, installation->system_directory + "\\config\\software");
    if (!software) return software.error();
    const std::string state = options.state_folder.empty() ? default_state_folder() : options.state_folder;
    if (const auto made = make_state_folder(state); !made) return made.error();
    auto user = hostfile::place_of(state + "/user.hive");
    if (!user) return user.error();
    return std::unique_ptr<OfflineMachine>(
        new OfflineMachine(std::move(*drives), std::move(*installation), std::move(*software),
                           std::move(*user), mounts_folder(state, options.drives.at('C')), options));
}

OfflineMachine::OfflineMachine(DriveMap drives, Installation installation, HostPlace software_hive,
                               HostPlace user_hive, std::string mounts, const OfflineOptions& options)
    : drives_(std::move(drives)),
      installation_(std::move(installation)),
      mounts_(std::move(mounts)),
      system_(drives_, installation_, parse_path(options.program_directory)->text(), options.command_line),
      files_(drives_, mounts_, system_),
      registry_(drives_, mounts_, std::move(software_hive), std::move(user_hive)),
      processes_(drives_, mounts_, registry_, system_, options.on_report) {}

void OfflineMachine::write_pending() {
    const std::vector<std::string> names = registry_.open_mounts();
    (void)release();
    for (const std::string& name : names) {
        const auto record = mounts_.find(name);
        if (!record || record->sealed.empty()) continue;
        const auto tool = processes_.start(
            '"' + system_.program_directory() + '\\' + product::hive_tool_file + "\" unload HKU\\" + name,
            WindowStyle::hidden);
        while (tool.error == no_error && processes_.exit_code(tool.id) == still_active) {
        }
    }
}

}  // namespace machine
