#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "machine/files.h"

/// Windows' .ini files: `[section]` lines, `key=value` lines, comments behind `;`. Sections and keys compare
/// without case and without the blanks around them; of several with one name the first counts.
namespace machine {

/// The value as GetPrivateProfileStringA gives it to a buffer of 255 bytes with an empty default: without the
/// blanks around it and one pair of quotes, cut to 254 bytes and at its first NUL.
std::string profile_value(std::string_view text, std::string_view section, std::string_view key);

/// The text with one entry set, or removed (no value), as WritePrivateProfileStringA leaves it: all other
/// lines stay byte for byte. A new entry becomes the last of its section, before the blank lines that close
/// it; a new section the last of the file.
std::string with_profile_value(std::string_view text, std::string_view section, std::string_view key,
                               std::optional<std::string_view> value);

/// Files::read_profile and Files::write_profile over the other calls of `files`.
std::string read_profile_file(Files& files, std::string_view windows_directory, std::string_view section,
                              std::string_view key, std::string_view file);
bool write_profile_file(Files& files, std::string_view windows_directory, std::string_view section,
                        std::string_view key, std::optional<std::string_view> value, std::string_view file);

}  // namespace machine
