#pragma once

#include "hostfile/file_lock.h"
#include "hostfile/replacement.h"
#include "regf/hive.h"

/// Hive files on disk: read with their logs, locked against other programs, replaced in one step.
namespace regf {

using hostfile::Descriptor;
using hostfile::Durability;
using hostfile::FileLock;
using hostfile::HostPlace;

/// What the head of a hive file tells of its content. It outlives a reboot and a move to another disk.
struct HiveStamp {
    uint64_t size = 0;
    uint32_t primary_sequence = 0;
    uint32_t secondary_sequence = 0;
    uint32_t checksum = 0;
    bool operator==(const HiveStamp&) const = default;
};

/// What tells one state of a hive file from the next, while the system runs.
struct FileIdentity {
    uint64_t device = 0;
    uint64_t inode = 0;
    int64_t modified_ns = 0;
    HiveStamp stamp;
    bool operator==(const FileIdentity&) const = default;
};

struct HiveFile {
    Hive hive;
    FileIdentity identity;  ///< of the file as it was read
};

/// Reads a hive with its logs (found beside it without regard to case) while `lock` holds it. Whether its
/// system hibernates, and must not be written to, the hive cannot tell.
Result<HiveFile> read_hive(const HostPlace& place, const FileLock& lock);

/// The memory of a hive, examined and sealed, for another process. Not open where that must read the file
/// itself: the hive was recovered, has something to be put right, or has been edited.
Descriptor hand_over(Hive& hive);
/// The hive in a memory that hand_over() of another process's hive gave; none where it is no such memory, or
/// of another state of the file. A change that its head does not show is found by the commit, which compares
/// every byte.
std::optional<HiveFile> taken_over(const HostPlace& place, Descriptor memory);

/// The identity of the file now.
Result<FileIdentity> identify(const HostPlace& place);

/// Seals `hive` and puts it in place of the file that `identity` tells of: copied beside it by the system,
/// the changed pages written, flushed, read back and all of it compared, renamed over it, the folder flushed.
/// What Replacement::take_over() takes over goes along; where something cannot be kept, `refused` and the old
/// file stays. `changed` if the file is another one by now, or holds other bytes than were opened. A hive in
/// which nothing differs is not written, recovered or not.
struct Committed {
    Durability durability = Durability::flushed;
    int differences = 0;  ///< of values and keys; 0: nothing was written
};
Result<Committed> commit(const HostPlace& place, Hive& hive, const FileIdentity& identity, FileTime now);

/// What commit() needs of the disk, tried out: a file beside this one that takes over all that is to be kept.
/// Nothing is left of it. `refused` for a file with a second name, which would keep the old content.
Result<Done> try_replacing(const HostPlace& place);

/// Writes a new hive file; `refused` if there is one already.
Result<Durability> write_new(const HostPlace& place, Hive& hive, FileTime now);

}  // namespace regf
