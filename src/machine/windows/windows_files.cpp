#include "machine/windows/windows_files.h"

#include <windows.h>

#include "base/text.h"
#include "machine/protected_folders.h"
#include "machine/windows/file_errors.h"
#include "machine/windows/folder_tree.h"
#include "machine/windows/late_call.h"
#include "machine/windows_path.h"

namespace machine {

namespace {

using Path = BasicResult<std::string, FileError>;

bool is_in_network(std::string_view path) { return path.starts_with("\\\\"); }

/// The full path as Windows is asked for it. Names of devices and streams are refused, in a network folder
/// too.
Path checked(std::string_view path) {
    path = text::up_to_nul(path);
    const std::string_view names = is_in_network(path) ? path.substr(1) : path;
    const auto parsed = parse_path(is_in_network(path) ? "C:" + std::string(names) : std::string(names));
    if (!parsed) return parsed.error();
    if (is_in_network(path) && parsed->parts.size() < 2) return no_such_path;
    return is_in_network(path) ? "\\" + parsed->text().substr(2) : parsed->text();
}

std::string folder_of(const std::string& path) { return path.substr(0, path.rfind('\\') + 1); }

/// The same for a file's content: no folder, and in one that is there.
Path checked_file(std::string_view path) {
    Path file = checked(path);
    if (!file) return file;
    const uint32_t attributes = attributes_of(*file);
    const bool missing = attributes == no_attributes;
    if (missing && attributes_of(folder_of(*file)) == no_attributes) return no_such_path;
    if (!missing && (attributes & attribute_directory)) return path_access;
    return file;
}

bool is_read_only(const std::string& path) {
    const uint32_t attributes = attributes_of(path);
    return attributes != no_attributes && (attributes & attribute_read_only);
}

/// An open file; closed when it goes.
class File {
  public:
    File(const std::string& path, DWORD access, DWORD sharing, DWORD how)
        : handle_(CreateFileA(path.c_str(), access, sharing, nullptr, how, FILE_ATTRIBUTE_NORMAL, nullptr)),
          error_(handle_ == INVALID_HANDLE_VALUE ? GetLastError() : ERROR_SUCCESS) {
        if (!is_open() || GetFileType(handle_) == FILE_TYPE_DISK) return;
        CloseHandle(handle_);  // a pipe of another machine
        handle_ = INVALID_HANDLE_VALUE;
        error_ = ERROR_ACCESS_DENIED;
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() {
        if (is_open()) CloseHandle(handle_);
    }
    bool is_open() const { return handle_ != INVALID_HANDLE_VALUE; }
    DWORD windows_error() const { return error_; }
    FileError error() const { return file_error(error_); }

    int64_t length() const {
        DWORD high = 0;
        const DWORD low = GetFileSize(handle_, &high);
        return static_cast<int64_t>(high) << 32 | low;
    }
    FileError read(std::string& bytes) {
        char piece[4096];
        DWORD size = 0;
        bytes.clear();
        do {
            if (!ReadFile(handle_, piece, sizeof piece, &size, nullptr)) return file_error(GetLastError());
            bytes.append(piece, size);
        } while (size > 0);
        return no_error;
    }
    FileError seek(int64_t offset) {
        LONG high = static_cast<LONG>(offset >> 32);
        const DWORD low = SetFilePointer(handle_, static_cast<LONG>(offset & 0xFFFFFFFF), &high, FILE_BEGIN);
        return low == INVALID_SET_FILE_POINTER && GetLastError() != NO_ERROR ? file_error(GetLastError())
                                                                             : no_error;
    }
    /// Everything, and on the disk.
    FileError write(std::string_view bytes) {
        DWORD size = 0;
        if (!WriteFile(handle_, bytes.data(), static_cast<DWORD>(bytes.size()), &size, nullptr))
            return file_error(GetLastError());
        if (size != bytes.size()) return device_full;
        return FlushFileBuffers(handle_) ? no_error : file_error(GetLastError());
    }

  private:
    HANDLE handle_;
    DWORD error_;
};

constexpr DWORD sharing = FILE_SHARE_READ | FILE_SHARE_WRITE;

bool held_by_another(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
}

FileError cannot_open(DWORD error) {
    if (held_by_another(error)) return permission_denied;
    return file_error(error) == permission_denied ? path_access : file_error(error);
}

/// Puts `fresh` in the place of `path`. Windows 9X cannot do it in one step: there the old file steps aside
/// first, and comes back when the new one does not get through.
FileError take_place(const std::string& fresh, const std::string& path) {
    static const LateCall<BOOL(WINAPI*)(LPCSTR, LPCSTR, DWORD)> move("kernel32.dll", "MoveFileExA");
    if (move && (*move)(fresh.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return no_error;
    if (GetLastError() != ERROR_CALL_NOT_IMPLEMENTED) return file_error(GetLastError());
    const std::string old = fresh + "~";
    const bool replaces = attributes_of(path) != no_attributes;
    if (replaces && !MoveFileA(path.c_str(), old.c_str())) return file_error(GetLastError());
    if (!MoveFileA(fresh.c_str(), path.c_str())) {
        const DWORD error = GetLastError();
        if (replaces) (void)MoveFileA(old.c_str(), path.c_str());
        return file_error(error);
    }
    if (replaces) (void)DeleteFileA(old.c_str());
    return no_error;
}

FileError write_new(const std::string& path, std::string_view bytes) {
    File file(path, GENERIC_WRITE, 0, TRUNCATE_EXISTING);
    return file.is_open() ? file.write(bytes) : file.error();
}

}  // namespace

Files::Measured WindowsFiles::open_binary(std::string_view path) {
    const Path place = checked_file(path);
    if (!place) return {place.error(), 0};
    const File writable(*place, GENERIC_READ | GENERIC_WRITE, sharing, OPEN_ALWAYS);
    if (writable.is_open()) return {no_error, writable.length()};
    const File readable(*place, GENERIC_READ, sharing, OPEN_EXISTING);
    if (readable.is_open()) return {no_error, readable.length()};
    const bool missing = readable.error() == no_such_file;  // and could not be made
    return {cannot_open(missing ? writable.windows_error() : readable.windows_error()), 0};
}

FileError WindowsFiles::read(std::string_view path, std::string& bytes) {
    const Path place = checked_file(path);
    if (!place) return place.error();
    File file(*place, GENERIC_READ, sharing, OPEN_EXISTING);
    return file.is_open() ? file.read(bytes) : file.error();
}

FileError WindowsFiles::write(std::string_view path, std::string_view bytes) {
    const Path place = checked_file(path);
    if (!place) return place.error();
    if (is_read_only(*place)) return permission_denied;
    const uint32_t old = attributes_of(*place);
    char fresh[MAX_PATH] = {};
    if (!GetTempFileNameA(folder_of(*place).c_str(), "brl", 0, fresh)) return file_error(GetLastError());
    FileError error = write_new(fresh, bytes);
    if (error == no_error) error = set_attributes_of(fresh, old == no_attributes ? attribute_archive : old);
    if (error == no_error) error = take_place(fresh, *place);
    if (error != no_error) (void)DeleteFileA(fresh);
    return error;
}

FileError WindowsFiles::write_at(std::string_view path, int64_t offset, std::string_view bytes) {
    const Path place = checked_file(path);
    if (!place) return place.error();
    if (is_read_only(*place)) return permission_denied;
    File file(*place, GENERIC_READ | GENERIC_WRITE, sharing, OPEN_ALWAYS);
    if (!file.is_open()) return file.error();
    if (const FileError error = file.seek(offset)) return error;
    return file.write(bytes);
}

FileError WindowsFiles::remove(std::string_view path) {
    const Path place = checked_file(path);
    if (!place) return place.error();
    if (is_read_only(*place)) return permission_denied;
    return DeleteFileA(place->c_str()) ? no_error : file_error(GetLastError());
}

uint32_t WindowsFiles::attributes(std::string_view path) {
    const Path place = checked(path);
    return place ? attributes_of(*place) : no_attributes;
}

FileError WindowsFiles::set_attributes(std::string_view path, uint32_t attributes) {
    const Path place = checked(path);
    return place ? set_attributes_of(*place, attributes) : place.error();
}

std::optional<std::vector<FoundFile>> WindowsFiles::find(std::string_view pattern) {
    pattern = text::up_to_nul(pattern);
    const size_t names_at = pattern.find_last_of("\\/") + 1;
    const Path folder = checked(pattern.substr(0, names_at));
    if (names_at == 0 || !folder) return std::nullopt;
    std::vector<FoundFile> found;
    const std::string names(pattern.substr(names_at));
    const std::string separator = folder->ends_with('\\') ? "" : "\\";
    const FileError error = for_each_entry(*folder + separator + names, [&](const FoundFile& file) {
        if (is_plain_name(file.name)) found.push_back(file);
        return no_error;
    });
    if (error != no_error && error != no_such_file) return std::nullopt;
    return search_result({{}, names}, std::move(found));
}

FileError WindowsFiles::delete_folder(std::string_view path) {
    const Path place = checked(path);
    if (!place) return place.error();
    const uint32_t attributes = attributes_of(*place);
    if (attributes == no_attributes || !(attributes & attribute_directory)) return no_such_path;
    const auto folder =
        parse_path(long_path(*place));  // none for a network folder: nothing of Windows lies there
    if (folder && is_protected(*folder, system_)) return permission_denied;
    if (!(attributes & attribute_reparse_point)) return delete_tree(*place);
    return RemoveDirectoryA(place->c_str()) ? no_error : file_error(GetLastError());
}

FileError WindowsFiles::copy_folder(std::string_view path, std::string_view target) {
    const Path from = checked(path);
    const Path to = checked(target);
    if (!from) return from.error();
    if (!to) return to.error();
    const uint32_t source = attributes_of(*from);
    if (source == no_attributes || !(source & attribute_directory)) return no_such_path;
    const uint32_t old = attributes_of(*to);
    if (old != no_attributes && !(old & attribute_directory)) return path_access;
    const std::string inside = text::lower(long_path(*from)) + "\\";
    if ((text::lower(long_path(*to)) + "\\").starts_with(inside)) return permission_denied;
    if (old == no_attributes && !CreateDirectoryA(to->c_str(), nullptr)) return file_error(GetLastError());
    return copy_tree(*from, *to);
}

std::string WindowsFiles::profile_path(std::string_view file) const {
    const bool bare = file.find_first_of("\\/:") == std::string_view::npos;
    return (bare ? system_.windows_directory() + "\\" : "") + std::string(file);
}

std::string WindowsFiles::read_profile(std::string_view section, std::string_view key,
                                       std::string_view file) {
    char value[255] = {};
    (void)GetPrivateProfileStringA(std::string(section).c_str(), std::string(key).c_str(), "", value,
                                   sizeof value, std::string(file).c_str());
    return value;
}

bool WindowsFiles::write_profile(std::string_view section, std::string_view key,
                                 std::optional<std::string_view> value, std::string_view file) {
    const std::string text(value.value_or(""));
    const std::string name(file);
    const std::string path = profile_path(file);
    if (!value && attributes_of(path) == no_attributes) return true;
    if (is_read_only(path)) return false;  // Windows 9X would find out later, and not tell
    const BOOL written = WritePrivateProfileStringA(std::string(section).c_str(), std::string(key).c_str(),
                                                    value ? text.c_str() : nullptr, name.c_str());
    // Windows 9X keeps the file in memory for a while; this brings it to the disk.
    (void)WritePrivateProfileStringA(nullptr, nullptr, nullptr, name.c_str());
    return written != FALSE;
}

}  // namespace machine
