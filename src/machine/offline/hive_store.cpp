#include "machine/offline/hive_store.h"

#include <fcntl.h>
#include <unistd.h>

#include "machine/offline/file_attributes.h"

namespace machine {

WinCode win_code(base::ErrorKind kind) {
    switch (kind) {
        case base::ErrorKind::missing:
            return file_not_found;
        case base::ErrorKind::no_space:
            return disk_full;
        case base::ErrorKind::not_a_hive:
        case base::ErrorKind::damaged:
        case base::ErrorKind::dirty:
            return registry_corrupt;
        case base::ErrorKind::io:
            return registry_io_failed;
        case base::ErrorKind::invalid:
            return invalid_parameter;
        case base::ErrorKind::refused:
        case base::ErrorKind::in_use:
        case base::ErrorKind::unsupported:
        case base::ErrorKind::changed:
            return access_denied;
    }
    return access_denied;
}

HiveStore::View FileHive::read() {
    const auto now = regf::identify(place_);
    const bool absent = !now && now.error().kind == base::ErrorKind::missing;
    if (!now && !(absent && missing_ == Missing::is_empty)) return {win_code(now.error().kind), nullptr};
    const regf::FileIdentity identity = now ? *now : regf::FileIdentity{};
    if (held_ && held_->identity == identity) return {success, &held_->hive};

    held_.reset();
    if (absent) {
        regf::Hive::NewHive empty;
        empty.now = regf::current_file_time();
        held_.emplace(regf::HiveFile{regf::Hive::create(empty), identity});
        return {success, &held_->hive};
    }
    const auto lock = hostfile::lock_with_patience(place_, hostfile::FileLock::Purpose::look);
    return lock ? read_again(*lock) : View{win_code(lock.error().kind), nullptr};
}

HiveStore::View FileHive::read_again(const hostfile::FileLock& lock) {
    held_.reset();
    auto file = regf::read_hive(place_, lock);
    if (!file) return {win_code(file.error().kind), nullptr};
    held_.emplace(std::move(*file));
    return {success, &held_->hive};
}

WinCode FileHive::check_writing() {
    const View view = read();
    if (!view.hive) return view.code;
    if (!view.hive->read_only_reason().empty()) return access_denied;
    if (held_->identity == regf::FileIdentity{}) return success;  // made at the first change
    return may_replace(place_) ? success : access_denied;
}

WinCode FileHive::apply(const regf::Change& change) {
    if (const View view = read(); !view.hive) return view.code;
    const bool absent = held_->identity == regf::FileIdentity{};
    std::optional<hostfile::FileLock> lock;
    if (!absent) {
        auto acquired = hostfile::lock_with_patience(place_, hostfile::FileLock::Purpose::work);
        if (!acquired) return win_code(acquired.error().kind);
        lock.emplace(std::move(*acquired));
        // While the lock was waited for, another instance may have put its own changes there.
        const auto now = regf::identify(place_);
        if (!now) return win_code(now.error().kind);
        const View view = *now == held_->identity ? View{success, &held_->hive} : read_again(*lock);
        if (!view.hive) return view.code;
    }
    if (const auto applied = held_->hive.apply(change); !applied) return win_code(applied.error().kind);
    if (held_->hive.changes().empty()) return success;

    // Whatever comes of the commit, what is in memory is not what was read: the next look reads afresh.
    regf::HiveFile changed = std::move(*held_);
    held_.reset();
    const regf::FileTime now = regf::current_file_time();
    if (absent) {
        const auto made = regf::write_new(place_, changed.hive, now);
        return made ? success : win_code(made.error().kind);
    }
    const auto written = regf::commit(place_, changed.hive, changed.identity, now);
    return written ? success : win_code(written.error().kind);
}

WinCode MountHive::append(const std::string& frame) {
    const FileError error = write_all(record_.number(), frame);
    if (error != no_error) broken_ = error == device_full ? disk_full : registry_io_failed;
    return broken_;
}

WinCode MountHive::apply(const regf::Change& change) {
    if (broken_ != success) return broken_;
    regf::Hive& hive = hive_.file.hive;
    const size_t before = hive.changes().size();
    if (const auto applied = hive.apply(change); !applied) return win_code(applied.error().kind);
    if (hive.changes().size() == before) return success;
    unsealed_ = true;
    return append(change_frame(change));
}

WinCode MountHive::seal() {
    if (broken_ != success || !unsealed_) return broken_;
    // Not flushed: the hive is, next, with these changes in it, or else the note that this failed.
    if (append(seal_frame()) == success) unsealed_ = false;
    return broken_;
}

}  // namespace machine
