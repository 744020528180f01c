#pragma once

#include <cstdint>

namespace machine {

/// Codes of Windows' own, with Windows' numbers (winerror.h).
using WinCode = uint32_t;

constexpr WinCode success = 0;
constexpr WinCode file_not_found = 2;      ///< no such key, no such value
constexpr WinCode access_denied = 5;       ///< no right, or a place where Windows allows no key
constexpr WinCode invalid_parameter = 87;  ///< a name that is too long
constexpr WinCode disk_full = 112;
constexpr WinCode bad_path_name = 161;  ///< a subkey that begins with a backslash
constexpr WinCode more_data = 234;
constexpr WinCode no_more_items = 259;
constexpr WinCode registry_corrupt = 1015;
constexpr WinCode registry_io_failed = 1016;

/// What a process that still runs answers for its exit code.
constexpr uint32_t still_active = 259;

/// Run-time errors of the toolkit's file statements, by number. 0: none.
using FileError = int;

constexpr FileError no_error = 0;
constexpr FileError bad_file_name = 52;
constexpr FileError no_such_file = 53;
constexpr FileError device_error = 57;
constexpr FileError device_full = 61;
constexpr FileError device_not_there = 68;   ///< no such drive
constexpr FileError permission_denied = 70;  ///< held by another program, or no right
constexpr FileError path_access = 75;        ///< a folder where a file is wanted, an empty path
constexpr FileError no_such_path = 76;       ///< a folder on the way is missing

}  // namespace machine
