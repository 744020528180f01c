#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "regf/error.h"

/// Files of the system underneath, and what its answers mean here.
namespace regf {

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
    Descriptor duplicate() const { return Descriptor(fcntl(number_, F_DUPFD_CLOEXEC, 0)); }

  private:
    int number_ = -1;
};

/// A file named relative to an open folder, so that nobody can move the ground under a path between two
/// calls.
struct FilePlace {
    int folder = AT_FDCWD;  ///< an open directory, not owned
    std::string name;       ///< without a slash when `folder` is given, else a host path
};

/// Asked before every call that can fail for a reason outside the program; another number than 0 makes the
/// call fail with that errno. For tests that let the n-th call fail.
extern std::function<int(const char* call)> fail_system_call;

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

ErrorKind kind_of(int error_number);
/// The one place where the system's answer, in errno, becomes an error of ours.
Error system_error(const std::string& name, const std::string& what);

bool is_same_file(const struct stat& a, const struct stat& b);

/// Opens a regular file, no link followed; `refused` for all else.
struct OpenFile {
    Descriptor file;
    struct stat status;
};
Result<OpenFile> open_regular(const FilePlace& place, int flags);
Result<Descriptor> open_folder_of(const FilePlace& place);
std::string last_part(const std::string& name);

/// Names in a folder, in the order of the disk, without "." and "..".
Result<std::vector<std::string>> names_in(int folder);

}  // namespace regf
