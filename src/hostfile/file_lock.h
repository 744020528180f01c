#pragma once

#include <chrono>

#include "hostfile/place.h"

namespace hostfile {

/// Holds a file against every other program that asks (flock, exclusive, and a look for POSIX record
/// locks). Released by the destructor, even while the descriptor is still open in a process it came from.
class FileLock {
  public:
    /// `in_use`: another program has it, or has put another file there this moment. `missing`, `refused`,
    /// `io` as they come. Follows no symbolic link, opens regular files only. On a file that may not be
    /// written it takes the lock all the same. A look shares the file with other looks, so that two programs
    /// that only ask do not meet.
    enum class Purpose { work, look };
    static Result<FileLock> acquire(const HostPlace& place, Purpose purpose = Purpose::work);
    /// Goes on with the lock of a descriptor that another process of ours handed over. `in_use` where it is
    /// of another file than the one that lies there now.
    static Result<FileLock> handed_over(const HostPlace& place, Descriptor file);
    FileLock(FileLock&&) = default;
    FileLock& operator=(FileLock&& other) noexcept {
        std::swap(file_, other.file_);
        return *this;
    }
    ~FileLock();

    int descriptor() const { return file_.number(); }
    /// For another process of ours, which goes on with the lock: this one lets go of it.
    Descriptor hand_over() { return std::move(file_); }
    /// Ends it. The file stays open: closing the last descriptor of one that was replaced takes the disk its
    /// time.
    Descriptor release();

  private:
    static Result<FileLock> hold(const HostPlace& place, OpenFile opened, Purpose purpose);
    explicit FileLock(Descriptor file) : file_(std::move(file)) {}
    Descriptor file_;
};

/// How long a person's hive is waited for.
constexpr std::chrono::milliseconds a_moment(300);

/// Another instance of the program holds the lock on a hive for some milliseconds, while it reads or commits:
/// that is waited for, since a refusal would read as if nothing were stored there.
Result<FileLock> lock_with_patience(const HostPlace& place, FileLock::Purpose purpose,
                                    std::chrono::milliseconds patience = std::chrono::milliseconds(2000));

}  // namespace hostfile
