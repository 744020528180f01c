#include "hostfile/place.h"

#include <dirent.h>

#include <array>
#include <cstring>
#include <memory>

namespace hostfile {

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

std::string HostPlace::path() const {
    std::array<char, 4096> target{};
    const std::string link = "/proc/self/fd/" + std::to_string(folder.number());
    const ssize_t size = readlink(link.c_str(), target.data(), target.size());
    if (size <= 0) return name;
    std::string above(target.data(), static_cast<size_t>(size));
    if (name == ".") return above;
    return above + (above.ends_with('/') ? "" : "/") + name;
}

Result<HostPlace> place_of(const std::string& path) {
    const size_t name_at = path.rfind('/') + 1;  // 0 where there is no slash
    const std::string folder = name_at == 0 ? "." : path.substr(0, name_at);
    Descriptor opened(
        attempt("open", [&] { return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!opened.is_open()) return system_error(path, "its folder cannot be opened");
    HostPlace place{std::move(opened), path.substr(name_at)};
    place.exists = faccessat(place.folder.number(), place.name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
    return place;
}

bool is_same_file(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

Result<OpenFile> open_regular(const HostPlace& place, int flags) {
    const Error not_regular{ErrorKind::refused, place.name + ": not a regular file"};
    const char* const name = place.name.c_str();
    OpenFile opened{};
    struct stat& status = opened.status;
    // Looked at before it is opened, as opening a device may set it going, and again when it cannot change.
    if (attempt("stat", [&] { return fstatat(place.folder.number(), name, &status, AT_SYMLINK_NOFOLLOW); }) !=
        0)
        return system_error(place.name, "cannot be examined");
    if (!S_ISREG(status.st_mode)) return not_regular;
    const int all = flags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    opened.file = Descriptor(attempt("open", [&] { return openat(place.folder.number(), name, all); }));
    if (!opened.file.is_open()) return system_error(place.name, "cannot be opened");
    if (attempt("fstat", [&] { return fstat(opened.file.number(), &status); }) != 0)
        return system_error(place.name, "cannot be examined");
    if (!S_ISREG(status.st_mode)) return not_regular;
    return opened;
}

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

Result<Done> make_folders(const std::string& path) {
    for (size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string part = path.substr(0, end);
        if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) return system_error(part, "cannot be made");
        if (end == std::string::npos) return Done{};
    }
}

uint64_t name_digest(std::string_view text) {
    uint64_t hash = 0xCBF29CE484222325;
    for (char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return hash;
}

}  // namespace hostfile
