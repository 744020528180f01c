#include "machine/offline/host_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>

#include "base/text.h"

namespace machine {

namespace {

/// What an NTFS driver shows of a file but leaves out of its list.
constexpr std::array unlisted_attributes = {"system.ntfs_acl", "system.ntfs_attrib"};

/// As far as the file system takes them: the content matters more than, say, an index flag.
void copy_extended_attributes(int from, int to) {
    std::vector<std::string> names(unlisted_attributes.begin(), unlisted_attributes.end());
    std::string list(static_cast<size_t>(std::max<ssize_t>(flistxattr(from, nullptr, 0), 0)), '\0');
    list.resize(static_cast<size_t>(std::max<ssize_t>(flistxattr(from, list.data(), list.size()), 0)));
    for (size_t at = 0; at < list.size(); at += names.back().size() + 1)
        names.emplace_back(list.c_str() + at);
    for (const std::string& name : names) {
        std::array<char, 65536> value{};
        const ssize_t size = fgetxattr(from, name.c_str(), value.data(), value.size());
        if (size >= 0) (void)fsetxattr(to, name.c_str(), value.data(), static_cast<size_t>(size), 0);
    }
}

FileError take_over(const HostPlace& place, int to) {
    const auto old = open_file(place, O_RDONLY);
    if (!old) return old.error();
    struct stat status {};
    if (fstat(old->number(), &status) != 0) return file_error(errno);
    (void)fchown(to, status.st_uid, status.st_gid);  // only root may give a file away
    if (fchmod(to, status.st_mode & 07777) != 0) return file_error(errno);
    copy_extended_attributes(old->number(), to);  // last: on NTFS a change of the mode rewrites the ACL
    return no_error;
}

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
}

Descriptor::~Descriptor() {
    if (number_ >= 0) (void)close(number_);
}

Descriptor Descriptor::duplicate() const { return Descriptor(fcntl(number_, F_DUPFD_CLOEXEC, 0)); }

std::string HostPlace::path() const {
    std::array<char, 4096> target{};
    const std::string link = "/proc/self/fd/" + std::to_string(folder.number());
    const ssize_t size = readlink(link.c_str(), target.data(), target.size());
    if (size <= 0) return name;
    std::string above(target.data(), static_cast<size_t>(size));
    if (name == ".") return above;
    return above + (above.ends_with('/') ? "" : "/") + name;
}

FileError file_error(int number) {
    switch (number) {
        case ENOENT:
            return no_such_file;
        case ENOTDIR:
            return no_such_path;
        case EISDIR:
            return path_access;
        case ENAMETOOLONG:
            return bad_file_name;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return device_full;
        case EACCES:
        case EPERM:
        case EROFS:
        case ELOOP:
        case EBUSY:
        case ETXTBSY:
        case ENXIO:
            return permission_denied;
        default:
            return device_error;
    }
}

FileResult<std::vector<std::string>> names_in(int folder) {
    const int copy = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (copy < 0) return file_error(errno);
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(fdopendir(copy), closedir);
    if (!listing) return file_error(errno);
    std::vector<std::string> names;
    while (const dirent* entry = readdir(listing.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") names.emplace_back(name);
    }
    return names;
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
    const auto check = [](const struct stat& status) {
        if (S_ISDIR(status.st_mode)) return path_access;
        return S_ISREG(status.st_mode) ? no_error : permission_denied;
    };
    // Looked at before it is opened, as opening a device may set it going, and again when it cannot change.
    struct stat status {};
    if (fstatat(place.folder.number(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return file_error(errno);
    if (const FileError error = check(status)) return error;
    Descriptor file(
        openat(place.folder.number(), place.name.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.is_open() || fstat(file.number(), &status) != 0) return file_error(errno);
    if (const FileError error = check(status)) return error;
    return file;
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
    const int folder = place.folder.number();
    const std::string beside = ".brightlock-" + std::to_string(getpid()) + ".tmp";
    (void)unlinkat(folder, beside.c_str(), 0);  // of a run that was killed, in the unlikely case
    const Descriptor file(
        openat(folder, beside.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
    if (!file.is_open()) return file_error(errno);

    FileError error = fill(file.number());
    if (error == no_error && place.exists) error = take_over(place, file.number());
    if (error == no_error && fsync(file.number()) != 0) error = file_error(errno);
    if (error == no_error && renameat(folder, beside.c_str(), folder, place.name.c_str()) != 0)
        error = file_error(errno);
    if (error != no_error) {
        (void)unlinkat(folder, beside.c_str(), 0);
        return error;
    }
    (void)fsync(folder);  // the content is safe already; some file systems flush no folder
    return no_error;
}

regf::Result<Done> make_folders(const std::string& path) {
    for (size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string part = path.substr(0, end);
        if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST)
            return regf::Error{regf::ErrorKind::io,
                               "cannot make the folder " + part + ": " + strerror(errno)};
        if (end == std::string::npos) return Done{};
    }
}

}  // namespace machine
