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
#include "hostfile/replacement.h"

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

/// Belongs to this user, and `forbidden` is open to nobody.
bool is_private(const struct stat& status, mode_t forbidden) {
    return status.st_uid == geteuid() && (status.st_mode & forbidden) == 0;
}

base::Error not_private(const std::string& name) {
    return {base::ErrorKind::refused, name + ": belongs to somebody else or is open to others"};
}

/// A record, or the mount in it.
template <class Content>
base::Result<Content> read_record(const HostPlace& place, std::optional<Content> (*parse)(std::string_view)) {
    const auto opened = hostfile::open_regular(place, O_RDONLY);
    if (!opened) return opened.error();
    if (!is_private(opened->status, 0077)) return not_private(place.path());
    const auto bytes = read_all(opened->file.number());
    if (!bytes) return base::Error{base::ErrorKind::io, "the record of a mount cannot be read"};
    // A power cut took what had not reached the disk. The hive is whole, with its changes or without them.
    if (bytes->find_first_not_of('\0') == std::string::npos)
        return base::Error{base::ErrorKind::missing, "the record of the mount is empty"};
    auto content = parse(*bytes);
    if (!content) return base::Error{base::ErrorKind::damaged, "the record of the mount is damaged"};
    return std::move(*content);
}

}  // namespace

base::Result<Descriptor> MountTable::open_folder() const {
    Descriptor folder(open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!folder.is_open() && errno == ENOTDIR) return not_private(folder_);
    if (!folder.is_open() || fstat(folder.number(), &status) != 0)
        return hostfile::system_error(folder_, "cannot be opened");
    if (!is_private(status, 0077)) return not_private(folder_);
    return folder;
}

base::Result<HostPlace> MountTable::place_of(std::string_view name) const {
    auto folder = open_folder();
    if (!folder) return folder.error();
    return HostPlace{std::move(*folder), hex(text::lower(name)) + std::string(ending), true};
}

base::Result<HostPlace> MountTable::lock_place_of(std::string_view name) const {
    auto place = place_of(name);
    if (place && flock(place->folder.number(), LOCK_EX) != 0)
        return hostfile::system_error(folder_, "cannot be locked");
    return place;
}

base::Result<std::vector<Mount>> MountTable::mounts() const {
    std::vector<Mount> mounts;
    const auto folder = open_folder();
    if (!folder && folder.error().kind == base::ErrorKind::missing) return mounts;
    if (!folder) return folder.error();
    const auto names = hostfile::names_in(folder->number());
    if (!names) return names.error();
    for (const std::string& name : *names) {
        if (!name.ends_with(ending)) continue;
        const auto mount = read_record({folder->duplicate(), name, true}, parse_mount);
        if (!mount && mount.error().kind == base::ErrorKind::io) return mount.error();
        if (mount) mounts.push_back(*mount);
    }
    std::sort(mounts.begin(), mounts.end(),
              [](const Mount& a, const Mount& b) { return text::less_ignoring_case(a.name, b.name); });
    return mounts;
}

base::Result<MountRecord> MountTable::find(std::string_view name) const {
    const auto place = place_of(name);
    auto record = place ? read_record(*place, parse_record) : base::Result<MountRecord>(place.error());
    if (!record && record.error().kind == base::ErrorKind::missing)
        return base::Error{base::ErrorKind::missing, "no hive is mounted there"};
    return record;
}

base::Result<Done> MountTable::add(const Mount& mount) const {
    if (mount.name.size() > longest_name)
        return base::Error{base::ErrorKind::invalid, "the name of the key is too long"};
    if (const auto made = hostfile::make_folders(folder_); !made) return made.error();
    // Two tools at a time must not take one name: not every file system can rename without replacing.
    const auto place = lock_place_of(mount.name);
    if (!place) return place.error();
    const auto there = find(mount.name);
    if (there) return base::Error{base::ErrorKind::refused, "another hive is mounted there"};
    const base::ErrorKind why = there.error().kind;
    if (why != base::ErrorKind::missing && why != base::ErrorKind::damaged) return there.error();
    auto record = hostfile::Replacement::begin(*place, 0600);
    if (!record) return record.error();
    if (const FileError error = write_all(record->descriptor(), mount_frame(mount)))
        return base::Error{error == device_full ? base::ErrorKind::no_space : base::ErrorKind::io,
                           "cannot record the mount in " + folder_};
    // Not flushed: a mount has no meaning after a power cut, and what is sealed in it is flushed when it
    // counts.
    const auto placed = record->put_in_place(hostfile::Replacement::Old::may_exist,
                                             hostfile::Replacement::Folder::is_left_to_the_system);
    return placed ? base::Result<Done>(Done{}) : placed.error();
}

base::Result<Done> MountTable::remove(const Mount& mount) const {
    const auto place = lock_place_of(mount.name);
    if (!place) return place.error();
    const auto there = read_record(*place, parse_mount);
    const bool gone = !there && there.error().kind == base::ErrorKind::missing;
    if (gone || (there && *there != mount)) return Done{};
    if (!there && there.error().kind != base::ErrorKind::damaged) return there.error();
    const int folder = place->folder.number();
    if (unlinkat(folder, place->name.c_str(), 0) != 0)
        return hostfile::system_error(folder_, "the record of the mount cannot be removed");
    return Done{};
}

