#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "machine/offline/mount_table.h"
#include "machine/offline/tool_report.h"

/// The work of the hive tool. A hive that is mounted is a record beside the installation; its file is written
/// once, when it is unloaded, and as a whole.
namespace regg {

/// What the tool finds out about its surroundings.
struct Setting {
    machine::DriveMap drives;  ///< none: files can be named by host paths only
    machine::MountTable mounts;
    std::optional<machine::HandedHive> handed{};  ///< the hive to be unloaded, from the program that had it
};

/// What came of a run.
struct Run {
    machine::ToolReport report;
    std::optional<machine::HandedHive> hive;  ///< that was loaded
    /// What lies in memory, and the room of the file that was replaced. It is cleared away after the report:
    /// nobody need wait for that but the next who writes.
    std::shared_ptr<const void> remains;
};

/// `load <file> HKU\<name>` or `unload HKU\<name>`, words in UTF-8. After a success too the report may have a
/// detail: something that should be known.
Run run(Setting setting, const std::vector<std::string>& words);

}  // namespace regg
