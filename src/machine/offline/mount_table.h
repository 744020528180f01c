#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/offline/drive_map.h"
#include "machine/offline/handed_hive.h"
#include "machine/offline/mount_record.h"

namespace machine {

/// The hives that the hive tool has mounted on one installation: a folder with one record for each. Names
/// compare without case.
class MountTable {
  public:
    explicit MountTable(std::string folder) : folder_(std::move(folder)) {}

    const std::string& folder() const { return folder_; }
    /// All that can be read, by name; damaged records are passed over.
    base::Result<std::vector<Mount>> mounts() const;
    /// `missing`: there is no such record, and nothing else is called so. `damaged`: nobody can read it.
    /// `refused`: another user could have written it.
    base::Result<MountRecord> find(std::string_view name) const;

    /// `refused` where the name is taken; a record that nobody can read takes none. The record is there as a
    /// whole or not at all.
    base::Result<Done> add(const Mount& mount) const;
    /// Removes the record of this very mount, or one that nobody can read; what another instance has mounted
    /// under its name since stays.
    base::Result<Done> remove(const Mount& mount) const;
    /// The same, and it does not come back after a power cut: for changes that were told to be lost.
    base::Result<Done> drop(const Mount& mount) const;
    /// Opens a record for appending, with all behind its last seal cut off.
    base::Result<Descriptor> open_sealed(const MountRecord& record) const;
    /// Notes that the hive could not be written. False where that cannot be noted.
    bool note_failure(const MountRecord& record) const;

  private:
    base::Result<Descriptor> open_folder() const;
    base::Result<HostPlace> place_of(std::string_view name) const;
    /// Holds the table against other instances as long as the place is kept.
    base::Result<HostPlace> lock_place_of(std::string_view name) const;

    std::string folder_;
};

/// `$XDG_STATE_HOME/brightlock`, or the usual place below the home folder. Where the environment tells of
/// another user's folders, as it may for root, they are passed over.
std::string default_state_folder();
/// Makes the folder where it is missing. `refused` where others could write in it.
base::Result<Done> make_state_folder(const std::string& folder);
/// Where the mounts of an installation are kept: one folder for each folder that stands for a drive C.
std::string mounts_folder(const std::string& state_folder, const std::string& drive_c);

/// A mounted hive, held against every other program, with its sealed changes made in memory.
struct MountedHive {
    MountRecord record;
    HostPlace place;
    hostfile::FileLock lock;
    regf::HiveFile file;
    Descriptor memory;  ///< for the next process; not open where that must read the file itself

    HandedHive hand_over() { return {lock.hand_over(), std::move(memory)}; }
};
/// Of a record that find() has found. `changed`: somebody else has written the file since it was mounted.
/// `missing`: nothing is mounted there any more, or the file is no longer in its folder.
base::Result<MountedHive> open_mounted(const DriveMap& drives, const MountTable& mounts,
                                       const MountRecord& found,
                                       std::optional<HandedHive> handed = std::nullopt,
                                       std::chrono::milliseconds patience = hostfile::a_moment);
/// The sealed changes stand in the file: a run wrote them and died before it could remove the record, or is
/// about to.
bool is_written(const DriveMap& drives, const MountRecord& record);
/// A hive of the table is this very file.
base::Result<bool> is_mounted(const DriveMap& drives, const MountTable& mounts, const HostPlace& file);

}  // namespace machine
