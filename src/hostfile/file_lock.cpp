#include "hostfile/file_lock.h"

#include <sys/file.h>

#include <thread>

namespace hostfile {

Result<FileLock> FileLock::acquire(const HostPlace& place, Purpose purpose) {
    // A look asks for no more than reading: a program that runs refuses to be opened for writing, and could
    // not be started while somebody holds it so.
    const bool work = purpose == Purpose::work;
    auto opened = open_regular(place, work ? O_RDWR : O_RDONLY);
    if (work && !opened && opened.error().kind == ErrorKind::refused) opened = open_regular(place, O_RDONLY);
    if (!opened) return opened.error();
    return hold(place, std::move(*opened), purpose);
}

Result<FileLock> FileLock::handed_over(const HostPlace& place, Descriptor file) {
    OpenFile opened{std::move(file), {}};
    if (attempt("fstat", [&] { return fstat(opened.file.number(), &opened.status); }) != 0)
        return system_error(place.name, "cannot be examined");
    return hold(place, std::move(opened), Purpose::work);
}

Result<FileLock> FileLock::hold(const HostPlace& place, OpenFile opened, Purpose purpose) {
    const bool work = purpose == Purpose::work;
    const int file = opened.file.number();
    const Error in_use{ErrorKind::in_use, place.name + ": in use by another program"};
    const int kind = work ? LOCK_EX : LOCK_SH;
    if (attempt("flock", [&] { return flock(file, kind | LOCK_NB); }) != 0)
        return errno == EWOULDBLOCK ? in_use : system_error(place.name, "cannot be locked");
    struct flock whole {};  // what programs hold that lock by records
    whole.l_type = work ? F_WRLCK : F_RDLCK;
    whole.l_whence = SEEK_SET;
    if (fcntl(file, F_OFD_GETLK, &whole) == 0 && whole.l_type != F_UNLCK) return in_use;
    struct stat present {};  // who held it may have put another file in its place
    if (fstatat(place.folder.number(), place.name.c_str(), &present, AT_SYMLINK_NOFOLLOW) != 0 ||
        !is_same_file(present, opened.status))
        return in_use;
    return FileLock(std::move(opened.file));
}

FileLock::~FileLock() { (void)release(); }

Descriptor FileLock::release() {
    if (file_.is_open()) (void)flock(file_.number(), LOCK_UN);
    return std::move(file_);
}

Result<FileLock> lock_with_patience(const HostPlace& place, FileLock::Purpose purpose,
                                    std::chrono::milliseconds patience) {
    constexpr auto pause = std::chrono::milliseconds(10);
    const auto end = std::chrono::steady_clock::now() + patience;
    for (;;) {
        auto lock = FileLock::acquire(place, purpose);
        if (lock || lock.error().kind != ErrorKind::in_use || std::chrono::steady_clock::now() > end)
            return lock;
        std::this_thread::sleep_for(pause);
    }
}

}  // namespace hostfile
