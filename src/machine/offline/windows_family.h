#pragma once

#include <array>
#include <cstdint>

namespace machine {

/// A Windows that is served from a disk, and what it looks like there when it was just installed.
struct WindowsFamily {
    const char* version;
    const char* build;
    const char* name;
    const char* product;         ///< as its registry calls it
    const char* folder;          ///< the Windows directory's name on C
    const char* profiles;        ///< below the root of C
    const char* profiles_value;  ///< what the registry says of that; null: nothing
    uint32_t machine_minor;      ///< of the format of the machine's hives
};

constexpr std::array windows_families = {
    WindowsFamily{"4.0", "1381", "Windows NT 4", "Microsoft Windows NT", "WINNT", "WINNT/Profiles", nullptr,
                  3},
    WindowsFamily{"5.0", "2195", "Windows 2000", "Microsoft Windows 2000", "WINNT", "Documents and Settings",
                  "%SystemDrive%\\Documents and Settings", 3},
    WindowsFamily{"5.1", "2600", "Windows XP", "Microsoft Windows XP", "WINDOWS", "Documents and Settings",
                  "%SystemDrive%\\Documents and Settings", 5},
};

}  // namespace machine
