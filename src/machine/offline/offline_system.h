#pragma once

#include <string>

#include "machine/offline/drive_map.h"
#include "machine/offline/installation.h"
#include "machine/system.h"

namespace machine {

/// Facts of the installation, and of the person and the process at this Linux machine.
class OfflineSystem : public System {
  public:
    OfflineSystem(const DriveMap& drives, Installation installation, std::string program_directory,
                  std::string command_line)
        : drives_(drives),
          installation_(std::move(installation)),
          program_directory_(std::move(program_directory)),
          command_line_(std::move(command_line)) {}

    Version version() override { return installation_.version; }
    std::string windows_directory() override { return installation_.windows_directory; }
    std::string system_directory() override { return installation_.system_directory; }
    std::optional<std::string> profiles_directory() override { return installation_.profiles_directory; }
    /// The Linux login.
    std::optional<std::string> user_name() override;
    uint32_t logical_drives() override;
    /// An administrator is who may write the installation's disk.
    std::optional<std::vector<std::string>> token_groups() override;
    void set_wallpaper(std::string_view) override {}  // there is no desktop of that Windows
    ClockTime local_time() override;
    std::string long_time() override;
    std::string program_directory() override { return program_directory_; }
    std::string program_stem() override { return "britlock"; }
    std::string command_line() override { return command_line_; }

  private:
    const DriveMap& drives_;
    Installation installation_;
    std::string program_directory_;
    std::string command_line_;
};

}  // namespace machine
