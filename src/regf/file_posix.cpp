#include <dirent.h>
#include <fcntl.h>
#include <linux/limits.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <set>

#include "base/text.h"
#include "regf/bytes.h"
#include "regf/file.h"
#include "regf/layout.h"
#include "regf/recovery.h"
#include "regf/system_calls.h"

namespace regf {

std::function<int(const char* call)> fail_system_call;

namespace {

constexpr const char* temporary_ending = ".brightlock-new";
constexpr off_t longest_file = off_t{1} << 31;

/// Makes a system call, again where a signal broke it off. -1: refused, errno tells why.
template <class Call>
auto attempt(const char* name, Call call) -> decltype(call()) {
    const int error = fail_system_call ? fail_system_call(name) : 0;
    if (error != 0) {
        errno = error;
        return -1;
    }
    for (;;) {
        const auto answer = call();
        if (answer != -1 || errno != EINTR) return answer;
    }
}

ErrorKind kind_of(int error) {
    switch (error) {
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
        case ETXTBSY:
            return ErrorKind::in_use;
        default:
            return ErrorKind::io;
    }
}

/// The one place where the system's answer becomes an error of ours.
Error system_error(const std::string& name, const char* what) {
    const int error = errno;
    return {kind_of(error), name + ": " + what + ": " + std::strerror(error)};
}

class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }
    int get() const { return number_; }
    int release() { return std::exchange(number_, -1); }
    bool ok() const { return number_ >= 0; }

  private:
    int number_;
};

Descriptor open_at(const FilePlace& place, int flags, mode_t mode = 0) {
    const int all = flags | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    return Descriptor(attempt("open", [&] { return openat(place.folder, place.name.c_str(), all, mode); }));
}

std::string folder_part(const std::string& name) {
    const size_t slash = name.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : name.substr(0, slash);
}

Descriptor open_folder_of(const FilePlace& place) {
    return open_at({place.folder, folder_part(place.name)}, O_RDONLY | O_DIRECTORY);
}

Result<struct stat> examine_file(int descriptor, const std::string& name) {
    struct stat info {};
    if (attempt("fstat", [&] { return fstat(descriptor, &info); }) != 0)
        return system_error(name, "cannot be examined");
    return info;
}

std::string last_part(const std::string& name) { return name.substr(name.rfind('/') + 1); }

/// Less than `size` bytes only where the file ends before.
Result<Bytes> read_front(int descriptor, size_t size, const std::string& name) {
    Bytes bytes(size);
    for (size_t done = 0; done < size;) {
        const ssize_t got = attempt("read", [&] {
            return pread(descriptor, bytes.data() + done, size - done, static_cast<off_t>(done));
        });
        if (got < 0) return system_error(name, "cannot be read");
        if (got == 0) bytes.resize(size = done);
        done += static_cast<size_t>(got);
    }
    return bytes;
}

Result<Bytes> read_all(int descriptor, const std::string& name) {
    const auto info = examine_file(descriptor, name);
    if (!info) return info.error();
    if (info->st_size > longest_file) return Error{ErrorKind::unsupported, name + ": larger than any hive"};
    return read_front(descriptor, static_cast<size_t>(info->st_size), name);
}

FileIdentity identity_of(const struct stat& info, ByteView head) {
    FileIdentity id;
    id.device = info.st_dev;
    id.inode = info.st_ino;
    id.size = static_cast<uint64_t>(info.st_size);
    id.modified_ns = info.st_mtim.tv_sec * 1'000'000'000 + info.st_mtim.tv_nsec;
    if (head.size() >= base_block::checksum + 4) {
        id.primary_sequence = get32(head, base_block::primary_sequence);
        id.secondary_sequence = get32(head, base_block::secondary_sequence);
        id.checksum = get32(head, base_block::checksum);
    }
    return id;
}

Result<FileIdentity> identify_open(int descriptor, const std::string& name) {
    const auto info = examine_file(descriptor, name);
    if (!info) return info.error();
    const auto head = read_front(descriptor, base_block_size, name);
    if (!head) return head.error();
    return identity_of(*info, *head);
}

/// The log files of a hive, by name without regard to case: `X.LOG`, `X.LOG1`, `X.LOG2`.
Result<std::vector<Log>> read_logs(const FilePlace& place) {
    Descriptor folder = open_folder_of(place);
    if (!folder.ok()) return system_error(place.name, "its folder cannot be read");
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(fdopendir(folder.get()), closedir);
    if (!entries) return system_error(place.name, "its folder cannot be read");
    (void)folder.release();  // `entries` has it now
    const std::string hive = text::lower(last_part(place.name));
    std::vector<std::string> names;
    while (const dirent* entry = readdir(entries.get())) {
        const std::string name = text::lower(entry->d_name);
        if (name == hive + ".log" || name == hive + ".log1" || name == hive + ".log2")
            names.emplace_back(entry->d_name);
    }
    std::sort(names.begin(), names.end(),
              [](const auto& a, const auto& b) { return text::lower(a) < text::lower(b); });
    std::vector<Log> logs;
    for (const std::string& name : names) {
        const Descriptor file = open_at({dirfd(entries.get()), name}, O_RDONLY);
        if (!file.ok()) continue;  // a log that cannot be read is none: without it the hive is refused
        auto bytes = read_all(file.get(), name);
        if (bytes) logs.push_back({name, std::move(*bytes)});
    }
    return logs;
}

}  // namespace

