#pragma once

#include "machine/files.h"
#include "machine/system.h"

namespace machine {

/// The files of the running Windows. Besides paths with a drive letter those of a network folder are served.
class WindowsFiles : public Files {
  public:
    /// `system` tells the folders that are protected.
    explicit WindowsFiles(System& system) : system_(system) {}

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
    std::string profile_path(std::string_view file) const;

    System& system_;
};

}  // namespace machine
