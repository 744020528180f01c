#include "machine/offline/file_attributes.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "hostfile/replacement.h"

namespace machine {

namespace {

constexpr mode_t write_bits = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr uint32_t settable = attribute_read_only | attribute_hidden | attribute_system | attribute_archive;

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
        const auto kept = hostfile::dos_attributes(file.number());
        attributes = (kept ? kept->bits : attributes) & settable;
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

    if (auto kept = hostfile::dos_attributes(file.number())) {
        kept->bits = (kept->bits & ~settable) | (attributes & settable);
        return hostfile::set_dos_attributes(file.number(), *kept) ? no_error : file_error(errno);
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
