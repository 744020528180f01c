#include "machine/windows/folder_tree.h"

#include <windows.h>

#include "machine/windows/file_errors.h"

namespace machine {

namespace {

constexpr uint32_t settable = attribute_read_only | attribute_hidden | attribute_system | attribute_archive;

bool is_dots(std::string_view name) { return name == "." || name == ".."; }

FileError last_error() { return file_error(GetLastError()); }

std::string below(const std::string& folder, const std::string& name) {
    return folder + (folder.ends_with('\\') ? "" : "\\") + name;
}

/// Names that the code page cannot spell bear question marks: where Windows made a short name beside, that
/// one serves.
std::string usable_name(const WIN32_FIND_DATAA& data) {
    const std::string name = data.cFileName;
    const bool spelled = name.find('?') == std::string::npos;
    return spelled || !*data.cAlternateFileName ? name : data.cAlternateFileName;
}

FileError delete_entry(const std::string& path, uint32_t attributes) {
    const bool folder = (attributes & attribute_directory) != 0;
    if (folder && !(attributes & attribute_reparse_point)) return delete_tree(path);
    if (attributes & attribute_read_only) (void)set_attributes_of(path, attribute_normal);
    const BOOL deleted = folder ? RemoveDirectoryA(path.c_str()) : DeleteFileA(path.c_str());
    return deleted ? no_error : last_error();
}

}  // namespace

FileError for_each_entry(const std::string& pattern,
                         const std::function<FileError(const FoundFile&)>& visit) {
    WIN32_FIND_DATAA data{};
    const HANDLE search = FindFirstFileA(pattern.c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) return last_error();
    FileError error = no_error;
    do {
        const FoundFile found{usable_name(data), data.dwFileAttributes & ~FILE_ATTRIBUTE_NORMAL};
        if (!is_dots(found.name)) error = visit(found);
    } while (error == no_error && FindNextFileA(search, &data));
    FindClose(search);
    return error;
}

uint32_t attributes_of(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes == no_attributes ? no_attributes : attributes & ~FILE_ATTRIBUTE_NORMAL;
}

FileError set_attributes_of(const std::string& path, uint32_t attributes) {
    const uint32_t wanted = attributes & settable;
    if (SetFileAttributesA(path.c_str(), wanted != 0 ? wanted : FILE_ATTRIBUTE_NORMAL)) return no_error;
    return last_error();
}

std::string long_path(const std::string& path) {
    const size_t slash = path.rfind('\\');
    if (slash == std::string::npos || slash + 1 == path.size()) return path;
    std::string name = path.substr(slash + 1);
    (void)for_each_entry(path, [&](const FoundFile& found) {
        name = found.name;
        return no_error;
    });
    const std::string folder = path.substr(0, slash);
    return below(folder.find('\\') == std::string::npos ? folder : long_path(folder), name);
}

FileError delete_tree(const std::string& folder) {
    const FileError error = for_each_entry(below(folder, "*"), [&](const FoundFile& found) {
        return delete_entry(below(folder, found.name), found.attributes);
    });
    if (error != no_error) return error;
    (void)set_attributes_of(folder, attribute_normal);  // a folder can bear the mark of read-only too
    return RemoveDirectoryA(folder.c_str()) ? no_error : last_error();
}

FileError copy_tree(const std::string& folder, const std::string& target) {
    return for_each_entry(below(folder, "*"), [&](const FoundFile& found) {
        const std::string source = below(folder, found.name);
        const std::string copy = below(target, found.name);
        if (found.attributes & attribute_reparse_point) return no_error;
        if (!(found.attributes & attribute_directory))
            return CopyFileA(source.c_str(), copy.c_str(), FALSE) ? no_error : last_error();
        if (attributes_of(copy) == no_attributes && !CreateDirectoryA(copy.c_str(), nullptr))
            return last_error();
        return copy_tree(source, copy);
    });
}

}  // namespace machine
