#pragma once

#include <string>
#include <utility>

#include "regf/hive.h"

/// Hive files on disk: read with their logs, locked against other programs, replaced in one step.
namespace regf {

/// A file named relative to an open folder, so that nobody can move the ground under a path between two
/// calls.
struct FilePlace {
    int folder = -100;  ///< an open directory, not owned; -100 is AT_FDCWD
    std::string name;   ///< without a slash when `folder` is given, else a host path
};

/// What tells one state of a hive file from the next: device, inode, size, time of change, sequence numbers,
/// checksum.
struct FileIdentity {
    uint64_t device = 0;
    uint64_t inode = 0;
    uint64_t size = 0;
    int64_t modified_ns = 0;
    uint32_t primary_sequence = 0;
    uint32_t secondary_sequence = 0;
    uint32_t checksum = 0;
    bool operator==(const FileIdentity&) const = default;
};

/// Holds a hive file against every other program that asks (flock, exclusive, and a look for POSIX record
/// locks). Released by the destructor.
class FileLock {
  public:
    /// `in_use`: another program has it. `missing`, `refused`, `io` as they come. Follows no symbolic link,
    /// opens regular files only. On a file that may not be written it takes the lock all the same.
    /// A look shares the file with other looks, so that two programs that only ask do not meet.
    enum class Purpose { work, look };
    static Result<FileLock> acquire(const FilePlace& place, Purpose purpose = Purpose::work);
    FileLock(FileLock&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileLock& operator=(FileLock&& other) noexcept;
    ~FileLock();
    int descriptor() const { return descriptor_; }

  private:
    explicit FileLock(int descriptor) : descriptor_(descriptor) {}
    int descriptor_ = -1;
};

struct HiveFile {
    Hive hive;
    FileIdentity identity;  ///< of the file as it was read
};

/// Reads a hive with its logs (found beside it without regard to case) while `lock` holds it. Refuses a
/// system that hibernates where that can be told from the hive itself only; the caller looks for
/// hiberfil.sys.
Result<HiveFile> read_hive(const FilePlace& place, const FileLock& lock);

/// The identity of the file now.
Result<FileIdentity> identify(const FilePlace& place);

/// Writes the sealed image of `hive` in place of the file that `identity` tells of: beside it, flushed, read
/// back and compared, renamed over it, the folder flushed. Owner, mode, time of creation where the system
/// keeps one, and the extended attributes in which NTFS drivers show security and attributes
/// (`system.ntfs_acl`, `system.ntfs_attrib`, `user.*` and all others that can be read) go along; where one
/// cannot be kept, `refused` and the old file stays. `changed` if the file is another one by now. A hive
/// without changes that needed no recovery is not written. A temporary file left by a run that was killed is
/// removed by the next commit of the same hive.
Result<Done> commit(const FilePlace& place, const Hive& hive, const FileIdentity& identity, FileTime now);

/// Writes a new hive file; `refused` if there is one already.
Result<Done> write_new(const FilePlace& place, const Hive& hive, FileTime now);

}  // namespace regf
