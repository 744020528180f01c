#include "regf/host.h"

#include <dirent.h>

#include <cstring>
#include <memory>

namespace regf {

std::function<int(const char* call)> fail_system_call;

ErrorKind kind_of(int error_number) {
    switch (error_number) {
        case ENOENT:
        case ENOTDIR:
            return ErrorKind::missing;
        case EACCES:
        case EPERM:
        case EROFS:
        case ELOOP:
        case EISDIR:
        case ENXIO:
            return ErrorKind::refused;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return ErrorKind::no_space;
        case EWOULDBLOCK:
        case EBUSY:
        case ETXTBSY:
            return ErrorKind::in_use;
        case ENAMETOOLONG:
            return ErrorKind::invalid;
        default:
            return ErrorKind::io;
    }
}

Error system_error(const std::string& name, const std::string& what) {
    const int error = errno;
    return {kind_of(error), name + ": " + what + ": " + std::strerror(error)};
}

bool is_same_file(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

Result<OpenFile> open_regular(const FilePlace& place, int flags) {
    const Error not_regular{ErrorKind::refused, place.name + ": not a regular file"};
    const char* const name = place.name.c_str();
    OpenFile opened{};
    struct stat& status = opened.status;
    // Looked at before it is opened, as opening a device may set it going, and again when it cannot change.
    if (attempt("stat", [&] { return fstatat(place.folder, name, &status, AT_SYMLINK_NOFOLLOW); }) != 0)
        return system_error(place.name, "cannot be examined");
    if (!S_ISREG(status.st_mode)) return not_regular;
    const int all = flags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    opened.file = Descriptor(attempt("open", [&] { return openat(place.folder, name, all); }));
    if (!opened.file.is_open()) return system_error(place.name, "cannot be opened");
    if (attempt("fstat", [&] { return fstat(opened.file.number(), &status); }) != 0)
        return system_error(place.name, "cannot be examined");
    if (!S_ISREG(status.st_mode)) return not_regular;
    return opened;
}

Result<Descriptor> open_folder_of(const FilePlace& place) {
    const size_t slash = place.name.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : place.name.substr(0, slash + 1);
    Descriptor opened(attempt(
        "open", [&] { return openat(place.folder, folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!opened.is_open()) return system_error(place.name, "its folder cannot be opened");
    return opened;
}

std::string last_part(const std::string& name) { return name.substr(name.rfind('/') + 1); }

Result<std::vector<std::string>> names_in(int folder) {
    const int copy = attempt("open", [&] { return openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    if (copy < 0) return system_error("the folder", "cannot be opened");
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(fdopendir(copy), closedir);
    if (!listing) return system_error("the folder", "cannot be read");
    std::vector<std::string> names;
    for (;;) {
        errno = 0;  // how the end is told from a disk that fails on the way
        const dirent* const entry = readdir(listing.get());
        if (!entry && errno != 0) return system_error("the folder", "cannot be read");
        if (!entry) return names;
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") names.emplace_back(name);
    }
}

}  // namespace regf
