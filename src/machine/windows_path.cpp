#include "machine/windows_path.h"

#include <algorithm>

#include "base/text.h"

namespace machine {

namespace {

constexpr std::string_view separators = "\\/";

std::string_view without_tail(std::string_view name) {
    const auto last = name.find_last_not_of(". ");
    return last == std::string_view::npos ? std::string_view() : name.substr(0, last + 1);
}

/// Windows takes these for devices in every folder and with every ending.
bool is_device(std::string_view name) {
    const std::string stem = text::upper(text::trim_blanks(name.substr(0, name.find('.'))));
    for (const char* device : {"CON", "PRN", "AUX", "NUL", "CLOCK$", "CONIN$", "CONOUT$"}) {
        if (stem == device) return true;
    }
    return stem.size() == 4 && (stem.starts_with("COM") || stem.starts_with("LPT")) && stem[3] >= '1' &&
           stem[3] <= '9';
}

FileError check_name(std::string_view name) {
    const bool forbidden = std::any_of(name.begin(), name.end(), [](char c) {
        return static_cast<unsigned char>(c) < 32 ||
               std::string_view("<>:\"|?*\\/").find(c) != std::string::npos;
    });
    if (forbidden) return bad_file_name;
    return is_device(name) ? path_access : no_error;
}

bool has_drive(std::string_view path) {
    const auto letter = static_cast<unsigned char>(text::upper(path.empty() ? ' ' : path[0]));
    return path.size() >= 3 && letter >= 'A' && letter <= 'Z' && path[1] == ':' &&
           separators.find(path[2]) != std::string_view::npos;
}

/// The pattern in the signs that a file system of NT works with: `<` is a star that stops at the last dot,
/// `>` a mark that may also stand for nothing before a dot or at the end, `"` a dot or nothing at the end.
std::string native_pattern(std::string_view pattern) {
    if (pattern == "*.*") return "*";
    std::string out;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const char next = i + 1 < pattern.size() ? pattern[i + 1] : '\0';
        if (pattern[i] == '?') {
            out += '>';
        } else if (pattern[i] == '.' && (next == '?' || next == '*')) {
            out += '"';
        } else if (pattern[i] == '*' && next == '.' && i + 2 == pattern.size()) {
            out += '<';
            break;
        } else {
            out += text::upper(pattern[i]);
        }
    }
    return out;
}

}  // namespace

std::string WindowsPath::text() const {
    std::string out = {drive, ':'};
    for (const std::string& part : parts)
        out += "\\" + part;
    return parts.empty() ? out + "\\" : out;
}

WindowsPath WindowsPath::parent() const {
    WindowsPath out = *this;
    if (!out.parts.empty()) out.parts.pop_back();
    return out;
}

bool WindowsPath::lies_in(const WindowsPath& folder) const {
    return drive == folder.drive && parts.size() >= folder.parts.size() &&
           std::equal(folder.parts.begin(), folder.parts.end(), parts.begin(), text::equal_ignoring_case);
}

bool WindowsPath::operator==(const WindowsPath& other) const {
    return parts.size() == other.parts.size() && lies_in(other);
}

BasicResult<WindowsPath, FileError> parse_path(std::string_view path) {
    path = text::up_to_nul(path);
    if (path.empty()) return path_access;
    if (!has_drive(path)) return no_such_path;
    WindowsPath out{text::upper(path[0]), {}};
    path.remove_prefix(3);
    while (!path.empty()) {
        const size_t end = std::min(path.find_first_of(separators), path.size());
        const std::string_view part = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        if (part == "..") {
            if (!out.parts.empty()) out.parts.pop_back();
        } else if (!part.empty() && part != ".") {
            const std::string_view name = without_tail(part);
            if (name.empty()) return bad_file_name;
            if (const FileError error = check_name(name)) return error;
            out.parts.emplace_back(name);
        }
    }
    return out;
}

bool is_plain_name(std::string_view name) {
    return !name.empty() && without_tail(name) == name && check_name(name) == no_error;
}

BasicResult<SearchPattern, FileError> parse_pattern(std::string_view pattern) {
    pattern = text::up_to_nul(pattern);
    const auto last = pattern.find_last_of(separators);
    if (last == std::string_view::npos) return no_such_path;
    const auto folder = parse_path(pattern.substr(0, last + 1));
    if (!folder) return folder.error();
    return SearchPattern{*folder, std::string(pattern.substr(last + 1))};
}

bool fits(std::string_view name, std::string_view pattern) {
    const std::string wanted = native_pattern(pattern);
    const size_t last_dot = name.rfind('.');
    // row[n]: does the rest of the pattern fit the rest of the name from n on? From the pattern's end
    // backwards.
    std::vector<bool> behind(name.size() + 1, false);
    behind[name.size()] = true;
    for (size_t p = wanted.size(); p-- > 0;) {
        std::vector<bool> row(name.size() + 1, false);
        for (size_t n = name.size() + 1; n-- > 0;) {
            const bool at_end = n == name.size();
            const bool at_dot = !at_end && name[n] == '.';
            switch (wanted[p]) {
                case '*':
                    row[n] = behind[n] || (!at_end && row[n + 1]);
                    break;
                case '<':
                    row[n] = behind[n] || (!at_end && n != last_dot && row[n + 1]);
                    break;
                case '>':
                    row[n] = at_end || at_dot ? behind[n] : behind[n + 1];
                    break;
                case '"':
                    row[n] = at_end ? behind[n] : at_dot && behind[n + 1];
                    break;
                default:
                    row[n] = !at_end && text::upper(name[n]) == wanted[p] && behind[n + 1];
            }
        }
        behind = std::move(row);
    }
    return behind[0];
}

std::optional<std::vector<FoundFile>> search_result(const SearchPattern& pattern,
                                                    std::vector<FoundFile> found) {
    if (found.empty() && !fits(".", pattern.names) && !fits("..", pattern.names)) return std::nullopt;
    std::sort(found.begin(), found.end(), [](const FoundFile& a, const FoundFile& b) {
        return text::less_ignoring_case(a.name, b.name);
    });
    return found;
}

}  // namespace machine
