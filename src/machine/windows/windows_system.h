#pragma once

#include "machine/system.h"

namespace machine {

/// Facts of the running Windows and of this process.
class WindowsSystem : public System {
  public:
    Version version() override;
    std::string windows_directory() override;
    std::string system_directory() override;
    std::optional<std::string> profiles_directory() override;
    std::optional<std::string> user_name() override;
    uint32_t logical_drives() override;
    std::optional<std::vector<std::string>> token_groups() override;
    void set_wallpaper(std::string_view path) override;
    ClockTime local_time() override;
    std::string long_time() override;
    std::string program_directory() override;
    std::string program_stem() override;
    std::string command_line() override;
};

}  // namespace machine
