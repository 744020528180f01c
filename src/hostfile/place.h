#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/error.h"

/// Files of the Linux system underneath, by open folders and names: no path is walked twice, no link is
/// followed, nothing but regular files and folders is opened.
namespace hostfile {

using base::Error;
using base::ErrorKind;
using base::Result;

/// Owns an open file or folder.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ >= 0) (void)close(number_);
    }

    int number() const { return number_; }
    bool is_open() const { return number_ >= 0; }
    int release() { return std::exchange(number_, -1); }
    Descriptor duplicate() const { return duplicate_above(0); }
    Descriptor duplicate_above(int least) const { return Descriptor(fcntl(number_, F_DUPFD_CLOEXEC, least)); }

  private:
    int number_ = -1;
};

/// A name in an open folder, so that nobody can move the ground under a path between two calls; "." is the
/// folder itself.
struct HostPlace {
    Descriptor folder;
    std::string name;     ///< as on disk, or as it would be made; UTF-8, no slash
    bool exists = false;  ///< when it was looked for

    /// The full path at this moment, for other programs and for people.
    std::string path() const;
};
/// Opens the folder of a path of this system.
Result<HostPlace> place_of(const std::string& path);

/// Asked before every call that can fail for a reason outside the program; another number than 0 makes the
/// call fail with that errno. For tests that let the n-th call fail.
extern std::function<int(const char* call)> fail_system_call;

inline int planned_failure(const char* call) { return fail_system_call ? fail_system_call(call) : 0; }

/// Makes a system call, again where a signal broke it off. -1: refused, errno tells why.
template <class Call>
auto attempt(const char* name, Call call) -> decltype(call()) {
    if (const int error = planned_failure(name); error != 0) {
        errno = error;
        return -1;
    }
    for (;;) {
        const auto answer = call();
        if (answer != -1 || errno != EINTR) return answer;
    }
}

ErrorKind kind_of(int error_number);
/// The one place where the system's answer, in errno, becomes an error of ours.
Error system_error(const std::string& name, const std::string& what);

bool is_same_file(const struct stat& a, const struct stat& b);

/// Opens a regular file, no link followed; `refused` for all else.
struct OpenFile {
    Descriptor file;
    struct stat status;
};
Result<OpenFile> open_regular(const HostPlace& place, int flags);

/// Names in a folder, in the order of the disk, without "." and "..".
Result<std::vector<std::string>> names_in(int folder);

/// Makes a folder and all above it, for this user alone.
Result<Done> make_folders(const std::string& path);

/// FNV-1a: the same for one text at every run, for file names made from others.
uint64_t name_digest(std::string_view text);

}  // namespace hostfile
