#pragma once

#include <string>

#include "machine/files.h"
#include "machine/offline/drive_map.h"
#include "machine/offline/mount_table.h"
#include "machine/system.h"

namespace machine {

/// The files of an installation on disk.
///
/// In use is what another program has locked, and a hive that is mounted. Names that code page 1252 cannot
/// spell are left out of every search and cannot be asked for.
class OfflineFiles : public Files {
  public:
    OfflineFiles(const DriveMap& drives, const MountTable& mounts, System& system)
        : drives_(drives), mounts_(mounts), system_(system) {}

    Measured open_binary(std::string_view path) override;
    FileError read(std::string_view path, std::string& bytes) override;
    FileError write(std::string_view path, std::string_view bytes) override;
    FileError write_at(std::string_view path, int64_t offset, std::string_view bytes) override;
    FileError remove(std::string_view path) override;
    uint32_t attributes(std::string_view path) override;
    FileError set_attributes(std::string_view path, uint32_t attributes) override;
    std::optional<std::vector<FoundFile>> find(std::string_view pattern) override;
    FileError delete_folder(std::string_view path) override;
    FileError copy_folder(std::string_view path, std::string_view target) override;
    std::string read_profile(std::string_view section, std::string_view key, std::string_view file) override;
    bool write_profile(std::string_view section, std::string_view key, std::optional<std::string_view> value,
                       std::string_view file) override;

  private:
    bool is_in_use(const HostPlace& place) const;
    /// As is_protected, whatever name led to the folder: FAT and NTFS find one by its short name too.
    bool is_kept(const Descriptor& folder, char drive) const;
    /// no_error where a file may be replaced or removed.
    FileError check_change(const HostPlace& place) const;

    const DriveMap& drives_;
    const MountTable& mounts_;
    System& system_;
};

}  // namespace machine
