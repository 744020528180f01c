#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/codes.h"

namespace machine {

struct Version {
    uint32_t platform = 0;  ///< 0 Win32s, 1 Windows 9X, 2 Windows NT
    uint32_t major = 0;
    uint32_t minor = 0;
    uint32_t build = 0;
};

struct ClockTime {
    int hour = 0, minute = 0, second = 0;
};

/// Facts of the machine and of the process.
class System {
  public:
    virtual ~System() = default;

    virtual Version version() = 0;
    /// Without a closing backslash but at a drive's root; empty where the call fails.
    virtual std::string windows_directory() = 0;
    virtual std::string system_directory() = 0;
    /// Without a closing backslash; none where the system has no such call or it fails.
    virtual std::optional<std::string> profiles_directory() = 0;
    /// Without a NUL; none where nobody is logged on.
    virtual std::optional<std::string> user_name() = 0;
    /// Bit 0 is A.
    virtual uint32_t logical_drives() = 0;
    /// The groups of the process's token as SID texts; none where no token was to be had.
    virtual std::optional<std::vector<std::string>> token_groups() = 0;
    /// Puts a picture on the desktop of the person who runs the program.
    virtual void set_wallpaper(std::string_view path) = 0;

    virtual ClockTime local_time() = 0;
    /// The time of day as the locale of the person writes it, with seconds, without a zone.
    virtual std::string long_time() = 0;

    /// The program's folder on that machine, without a closing backslash.
    virtual std::string program_directory() = 0;
    /// The program file's name without its ending.
    virtual std::string program_stem() = 0;
    /// Everything behind the program's name.
    virtual std::string command_line() = 0;
};

enum class WindowStyle { hidden = 0, normal_focus = 1, minimized_focus = 2 };

class Processes {
  public:
    virtual ~Processes() = default;

    struct Started {
        FileError error = no_error;  ///< no_such_file where the program is not there
        uint32_t id = 0;
    };
    virtual Started start(std::string_view command_line, WindowStyle style) = 0;
    /// still_active while it runs.
    virtual uint32_t exit_code(uint32_t id) = 0;
    /// Opens a web address; nothing is said where that fails.
    virtual void open_address(std::string_view address) = 0;
};

}  // namespace machine
