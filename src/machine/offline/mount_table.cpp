#include "machine/offline/mount_table.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/text.h"

namespace machine {

namespace {

constexpr std::string_view ending = ".mount";
/// Two digits for each byte, the ending, and Linux takes names of 255 bytes.
constexpr size_t longest_name = 120;

std::string hex(std::string_view bytes) {
    std::string out;
    for (char c : bytes) {
        std::array<char, 3> digits{};
        (void)std::snprintf(digits.data(), digits.size(), "%02x", static_cast<unsigned char>(c));
        out += digits.data();
    }
    return out;
}

regf::Error system_error(const std::string& what) {
    const auto kind = errno == ENOSPC || errno == EDQUOT || errno == EFBIG ? regf::ErrorKind::no_space
                      : errno == ENOENT                                    ? regf::ErrorKind::missing
                      : errno == EACCES || errno == EROFS                  ? regf::ErrorKind::refused
                                                                           : regf::ErrorKind::io;
    return {kind, what + ": " + strerror(errno)};
}

}  // namespace

std::string MountTable::path_of(std::string_view name) const {
    return folder_ + "/" + hex(text::lower(name)) + std::string(ending);
}

std::vector<Mount> MountTable::mounts() const {
    std::vector<Mount> mounts;
    const Descriptor folder(open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.is_open()) return mounts;
    const auto names = names_in(folder.number());
    if (!names) return mounts;
    for (const std::string& name : *names) {
        if (!name.ends_with(ending)) continue;
        const auto file = open_file({folder.duplicate(), name, true}, O_RDONLY);
        const auto bytes = file ? read_all(file->number()) : FileResult<std::string>(file.error());
        const auto record = bytes ? parse_record(*bytes) : std::nullopt;
        if (record) mounts.push_back(record->mount);
    }
    std::sort(mounts.begin(), mounts.end(),
              [](const Mount& a, const Mount& b) { return text::less_ignoring_case(a.name, b.name); });
    return mounts;
}

std::optional<MountRecord> MountTable::find(std::string_view name) const {
    const Descriptor file(open(path_of(name).c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    if (!file.is_open()) return std::nullopt;
    const auto bytes = read_all(file.number());
    return bytes ? parse_record(*bytes) : std::nullopt;
}

bool MountTable::is_mounted(const HostPlace& file) const {
    struct stat status {};
    if (fstatat(file.folder.number(), file.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
    const auto all = mounts();
    return std::any_of(all.begin(), all.end(), [&](const Mount& mount) {
        return mount.identity.device == status.st_dev && mount.identity.inode == status.st_ino;
    });
}

regf::Result<Done> MountTable::add(const Mount& mount) const {
    if (mount.name.size() > longest_name)
        return regf::Error{regf::ErrorKind::invalid, "the name of the key is too long"};
    if (const auto made = make_folders(folder_); !made) return made.error();
    // Two tools at a time must not take one name: not every file system can rename without replacing.
    const Descriptor folder(open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.is_open() || flock(folder.number(), LOCK_EX) != 0)
        return system_error("cannot open the folder of the mounts");
    const std::string path = path_of(mount.name);
    if (access(path.c_str(), F_OK) == 0)
        return regf::Error{regf::ErrorKind::refused, "another hive is mounted there"};
    const HostPlace place{folder.duplicate(), path.substr(folder_.size() + 1), false};
    const FileError error =
        replace_file(place, [&](int file) { return write_all(file, mount_frame(mount)); });
    if (error == no_error) return Done{};
    if (error == device_full)
        return regf::Error{regf::ErrorKind::no_space, "no room to record the mount: the disk is full"};
    return regf::Error{regf::ErrorKind::io, "cannot record the mount in " + folder_};
}

regf::Result<Done> MountTable::remove(std::string_view name) const {
    if (unlink(path_of(name).c_str()) != 0) return system_error("cannot remove the record of the mount");
    return Done{};
}

regf::Result<Descriptor> MountTable::open_sealed(const MountRecord& record) const {
    Descriptor file(open(path_of(record.mount.name).c_str(), O_WRONLY | O_APPEND | O_NOFOLLOW | O_CLOEXEC));
    if (!file.is_open() || ftruncate(file.number(), static_cast<off_t>(record.sealed_bytes)) != 0)
        return system_error("cannot open the record of the mount");
    return file;
}

std::string default_state_folder() {
    if (const char* state = std::getenv("XDG_STATE_HOME"); state && *state == '/')
        return std::string(state) + "/brightlock";
    const char* home = std::getenv("HOME");
    const passwd* account = home && *home == '/' ? nullptr : getpwuid(geteuid());
    return std::string(account ? account->pw_dir : home ? home : "") + "/.local/state/brightlock";
}

std::string mounts_folder(const std::string& state_folder, const std::string& drive_c) {
    const std::unique_ptr<char, void (*)(void*)> canonical(realpath(drive_c.c_str(), nullptr), std::free);
    uint64_t hash = 0xCBF29CE484222325;  // FNV-1a
    for (char c : std::string_view(canonical ? canonical.get() : drive_c.c_str()))
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    std::array<char, 17> digits{};
    (void)std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash));
    return state_folder + "/mounts/" + digits.data();
}

regf::Result<MountedHive> open_mounted(const DriveMap& drives, const MountTable& mounts,
                                       std::string_view name) {
    const regf::Error not_mounted{regf::ErrorKind::missing, "no hive is mounted there"};
    const auto found = mounts.find(name);
    if (!found) return not_mounted;
    auto place = locate_hive(drives, found->mount.file);
    if (!place) return place.error();
    auto lock = regf::FileLock::acquire(place->hive());
    if (!lock) return lock.error();
    auto record = mounts.find(name);  // again, as only the lock keeps others from adding to it
    if (!record) return not_mounted;
    auto file = regf::read_hive(place->hive(), *lock);
    if (!file) return file.error();
    if (!(file->identity == record->mount.identity))
        return regf::Error{regf::ErrorKind::changed,
                           text::to_utf8(record->mount.file) + " was changed after it had been mounted"};
    for (const regf::Change& change : record->sealed) {
        if (const auto applied = file->hive.apply(change); !applied) return applied.error();
    }
    return MountedHive{std::move(*record), std::move(*place), std::move(*lock), std::move(*file)};
}

}  // namespace machine