// --- FileLock

FileLock& FileLock::operator=(FileLock&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

FileLock::~FileLock() {
    if (descriptor_ >= 0) close(descriptor_);
}

Result<FileLock> FileLock::acquire(const FilePlace& place, Purpose purpose) {
    // A look asks for no more than reading: a program that runs refuses to be opened for writing, and could
    // not be started while somebody holds it so.
    const bool work = purpose == Purpose::work;
    Descriptor file = open_at(place, work ? O_RDWR : O_RDONLY);
    if (work && !file.ok() && (errno == EACCES || errno == EROFS || errno == EPERM))
        file = open_at(place, O_RDONLY);
    if (!file.ok()) return system_error(place.name, "cannot be opened");
    const auto info = examine_file(file.get(), place.name);
    if (!info) return info.error();
    if (!S_ISREG(info->st_mode)) return Error{ErrorKind::refused, place.name + ": not a regular file"};
    const Error in_use{ErrorKind::in_use, place.name + ": in use by another program"};
    const int kind = work ? LOCK_EX : LOCK_SH;
    if (attempt("flock", [&] { return flock(file.get(), kind | LOCK_NB); }) != 0)
        return errno == EWOULDBLOCK ? in_use : system_error(place.name, "cannot be locked");
    struct flock whole {};  // what programs hold that lock by records
    whole.l_type = work ? F_WRLCK : F_RDLCK;
    whole.l_whence = SEEK_SET;
    if (fcntl(file.get(), F_OFD_GETLK, &whole) == 0 && whole.l_type != F_UNLCK) return in_use;
    return FileLock(file.release());
}

// --- reading

Result<HiveFile> read_hive(const FilePlace& place, const FileLock& lock) {
    const auto info = examine_file(lock.descriptor(), place.name);
    if (!info) return info.error();
    auto bytes = read_all(lock.descriptor(), place.name);
    if (!bytes) return bytes.error();
    const FileIdentity identity = identity_of(*info, *bytes);
    std::vector<Log> logs;
    if (!is_clean(*bytes)) {
        auto found = read_logs(place);
        if (!found) return found.error();
        logs = std::move(*found);
    }
    auto hive = Hive::open(std::move(*bytes), logs);
    if (!hive) return Error{hive.error().kind, place.name + ": " + hive.error().message};
    return HiveFile{std::move(*hive), identity};
}

Result<FileIdentity> identify(const FilePlace& place) {
    const Descriptor file = open_at(place, O_RDONLY);
    if (!file.ok()) return system_error(place.name, "cannot be opened");
    return identify_open(file.get(), place.name);
}

// --- writing

namespace {

/// A file beside the hive that becomes the hive, or is taken away again.
class Replacement {
  public:
    Replacement(const FilePlace& place, mode_t mode)
        : place_(place), temporary_{place.folder, place.name + temporary_ending}, file_(create(mode)) {}
    ~Replacement() {
        if (file_.ok() && !done_) unlinkat(temporary_.folder, temporary_.name.c_str(), 0);
    }

    Result<Done> write(const Bytes& bytes, const struct stat* old, int old_descriptor);
    Result<Done> put_in_place(bool over_the_old);

  private:
    Descriptor create(mode_t mode) {
        unlinkat(temporary_.folder, temporary_.name.c_str(), 0);  // of a run that was killed
        return open_at(temporary_, O_RDWR | O_CREAT | O_EXCL, mode & 07777);
    }
    Error failed(const char* what) const { return system_error(place_.name, what); }
    Result<Done> keep_owner(const struct stat& old);
    Result<Done> keep_attributes(int old_descriptor);
    Result<Done> compare_with(const Bytes& bytes);

    FilePlace place_;
    FilePlace temporary_;
    Descriptor file_;
    bool done_ = false;
};

Result<Done> Replacement::write(const Bytes& bytes, const struct stat* old, int old_descriptor) {
    if (!file_.ok()) return failed("no file can be made beside it");
    for (size_t done = 0; done < bytes.size();) {
        const ssize_t put =
            attempt("write", [&] { return ::write(file_.get(), bytes.data() + done, bytes.size() - done); });
        if (put < 0) return failed("cannot be written");
        done += static_cast<size_t>(put);
    }
    if (old) {
        if (auto kept = keep_owner(*old); !kept) return kept;
        if (auto kept = keep_attributes(old_descriptor); !kept) return kept;
    }
    if (attempt("fsync", [&] { return fsync(file_.get()); }) != 0) return failed("cannot be flushed");
    return compare_with(bytes);
}

Result<Done> Replacement::keep_owner(const struct stat& old) {
    const auto info = examine_file(file_.get(), place_.name);
    if (!info) return info.error();
    const bool same = info->st_uid == old.st_uid && info->st_gid == old.st_gid;
    if (!same && attempt("fchown", [&] { return fchown(file_.get(), old.st_uid, old.st_gid); }) != 0)
        return failed("its owner cannot be kept");
    if (attempt("fchmod", [&] { return fchmod(file_.get(), old.st_mode & 07777); }) != 0)
        return failed("its mode cannot be kept");
    return Done{};
}

/// None: the file has no such attribute, or not for us to see.
std::optional<std::string> attribute(int descriptor, const std::string& name) {
    std::string value(XATTR_SIZE_MAX, '\0');
    const ssize_t size =
        attempt("fgetxattr", [&] { return fgetxattr(descriptor, name.c_str(), value.data(), value.size()); });
    if (size < 0) return std::nullopt;
    value.resize(static_cast<size_t>(size));
    return value;
}

/// Extended attributes: NTFS drivers show the security descriptor and the DOS attributes of a file in them.
/// A new mode makes some drivers write a new descriptor, so these come after it.
Result<Done> Replacement::keep_attributes(int old) {
    std::string names(XATTR_LIST_MAX, '\0');
    const ssize_t length = attempt("flistxattr", [&] { return flistxattr(old, names.data(), names.size()); });
    if (length < 0 && errno != ENOTSUP && errno != ENOSYS) return failed("its attributes cannot be read");
    names.resize(static_cast<size_t>(std::max<ssize_t>(length, 0)));
    std::set<std::string> wanted{"system.ntfs_acl", "system.ntfs_security", "system.ntfs_attrib",
                                 "system.ntfs_crtime"};  // drivers do not list these
    for (size_t at = 0; at < names.size(); at += std::strlen(&names[at]) + 1)
        wanted.insert(&names[at]);
    for (const std::string& name : wanted) {
        const auto value = attribute(old, name);
        if (!value && errno == EIO) return failed("its attributes cannot be read");
        if (!value || value == attribute(file_.get(), name)) continue;
        const auto set = [&] {
            return fsetxattr(file_.get(), name.c_str(), value->data(), value->size(), 0);
        };
        if (attempt("fsetxattr", set) != 0) {
            return Error{ErrorKind::refused, place_.name + ": its attribute " + name +
                                                 " cannot be kept: " + std::strerror(errno)};
        }
    }
    return Done{};
}

Result<Done> Replacement::compare_with(const Bytes& bytes) {
    auto written = read_all(file_.get(), place_.name);
    if (!written) return written.error();
    if (*written != bytes)
        return Error{ErrorKind::io, place_.name + ": reads back otherwise than it was written"};
    return Done{};
}

Result<Done> Replacement::put_in_place(bool over_the_old) {
    if (!over_the_old && faccessat(place_.folder, place_.name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
        return Error{ErrorKind::refused, place_.name + ": is there already"};
    }
    const auto rename = [&] {
        return renameat(temporary_.folder, temporary_.name.c_str(), place_.folder, place_.name.c_str());
    };
    if (attempt("rename", rename) != 0) return failed("cannot be replaced");
    done_ = true;
    // The new file is there, whole; that the folder's entry outlives a power cut some drivers cannot promise.
    const Descriptor folder = open_folder_of(place_);
    if (folder.ok()) (void)attempt("fsync", [&] { return fsync(folder.get()); });
    return Done{};
}

}  // namespace

Result<Done> commit(const FilePlace& place, const Hive& hive, const FileIdentity& identity, FileTime now) {
    if (hive.changes().empty() && !hive.recovered()) return Done{};
    auto sealed = hive.sealed_image(now);
    if (!sealed) return sealed.error();
    const Descriptor old = open_at(place, O_RDONLY);
    if (!old.ok()) return system_error(place.name, "cannot be opened");
    const auto info = examine_file(old.get(), place.name);
    if (!info) return info.error();
    const auto present = identify_open(old.get(), place.name);
    if (!present) return present.error();
    if (*present != identity)
        return Error{ErrorKind::changed, place.name + ": was changed by another program meanwhile"};
    const auto may_write = [&] { return faccessat(place.folder, place.name.c_str(), W_OK, AT_EACCESS); };
    if (attempt("access", may_write) != 0) return system_error(place.name, "may not be written");
    Replacement replacement(place, info->st_mode);
    if (auto written = replacement.write(*sealed, &*info, old.get()); !written) return written;
    return replacement.put_in_place(true);
}

Result<Done> write_new(const FilePlace& place, const Hive& hive, FileTime now) {
    auto sealed = hive.sealed_image(now);
    if (!sealed) return sealed.error();
    Replacement replacement(place, 0600);
    if (auto written = replacement.write(*sealed, nullptr, -1); !written) return written;
    return replacement.put_in_place(false);
}

}  // namespace regf
