#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "machine/offline/host_file.h"
#include "machine/windows_path.h"

namespace machine {

/// Which folder of this Linux system stands for which drive of the installation. A path is walked from its
/// drive's folder level by level, each found without regard to case, no link followed: whatever a user of
/// that disk has planted, nothing outside the drive is reached.
class DriveMap {
  public:
    /// Shows a host folder at a place of the installation: a drive's root, or the program's own folder.
    base::Result<Done> add(const WindowsPath& at, const std::string& host_folder);
    base::Result<Done> add_drive(char letter, const std::string& host_folder);

    /// `C=/mnt/disk;D=/data`, with `%` and `;` in folders as %25 and %3B: how the hive tool learns the
    /// drives.
    std::string text() const;
    static base::Result<DriveMap> parse(std::string_view text);

    bool is_empty() const { return entries_.empty(); }
    /// Bit 0 is A.
    uint32_t letters() const;

    /// The place of a file or folder. no_such_path: no such drive, or a folder on the way is missing;
    /// permission_denied: a link on the way.
    FileResult<HostPlace> resolve(const WindowsPath& path) const;
    FileResult<HostPlace> resolve(std::string_view path) const;
    FileResult<Descriptor> open_folder(const WindowsPath& path) const;

  private:
    struct Entry {
        WindowsPath at;
        std::string host_folder;
        Descriptor folder;
    };
    const Entry* entry_of(const WindowsPath& path) const;

    std::vector<Entry> entries_;
};

/// A Windows path in the code page, or a host path, as UTF-8.
std::string file_for_people(const std::string& file);

/// The file of a hive: a Windows path by the drive map, or, where no drive is known, a host path: what works
/// on an installation keeps to its drives. `missing` only where its folder was opened and the file is not in
/// it; a disk that is not there or fails is `io`, what may not be opened `refused`.
base::Result<HostPlace> locate_hive(const DriveMap& drives, const std::string& file);

}  // namespace machine
