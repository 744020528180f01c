#include "platform/folder_browser.h"

#include "base/runtime_error.h"
#include "base/text.h"

namespace britlock {

namespace {

constexpr uint32_t not_shown =
    machine::attribute_hidden | machine::attribute_system | machine::attribute_reparse_point;

}  // namespace

std::vector<char> FolderBrowser::drives() {
    std::vector<char> out;
    const uint32_t mask = machine_.system.logical_drives();
    for (int k = 0; k < 26; ++k) {
        if (mask >> k & 1) out.push_back(static_cast<char>('A' + k));
    }
    return out;
}

std::string FolderBrowser::folder(std::string_view path) {
    if (path.size() < 2 || path[1] != ':') throw RuntimeError(machine::no_such_path);
    std::string out{text::upper(path[0]), ':', '\\'};
    if (machine_.files.attributes(out) == machine::no_attributes)
        throw RuntimeError(machine::device_not_there);
    path.remove_prefix(2);
    while (!path.empty()) {
        const size_t end = std::min(path.find('\\'), path.size());
        const std::string_view part = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        if (part.empty()) continue;
        if (!out.ends_with('\\')) out += '\\';
        out += name_of_folder(out, part);
    }
    return out;
}

/// As it is spelled on the disk. A disk that Linux wrote can hold two that differ in case only.
std::string FolderBrowser::name_of_folder(const std::string& above, std::string_view name) {
    const auto found = machine_.files.find(above + std::string(name));
    if (!found) throw RuntimeError(machine::no_such_path);
    const bool pattern = name.find_first_of("*?") != std::string_view::npos;
    const machine::FoundFile* best = nullptr;
    for (const machine::FoundFile& entry : *found) {
        const bool is_folder = entry.attributes & machine::attribute_directory;
        if (is_folder && !pattern && (!best || entry.name == name)) best = &entry;
    }
    if (!best) throw RuntimeError(machine::no_such_path);
    return best->name;
}

std::vector<std::string> FolderBrowser::entries(std::string_view path, bool want_folders) {
    std::string pattern(path);
    if (!pattern.ends_with('\\')) pattern += '\\';
    const auto found = machine_.files.find(pattern + '*');
    const bool root = pattern.find('\\') + 1 == pattern.size();
    if (!found && root && machine_.files.attributes(pattern) != machine::no_attributes)
        return {};  // empty: a root has no entries of its own
    if (!found) throw RuntimeError(machine::no_such_path);
    std::vector<std::string> out;
    for (const machine::FoundFile& entry : *found) {
        const bool is_folder = entry.attributes & machine::attribute_directory;
        if (is_folder == want_folders && !(entry.attributes & not_shown) && entry.name != "." &&
            entry.name != "..") {
            out.push_back(entry.name);
        }
    }
    return out;
}

std::vector<std::string> FolderBrowser::folders(std::string_view path) { return entries(path, true); }

std::vector<std::string> FolderBrowser::files(std::string_view path) { return entries(path, false); }

}  // namespace britlock