base::Result<Done> MountTable::drop(const Mount& mount) const {
    auto removed = remove(mount);
    if (const auto folder = open_folder())
        (void)fsync(folder->number());  // some file systems flush no folder
    return removed;
}

base::Result<Descriptor> MountTable::open_sealed(const MountRecord& record) const {
    const auto place = place_of(record.mount.name);
    if (!place) return place.error();
    auto opened = hostfile::open_regular(*place, O_WRONLY | O_APPEND);
    if (!opened) return opened.error();
    if (ftruncate(opened->file.number(), static_cast<off_t>(record.sealed_bytes)) != 0)
        return hostfile::system_error(folder_, "the record of the mount cannot be opened");
    return std::move(opened->file);
}

bool MountTable::note_failure(const MountRecord& record) const {
    const auto file = open_sealed(record);
    return file && write_all(file->number(), failure_frame()) == no_error && fdatasync(file->number()) == 0;
}

std::string default_state_folder() {
    const auto own = [](const char* folder) {
        struct stat status {};
        return folder && *folder == '/' && (stat(folder, &status) != 0 || status.st_uid == geteuid());
    };
    const char* const home = std::getenv("HOME");
    if (const char* state = std::getenv("XDG_STATE_HOME"); own(state) && (!home || own(home)))
        return std::string(state) + "/brightlock";
    const passwd* account = own(home) ? nullptr : getpwuid(geteuid());
    return std::string(account ? account->pw_dir : home ? home : "") + "/.local/state/brightlock";
}

base::Result<Done> make_state_folder(const std::string& folder) {
    if (auto made = hostfile::make_folders(folder); !made) return made;
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0) return hostfile::system_error(folder, "cannot be examined");
    if (!is_private(status, 0022)) return not_private(folder);
    return Done{};
}

std::string mounts_folder(const std::string& state_folder, const std::string& drive_c) {
    const std::unique_ptr<char, void (*)(void*)> canonical(realpath(drive_c.c_str(), nullptr), std::free);
    const uint64_t digest = hostfile::name_digest(canonical ? canonical.get() : drive_c.c_str());
    std::array<char, 17> digits{};
    (void)std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(digest));
    return state_folder + "/mounts/" + digits.data();
}

namespace {

base::Result<Done> apply_all(const std::vector<regf::Change>& changes, regf::Hive& hive) {
    for (const regf::Change& change : changes) {
        if (auto applied = hive.apply(change); !applied) return applied;
    }
    return Done{};
}

}  // namespace

base::Result<MountedHive> open_mounted(const DriveMap& drives, const MountTable& mounts,
                                       const MountRecord& found, std::optional<HandedHive> handed,
                                       std::chrono::milliseconds patience) {
    auto place = locate_hive(drives, found.mount.file);
    if (!place) return place.error();
    auto lock = handed ? hostfile::FileLock::handed_over(*place, std::move(handed->lock))
                       : hostfile::lock_with_patience(*place, hostfile::FileLock::Purpose::work, patience);
    if (!lock) return lock.error();
    // Only the lock keeps others from adding to it.
    auto record = handed ? base::Result<MountRecord>(found) : mounts.find(found.mount.name);
    if (!record) return record.error();
    // Before it is read: another file that cannot be read must not hold on to the name for ever.
    const auto present = regf::identify(*place);
    if (!present) return present.error();
    if (present->stamp != record->mount.stamp)
        return base::Error{base::ErrorKind::changed,
                           file_for_people(record->mount.file) + " was changed after it had been mounted"};
    Descriptor memory = handed ? std::move(handed->memory) : Descriptor();
    auto examined = memory.is_open() ? regf::taken_over(*place, memory.duplicate()) : std::nullopt;
    auto file =
        examined ? base::Result<regf::HiveFile>(std::move(*examined)) : regf::read_hive(*place, *lock);
    if (!file) return file.error();
    if (!examined) memory = regf::hand_over(file->hive);
    if (const auto applied = apply_all(record->sealed, file->hive); !applied) return applied.error();
    return MountedHive{std::move(*record), std::move(*place), std::move(*lock), std::move(*file),
                       std::move(memory)};
}

bool is_written(const DriveMap& drives, const MountRecord& record) {
    const auto place = locate_hive(drives, record.mount.file);
    if (!place) return false;
    const auto lock = hostfile::lock_with_patience(*place, hostfile::FileLock::Purpose::look);
    auto file = lock ? regf::read_hive(*place, *lock) : base::Result<regf::HiveFile>(lock.error());
    if (!file || file->identity.stamp == record.mount.stamp || !apply_all(record.sealed, file->hive))
        return false;
    const auto sealed = file->hive.seal(regf::current_file_time());
    return sealed && sealed->differences == 0;
}

base::Result<bool> is_mounted(const DriveMap& drives, const MountTable& mounts, const HostPlace& file) {
    struct stat asked {};
    if (fstatat(file.folder.number(), file.name.c_str(), &asked, AT_SYMLINK_NOFOLLOW) != 0) return false;
    const auto all = mounts.mounts();
    if (!all) return all.error();
    return std::any_of((*all).begin(), (*all).end(), [&](const Mount& mount) {
        const auto place = locate_hive(drives, mount.file);
        struct stat mounted {};
        return place &&
               fstatat(place->folder.number(), place->name.c_str(), &mounted, AT_SYMLINK_NOFOLLOW) == 0 &&
               hostfile::is_same_file(asked, mounted);
    });
}

}  // namespace machine
