#include "machine/profile_text.h"

#include <algorithm>

#include "base/text.h"

namespace machine {

namespace {

constexpr size_t buffer_size = 255;

/// Blanks, tabs and what else Windows passes over at the ends of names and values; NUL among them, as DOS
/// editors leave it behind.
std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blank(" \t\v\f\0", 5);
    const auto first = text.find_first_not_of(blank);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blank) - first + 1);
}

/// Where things stand in the text. `end` is behind the line's own end.
struct Line {
    size_t begin = 0;
    size_t end = 0;
    std::string_view content;
};

Line line_at(std::string_view text, size_t begin) {
    const size_t stop = std::min(text.find_first_of("\r\n", begin), text.size());
    size_t end = stop;
    if (text.substr(end).starts_with("\r\n")) {
        end += 2;
    } else if (end < text.size()) {
        ++end;
    }
    return {begin, end, text.substr(begin, stop - begin)};
}

/// The name of a section line; the closing bracket may be missing.
std::optional<std::string_view> section_name(std::string_view line) {
    line = trimmed(line);
    if (!line.starts_with('[')) return std::nullopt;
    line.remove_prefix(1);
    return trimmed(line.substr(0, line.find(']')));
}

bool is_entry(std::string_view line, std::string_view key) {
    const size_t equals = line.find('=');
    const std::string_view name = trimmed(line.substr(0, equals));
    return equals != std::string_view::npos && !name.starts_with(';') && text::equal_ignoring_case(name, key);
}

struct Found {
    bool section_found = false;
    std::optional<Line> entry;
    size_t insert_at = 0;  ///< behind the last line of the section that is not blank
};

Found find_entry(std::string_view text, std::string_view section, std::string_view key) {
    Found found;
    section = trimmed(section);
    key = trimmed(key);
    for (size_t at = 0; at < text.size();) {
        const Line line = line_at(text, at);
        at = line.end;
        if (const auto name = section_name(line.content)) {
            if (found.section_found) return found;
            found.section_found = text::equal_ignoring_case(*name, section);
            found.insert_at = line.end;
        } else if (found.section_found) {
            if (is_entry(line.content, key)) {
                found.entry = line;
                return found;
            }
            if (!trimmed(line.content).empty()) found.insert_at = line.end;
        }
    }
    return found;
}

/// A name without a folder lies in the Windows directory.
std::string profile_path(std::string_view windows_directory, std::string_view file) {
    if (file.find_first_of("\\/:") != std::string_view::npos) return std::string(file);
    return std::string(windows_directory) + (windows_directory.ends_with('\\') ? "" : "\\") +
           std::string(file);
}

}  // namespace

std::string profile_value(std::string_view text, std::string_view section, std::string_view key) {
    const Found found = find_entry(text, section, key);
    if (!found.entry) return {};
    const std::string_view line = found.entry->content;
    std::string_view value = trimmed(line.substr(line.find('=') + 1));
    const bool quoted =
        value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
    if (quoted) value = value.substr(1, value.size() - 2);
    return std::string(text::up_to_nul(value).substr(0, buffer_size - 1));
}

std::string with_profile_value(std::string_view text, std::string_view section, std::string_view key,
                               std::optional<std::string_view> value) {
    const Found found = find_entry(text, section, key);
    std::string out(text);
    if (found.entry) {
        const Line& line = *found.entry;
        if (value) {
            const size_t behind_equals = line.begin + line.content.find('=') + 1;
            const size_t content_end = line.begin + line.content.size();
            out.replace(behind_equals, content_end - behind_equals, text::up_to_nul(*value));
        } else {
            out.erase(line.begin, line.end - line.begin);
        }
        return out;
    }
    if (!value) return out;

    std::string added = std::string(trimmed(key)) + "=" + std::string(text::up_to_nul(*value)) + "\r\n";
    if (!found.section_found) added = "[" + std::string(trimmed(section)) + "]\r\n" + added;
    const size_t at = found.section_found ? found.insert_at : out.size();
    const bool line_open = at > 0 && out[at - 1] != '\n' && out[at - 1] != '\r';
    return out.insert(at, (line_open ? "\r\n" : "") + added);
}

std::string read_profile_file(Files& files, std::string_view windows_directory, std::string_view section,
                              std::string_view key, std::string_view file) {
    std::string text;
    if (files.read(profile_path(windows_directory, file), text) != no_error) return {};
    return profile_value(text, section, key);
}

bool write_profile_file(Files& files, std::string_view windows_directory, std::string_view section,
                        std::string_view key, std::optional<std::string_view> value, std::string_view file) {
    const std::string path = profile_path(windows_directory, file);
    std::string text;
    const FileError error = files.read(path, text);
    if (error == no_such_file && !value) return true;
    if (error != no_error && error != no_such_file) return false;
    const std::string changed = with_profile_value(text, section, key, value);
    return changed == text || files.write(path, changed) == no_error;
}

}  // namespace machine
