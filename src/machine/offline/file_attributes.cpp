#include "machine/offline/file_attributes.h"

#include <fcntl.h>
#include <linux/msdos_fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

namespace machine {

namespace {

constexpr auto ntfs_attributes = "system.ntfs_attrib";
constexpr mode_t write_bits = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr uint32_t settable = attribute_read_only | attribute_hidden | attribute_system | attribute_archive;

/// As the file system keeps them; none where it keeps no such thing.
std::optional<uint32_t> kept_attributes(int file) {
    uint32_t attributes = 0;
    if (fgetxattr(file, ntfs_attributes, &attributes, sizeof attributes) == sizeof attributes)
        return attributes;
    if (ioctl(file, FAT_IOCTL_GET_ATTRIBUTES, &attributes) == 0) return attributes;
    return std::nullopt;
}

Descriptor open_either(const HostPlace& place) {
    return Descriptor(
        openat(place.folder.number(), place.name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
}

}  // namespace

uint32_t attributes_of(const HostPlace& place) {
    struct stat status {};
    if (fstatat(place.folder.number(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return no_attributes;
    if (S_ISLNK(status.st_mode)) return attribute_reparse_point;
    if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) return no_attributes;

    uint32_t attributes = attribute_normal;
    if ((status.st_mode & write_bits) == 0) attributes = attribute_read_only;
    if (const Descriptor file = open_either(place); file.is_open()) {
        attributes = kept_attributes(file.number()).value_or(attributes) & settable;
        if (is_link(file, status)) attributes |= attribute_reparse_point;
    }
    if (S_ISDIR(status.st_mode)) attributes |= attribute_directory;
    return attributes;
}

FileError set_attributes_of(const HostPlace& place, uint32_t attributes) {
    const uint32_t old = attributes_of(place);
    if (old == no_attributes) return place.exists ? permission_denied : no_such_file;
    if (old & attribute_reparse_point) return permission_denied;
    const Descriptor file = open_either(place);
    if (!file.is_open()) return file_error(errno);

    if (const auto kept = kept_attributes(file.number())) {
        uint32_t changed = (*kept & ~settable) | (attributes & settable);
        const bool done = fsetxattr(file.number(), ntfs_attributes, &changed, sizeof changed, 0) == 0 ||
                          ioctl(file.number(), FAT_IOCTL_SET_ATTRIBUTES, &changed) == 0;
        return done ? no_error : file_error(errno);
    }
    struct stat status {};
    if (fstat(file.number(), &status) != 0) return file_error(errno);
    const mode_t mode = status.st_mode & 07777;
    const bool read_only = (attributes & attribute_read_only) != 0;
    const mode_t wanted = read_only ? mode & ~write_bits : (mode & write_bits) != 0 ? mode : mode | S_IWUSR;
    if (wanted == mode) return no_error;
    return fchmod(file.number(), wanted) == 0 ? no_error : file_error(errno);
}

bool may_replace(const HostPlace& place) {
    const int folder = place.folder.number();
    return faccessat(folder, place.name.c_str(), W_OK, AT_EACCESS) == 0 &&
           faccessat(folder, ".", W_OK, AT_EACCESS) == 0 && (attributes_of(place) & attribute_read_only) == 0;
}

}  // namespace machine
