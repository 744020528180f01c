#include "machine/offline/host_file.h"

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "base/text.h"
#include "hostfile/replacement.h"

namespace machine {

FileError file_error(base::ErrorKind kind) {
    switch (kind) {
        case base::ErrorKind::missing:
            return no_such_file;
        case base::ErrorKind::refused:
        case base::ErrorKind::in_use:
            return permission_denied;
        case base::ErrorKind::no_space:
            return device_full;
        case base::ErrorKind::invalid:
            return bad_file_name;
        default:
            return device_error;
    }
}

FileError file_error(int number) {
    if (number == ENOTDIR) return no_such_path;
    return number == EISDIR ? path_access : file_error(hostfile::kind_of(number));
}

FileResult<std::vector<std::string>> names_in(int folder) {
    auto names = hostfile::names_in(folder);
    if (!names) return file_error(names.error().kind);
    return std::move(*names);
}

bool is_link(const Descriptor& file, const struct stat& status) {
    return S_ISLNK(status.st_mode) || fgetxattr(file.number(), "system.ntfs_reparse_data", nullptr, 0) > 0;
}

FileResult<HostPlace> find_in(Descriptor folder, std::string_view ansi_name) {
    const std::string exact = text::to_utf8(ansi_name);
    struct stat status {};
    if (fstatat(folder.number(), exact.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
        return HostPlace{std::move(folder), exact, true};
    const auto names = names_in(folder.number());
    if (!names) return names.error();
    const std::string* best = nullptr;
    for (const std::string& name : *names) {
        const auto ansi = text::from_utf8(name);
        const bool same = ansi && text::equal_ignoring_case(*ansi, ansi_name);
        // Two names that differ in case only can lie on a disk that Linux wrote: always take the same one.
        if (same && (!best || name < *best)) best = &name;
    }
    return HostPlace{std::move(folder), best ? *best : exact, best != nullptr};
}

FileResult<Descriptor> open_folder(int folder, const std::string& name) {
    Descriptor opened(openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!opened.is_open()) {
        const int reason = errno;
        const bool link =
            fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode);
        if (link) return permission_denied;
        return reason == ENOENT ? no_such_path : file_error(reason);
    }
    if (fstat(opened.number(), &status) != 0) return file_error(errno);
    if (is_link(opened, status)) return permission_denied;
    return opened;
}

FileResult<Descriptor> open_file(const HostPlace& place, int flags) {
    struct stat status {};
    const bool there = fstatat(place.folder.number(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    if (there && S_ISDIR(status.st_mode)) return path_access;
    auto opened = hostfile::open_regular(place, flags);
    if (!opened) return file_error(opened.error().kind);
    return std::move(opened->file);
}

FileResult<std::string> read_all(int file, size_t limit) {
    std::string bytes;
    std::array<char, 65536> piece{};
    for (;;) {
        const ssize_t size = read(file, piece.data(), piece.size());
        if (size < 0) return file_error(errno);
        if (size == 0) return bytes;
        if (bytes.size() + static_cast<size_t>(size) > limit) return device_error;
        bytes.append(piece.data(), static_cast<size_t>(size));
    }
}

FileError write_all(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t size = write(file, bytes.data(), bytes.size());
        if (size < 0) return file_error(errno);
        bytes.remove_prefix(static_cast<size_t>(size));
    }
    return no_error;
}

FileError replace_file(const HostPlace& place, const std::function<FileError(int)>& fill) {
    constexpr mode_t for_all = 0666;  // less what the person's umask takes away
    FileResult<Descriptor> old = Descriptor();
    struct stat status {};
    if (place.exists) old = open_file(place, O_RDONLY);
    if (!old) return old.error();
    if (old->is_open() && fstat(old->number(), &status) != 0) return file_error(errno);
    auto beside = hostfile::Replacement::begin(place, old->is_open() ? status.st_mode : for_all);
    if (!beside) return file_error(beside.error().kind);
    if (const FileError error = fill(beside->descriptor())) return error;
    if (old->is_open()) (void)beside->take_over(old->number());  // what cannot be kept is passed over
    if (const auto flushed = beside->flush(); !flushed) return file_error(flushed.error().kind);
    const auto done = beside->put_in_place(hostfile::Replacement::Old::may_exist);
    return done ? no_error : file_error(done.error().kind);
}

}  // namespace machine
