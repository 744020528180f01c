#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "machine/files.h"

namespace machine {

/// A full path, taken apart as Windows does it: both slashes part, "." and ".." are resolved by the text
/// alone and never lead above the root, dots and blanks at the end of a name are dropped.
struct WindowsPath {
    char drive = 'C';                ///< upper case
    std::vector<std::string> parts;  ///< none: the root

    std::string text() const;
    WindowsPath parent() const;
    /// True for the folder itself and for everything below it.
    bool lies_in(const WindowsPath& folder) const;
    bool operator==(const WindowsPath& other) const;
};

/// path_access for the empty path and for a device's name (NUL, COM1 ...); no_such_path for one without a
/// drive, which would depend on where a program was started; bad_file_name for a character that no name may
/// hold, the colon of a stream included.
BasicResult<WindowsPath, FileError> parse_path(std::string_view path);

/// Can Windows address a file of this name? Not one with a forbidden character, a device's name, or a dot or
/// blank at its end.
bool is_plain_name(std::string_view name);

/// A search pattern: its folder, and the last part with its wildcards.
struct SearchPattern {
    WindowsPath folder;
    std::string names;
};
BasicResult<SearchPattern, FileError> parse_pattern(std::string_view pattern);

/// As Windows NT searches: "*.*" fits every name, "Docs*.*" also "Docs", "*." names without a dot.
bool fits(std::string_view name, std::string_view pattern);

/// What a search answers that has looked through its folder: sorted without case; none where not even "."
/// and ".." fit. A root holds neither, but is a folder all the same: an empty drive is there.
std::optional<std::vector<FoundFile>> search_result(const SearchPattern& pattern,
                                                    std::vector<FoundFile> found);

}  // namespace machine
