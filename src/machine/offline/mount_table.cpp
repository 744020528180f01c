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
#include "regf/bytes.h"

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

base::Result<Done> MountTable::add(const Mount& mount) const {
    if (mount.name.size() > longest_name)
        return base::Error{base::ErrorKind::invalid, "the name of the key is too long"};
    if (const auto made = hostfile::make_folders(folder_); !made) return made.error();
    // Two tools at a time must not take one name: not every file system can rename without replacing.
    const Descriptor folder(open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.is_open() || flock(folder.number(), LOCK_EX) != 0)
        return hostfile::system_error(folder_, "cannot be opened");
    if (find(mount.name)) return base::Error{base::ErrorKind::refused, "another hive is mounted there"};
    const HostPlace place{folder.duplicate(), path_of(mount.name).substr(folder_.size() + 1), false};
    const FileError error =
        replace_file(place, [&](int file) { return write_all(file, mount_frame(mount)); });
    if (error == no_error) return Done{};
    if (error == device_full)
        return base::Error{base::ErrorKind::no_space, "no room to record the mount: the disk is full"};
    return base::Error{base::ErrorKind::io, "cannot record the mount in " + folder_};
}

base::Result<Done> MountTable::remove(std::string_view name) const {
    if (unlink(path_of(name).c_str()) != 0)
        return hostfile::system_error(folder_, "the record of the mount cannot be removed");
    const Descriptor folder(open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.is_open()) (void)fsync(folder.number());  // some file systems flush no folder
    return Done{};
}

base::Result<Descriptor> MountTable::open_sealed(const MountRecord& record) const {
    Descriptor file(open(path_of(record.mount.name).c_str(), O_WRONLY | O_APPEND | O_NOFOLLOW | O_CLOEXEC));
    if (!file.is_open() || ftruncate(file.number(), static_cast<off_t>(record.sealed_bytes)) != 0)
        return hostfile::system_error(folder_, "the record of the mount cannot be opened");
    return file;
}

void MountTable::announce(const MountRecord& record, const regf::HiveStamp& stamp) const {
    const auto file = open_sealed(record);
    if (file && write_all(file->number(), written_frame(stamp)) == no_error) (void)fdatasync(file->number());
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
    const uint64_t digest = hostfile::name_digest(canonical ? canonical.get() : drive_c.c_str());
    std::array<char, 17> digits{};
    (void)std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(digest));
    return state_folder + "/mounts/" + digits.data();
}

base::Result<MountedHive> open_mounted(const DriveMap& drives, const MountTable& mounts,
                                       std::string_view name) {
    const base::Error not_mounted{base::ErrorKind::missing, "no hive is mounted there"};
    const auto found = mounts.find(name);
    if (!found) return not_mounted;
    auto place = locate_hive(drives, found->mount.file);
    if (!place) return place.error();
    auto lock = hostfile::lock_with_patience(*place, hostfile::FileLock::Purpose::work, hostfile::a_moment);
    if (!lock) return lock.error();
    auto record = mounts.find(name);  // again, as only the lock keeps others from adding to it
    if (!record) return not_mounted;
    // Before it is read: another file that cannot be read must not hold on to the name for ever.
    const auto present = regf::identify(*place);
    if (!present) return present.error();
    if (present->stamp != record->mount.stamp)
        return base::Error{base::ErrorKind::changed,
                           file_for_people(record->mount.file) + " was changed after it had been mounted"};
    auto file = regf::read_hive(*place, *lock);
    if (!file) return file.error();
    for (const regf::Change& change : record->sealed) {
        if (const auto applied = file->hive.apply(change); !applied) return applied.error();
    }
    return MountedHive{std::move(*record), std::move(*place), std::move(*lock), std::move(*file)};
}

bool is_written(const DriveMap& drives, const MountRecord& record) {
    const auto place = locate_hive(drives, record.mount.file);
    const auto present = place ? regf::identify(*place) : base::Result<regf::FileIdentity>(place.error());
    return present && present->stamp == record.written;
}

bool is_mounted(const DriveMap& drives, const MountTable& mounts, const HostPlace& file) {
    struct stat asked {};
    if (fstatat(file.folder.number(), file.name.c_str(), &asked, AT_SYMLINK_NOFOLLOW) != 0) return false;
    const auto all = mounts.mounts();
    return std::any_of(all.begin(), all.end(), [&](const Mount& mount) {
        const auto place = locate_hive(drives, mount.file);
        struct stat mounted {};
        return place &&
               fstatat(place->folder.number(), place->name.c_str(), &mounted, AT_SYMLINK_NOFOLLOW) == 0 &&
               hostfile::is_same_file(asked, mounted);
    });
}

}  // namespace machine
