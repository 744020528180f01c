#include "hostfile/replacement.h"

#include <linux/fs.h>
#include <linux/msdos_fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <optional>
#include <set>

namespace hostfile {

namespace {

constexpr auto ntfs_attributes = "system.ntfs_attrib";

/// Of one length, as the name itself may be as long as the file system takes it.
std::string temporary_prefix(const std::string& name) {
    char prefix[40];
    (void)std::snprintf(prefix, sizeof prefix, ".brightlock-%016llx-",
                        static_cast<unsigned long long>(name_digest(name)));
    return prefix;
}

/// What `ask` writes into a buffer of a size, and says the size of where it is given none. None: errno tells
/// why. Asked anew where it grew meanwhile.
std::optional<std::string> of_any_size(const char* call, const std::function<ssize_t(char*, size_t)>& ask) {
    for (;;) {
        const ssize_t size = attempt(call, [&] { return ask(nullptr, 0); });
        if (size < 0) return std::nullopt;
        std::string content(static_cast<size_t>(size), '\0');
        if (size == 0) return content;
        const ssize_t got = attempt(call, [&] { return ask(content.data(), content.size()); });
        if (got < 0 && errno == ERANGE) continue;
        if (got < 0) return std::nullopt;
        content.resize(static_cast<size_t>(got));
        return content;
    }
}

/// None: the file has no such attribute, or not for us to see.
std::optional<std::string> attribute(int file, const std::string& name) {
    return of_any_size("fgetxattr",
                       [&](char* value, size_t size) { return fgetxattr(file, name.c_str(), value, size); });
}

}  // namespace

namespace {

/// A file made there could never be removed or renamed.
bool is_marked_unchangeable(int folder) {
    int flags = 0;
    return ioctl(folder, FS_IOC_GETFLAGS, &flags) == 0 && (flags & (FS_APPEND_FL | FS_IMMUTABLE_FL)) != 0;
}

}  // namespace

std::optional<DosAttributes> dos_attributes(int file) {
    uint32_t bits = 0;
    if (fgetxattr(file, ntfs_attributes, &bits, sizeof bits) == sizeof bits)
        return DosAttributes{DosAttributes::Driver::ntfs, bits};
    if (ioctl(file, FAT_IOCTL_GET_ATTRIBUTES, &bits) == 0)
        return DosAttributes{DosAttributes::Driver::fat, bits};
    return std::nullopt;
}

bool set_dos_attributes(int file, const DosAttributes& attributes) {
    const uint32_t* const bits = &attributes.bits;
    if (attributes.driver == DosAttributes::Driver::fat)
        return ioctl(file, FAT_IOCTL_SET_ATTRIBUTES, bits) == 0;
    return fsetxattr(file, ntfs_attributes, bits, sizeof *bits, 0) == 0;
}

Result<Replacement> Replacement::begin(const HostPlace& place, mode_t mode) {
    Replacement made({place.folder.duplicate(), place.name});
    const int at = made.place_.folder.number();
    if (at < 0) return system_error(place.name, "its folder cannot be opened");
    if (is_marked_unchangeable(at))
        return Error{ErrorKind::refused, place.name + ": its folder takes new files and lets none go"};
    const std::string prefix = temporary_prefix(place.name);
    made.remove_leftovers(prefix);
    // Whoever may write the folder can have put something else under any of these names.
    for (unsigned number = 0; !made.file_.is_open(); ++number) {
        made.temporary_ = prefix + std::to_string(number);
        made.file_ = Descriptor(attempt("open", [&] {
            return openat(at, made.temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                          mode & 07777);
        }));
        if (!made.file_.is_open() && errno != EEXIST)
            return system_error(place.name, "no file can be made beside it");
    }
    (void)flock(made.file_.number(), LOCK_EX | LOCK_NB);  // so that no other run takes it for a leftover
    return made;
}

Replacement::~Replacement() {
    if (file_.is_open()) (void)unlinkat(place_.folder.number(), temporary_.c_str(), 0);
}

void Replacement::remove_leftovers(const std::string& prefix) const {
    const auto names = names_in(place_.folder.number());
    if (!names) return;  // they wait for the next time
    for (const std::string& name : *names) {
        if (!name.starts_with(prefix)) continue;
        const auto leftover = open_regular({place_.folder.duplicate(), name}, O_RDONLY);
        if (leftover && flock(leftover->file.number(), LOCK_EX | LOCK_NB) == 0)
            (void)unlinkat(place_.folder.number(), name.c_str(), 0);
    }
}

Result<Done> Replacement::take_over(int old) const {
    Result<Done> all = keep_owner(old);
    // A new mode makes some drivers write a new descriptor, so the attributes come after it.
    for (const auto keep : {&Replacement::keep_extended_attributes, &Replacement::keep_dos_attributes}) {
        if (auto kept = (this->*keep)(old); !kept && all) all = kept;
    }
    return all;
}

Result<Done> Replacement::keep_owner(int old) const {
    struct stat from {};
    struct stat to {};
    if (attempt("fstat", [&] { return fstat(old, &from); }) != 0 ||
        attempt("fstat", [&] { return fstat(descriptor(), &to); }) != 0)
        return system_error(place_.name, "cannot be examined");
    const bool same = from.st_uid == to.st_uid && from.st_gid == to.st_gid;
    Result<Done> kept = Done{};
    if (!same && attempt("fchown", [&] { return fchown(descriptor(), from.st_uid, from.st_gid); }) != 0)
        kept = system_error(place_.name, "its owner cannot be kept");
    if (same && from.st_mode == to.st_mode) return kept;  // FAT knows few modes, and refuses the others
    if (attempt("fchmod", [&] { return fchmod(descriptor(), from.st_mode & 07777); }) != 0 && kept)
        kept = system_error(place_.name, "its mode cannot be kept");
    return kept;
}

Result<Done> Replacement::keep_extended_attributes(int old) const {
    const auto names =
        of_any_size("flistxattr", [&](char* list, size_t size) { return flistxattr(old, list, size); });
    Result<Done> kept = Done{};
    if (!names && errno != ENOTSUP && errno != ENOSYS)
        kept = system_error(place_.name, "its attributes cannot be read");
    std::set<std::string> wanted{"system.ntfs_acl", "system.ntfs_security", ntfs_attributes,
                                 "system.ntfs_crtime"};  // drivers do not list these
    for (size_t at = 0; names && at < names->size(); at += std::strlen(&(*names)[at]) + 1)
        wanted.insert(&(*names)[at]);
    for (const std::string& name : wanted) {
        const auto value = attribute(old, name);
        if (!value && errno == EIO && kept) kept = system_error(place_.name, "its attributes cannot be read");
        if (!value || value == attribute(descriptor(), name)) continue;
        const auto set = [&] {
            return fsetxattr(descriptor(), name.c_str(), value->data(), value->size(), 0);
        };
        if (attempt("fsetxattr", set) == 0 || !kept) continue;
        kept = Error{ErrorKind::refused,
                     place_.name + ": its attribute " + name + " cannot be kept: " + std::strerror(errno)};
    }
    return kept;
}

Result<Done> Replacement::keep_dos_attributes(int old) const {
    const auto attributes = dos_attributes(old);
    if (!attributes || attributes == dos_attributes(descriptor())) return Done{};
    if (attempt("ioctl", [&] { return set_dos_attributes(descriptor(), *attributes) ? 0 : -1; }) != 0)
        return system_error(place_.name, "its attributes cannot be kept");
    return Done{};
}

void Replacement::begin_to_flush() const {
    // A file system that knows nothing of it begins when it is flushed.
    (void)attempt("sync_file_range",
                  [&] { return sync_file_range(descriptor(), 0, 0, SYNC_FILE_RANGE_WRITE); });
}

Result<Done> Replacement::flush() const {
    if (attempt("fsync", [&] { return fsync(descriptor()); }) == 0) return Done{};
    return system_error(place_.name, "cannot be flushed");
}

int Replacement::rename(Old old) const {
    const char* const name = place_.name.c_str();
    const int at = place_.folder.number();
    if (old == Old::must_be_new) {
        if (renameat2(at, temporary_.c_str(), at, name, RENAME_NOREPLACE) == 0) return 0;
        if (errno != EINVAL && errno != ENOSYS) return -1;
        // A file system that cannot: what comes between these two calls is lost.
        if (faccessat(at, name, F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
            errno = EEXIST;
            return -1;
        }
    }
    return renameat(at, temporary_.c_str(), at, name);
}

Result<Durability> Replacement::put_in_place(Old old, Folder folder) {
    if (attempt("rename", [&] { return rename(old); }) != 0) {
        if (errno == EEXIST) return Error{ErrorKind::refused, place_.name + ": is there already"};
        return system_error(place_.name, "cannot be replaced");
    }
    file_ = Descriptor();
    if (folder == Folder::is_left_to_the_system) return Durability::uncertain;
    // The new file is there, whole; that the folder's entry outlives a power cut some drivers cannot promise.
    const bool flushed = attempt("fsync", [&] { return fsync(place_.folder.number()); }) == 0;
    return flushed ? Durability::flushed : Durability::uncertain;
}

}  // namespace hostfile
