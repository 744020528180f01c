#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "regf_file/hive_file.h"

/// What is known of one mounted hive, as a stream of frames (length, CRC-32, content) that only ever grows:
/// first the mount, then each change, a seal wherever a run of changes is complete, and that the writing of
/// the hive failed where it did. A frame that was cut off by a crash or a full disk ends the stream, and so
/// does one of a later version.
namespace machine {

struct Mount {
    std::string name;       ///< below HKEY_USERS, ANSI
    std::string file;       ///< the hive file as it was named: a Windows path (ANSI) or a host path
    regf::HiveStamp stamp;  ///< of the file at that time
    bool operator==(const Mount&) const = default;
};

struct MountRecord {
    Mount mount;
    std::vector<regf::Change> sealed;  ///< all changes before the last seal
    bool unsealed = false;             ///< more of them behind it: of a run that died or that still goes on
    size_t sealed_bytes = 0;           ///< where what stands fast ends
    bool failed_before = false;        ///< to write the sealed changes has been tried in vain
};

std::string mount_frame(const Mount& mount);
std::string change_frame(const regf::Change& change);
std::string seal_frame();
std::string failure_frame();

/// None where not even the mount can be read.
std::optional<Mount> parse_mount(std::string_view bytes);
std::optional<MountRecord> parse_record(std::string_view bytes);

}  // namespace machine
