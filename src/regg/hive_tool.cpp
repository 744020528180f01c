#include "regg/hive_tool.h"

#include <new>

#include "base/text.h"
#include "machine/offline/file_attributes.h"
#include "machine/offline/installation.h"
#include "machine/tool_command.h"

namespace regg {

namespace {

using base::Error;
using base::ErrorKind;
using base::Result;
using machine::HandedHive;
using machine::MountRecord;
using machine::ToolReport;

/// The name after HKU\, in the code page.
Result<std::string> name_of_mount(const std::string& key) {
    const auto ansi = text::from_utf8(key);
    if (!ansi) return Error{ErrorKind::invalid, "Windows cannot spell the key " + key + " in its code page"};
    const std::string_view name = machine::mount_name(*ansi);
    if (name.empty()) return Error{ErrorKind::invalid, key + machine::not_a_mount};
    return std::string(name);
}

/// The file as the mount keeps it: a host path as it is, a Windows path in the code page.
Result<std::string> file_name(const Setting& setting, const std::string& file) {
    if (file.starts_with('/')) return file;
    const auto ansi = text::from_utf8(file);
    if (!ansi)
        return Error{ErrorKind::invalid, "Windows cannot spell the path " + file + " in its code page"};
    if (!machine::parse_path(*ansi))
        return Error{ErrorKind::invalid, file + " is not the full path of a file"};
    if (setting.drives.is_empty())
        return Error{ErrorKind::invalid, "no folder is known for the drive of " + file +
                                             ": name the file from the root of this system"};
    return *ansi;
}

Result<Done> load(const Setting& setting, const std::string& file, const std::string& name, Run& run) {
    const auto named = file_name(setting, file);
    if (!named) return named.error();
    const auto place = machine::locate_hive(setting.drives, *named);
    if (!place) return place.error();
    // Windows writes over whatever it wakes up to.
    if (machine::hibernates(setting.drives))
        return Error{ErrorKind::unsupported, "this Windows hibernates: start it and shut it down first"};
    // Another unload has written it this moment, and its record is about to go.
    const auto old = setting.mounts.find(name);
    if (old && machine::is_written(setting.drives, *old)) (void)setting.mounts.remove(old->mount);
    auto lock = hostfile::lock_with_patience(*place, hostfile::FileLock::Purpose::work, hostfile::a_moment);
    if (!lock) return lock.error();
    const auto mounted = machine::is_mounted(setting.drives, setting.mounts, *place);
    if (!mounted) return mounted.error();
    if (*mounted) return Error{ErrorKind::in_use, file + " is mounted already"};
    auto hive = regf::read_hive(*place, *lock);
    if (!hive) return hive.error();
    if (!hive->hive.read_only_reason().empty())
        return Error{ErrorKind::unsupported, file + " cannot be edited: " + hive->hive.read_only_reason()};
    if (!machine::may_replace(*place))
        return Error{ErrorKind::refused, "no permission to write " + file + " and its folder"};
    // What could not be written at the end is refused now, before anybody works on it.
    if (auto possible = regf::try_replacing(*place); !possible) return possible;
    auto added = setting.mounts.add({name, *named, hive->identity.stamp});
    if (!added) return added;
    run.hive = HandedHive{lock->hand_over(), regf::hand_over(hive->hive)};
    run.remains = std::make_shared<const regf::HiveFile>(std::move(*hive));
    return Done{};
}

/// A later try may succeed: with room on the disk, with the disk there again, with the right to write.
bool can_pass(ErrorKind kind) {
    return kind == ErrorKind::in_use || kind == ErrorKind::no_space || kind == ErrorKind::io ||
           kind == ErrorKind::refused;
}

Result<Done> write_changes(Setting& setting, const MountRecord& record, Run& run) try {
    constexpr auto patience = std::chrono::seconds(2);  // for the tools of other instances, which are quick
    auto hive =
        machine::open_mounted(setting.drives, setting.mounts, record, std::move(setting.handed), patience);
    if (!hive) return hive.error();
    const auto written =
        regf::commit(hive->place, hive->file.hive, hive->file.identity, regf::current_file_time());
    if (!written) return written.error();
    ToolReport& report = run.report;
    report.changed = written->differences;
    if (written->durability == regf::Durability::uncertain)
        report.detail = "the hive is written, but its folder could not be flushed: do not cut the power yet";
    if (hive->record.unsealed) {
        report.changes_lost = true;
        report.detail = "the unfinished changes of a run that was broken off are dropped";
    }
    const auto removed = setting.mounts.remove(hive->record.mount);  // while nobody else can add to it
    using Remains = std::pair<regf::HiveFile, hostfile::Descriptor>;
    run.remains = std::make_shared<const Remains>(std::move(hive->file), hive->lock.release());
    // A record that tells of a hive that is written is no mount: the next one who finds it clears it away.
    return removed || report.changed > 0 ? Done{} : removed;
} catch (const std::bad_alloc&) {
    return Error{ErrorKind::no_space, "there is not enough memory for this hive"};
}

/// The changes could not be written. What may pass is tried once more, by the next unload; all else is
/// dropped, as a mount that nobody can write would keep its name, and its user, for ever.
Result<Done> keep_or_drop(const Setting& setting, const MountRecord& record, const Error& why,
                          ToolReport& report) {
    if (why.kind == ErrorKind::in_use) return why;
    if (record.sealed.empty()) return setting.mounts.remove(record.mount);
    if (can_pass(why.kind) && !record.failed_before && setting.mounts.note_failure(record))
        return Error{why.kind, why.message + "; it is kept for the next unload"};
    if (auto removed = setting.mounts.drop(record.mount); !removed) return removed;
    report.changes_lost = true;
    return Error{why.kind, why.message + "; what was to be written to it is dropped"};
}

Result<Done> unload(Setting& setting, const std::string& name, Run& run) {
    const auto record = setting.mounts.find(name);
    if (!record && record.error().kind == ErrorKind::damaged) {
        run.report.changes_lost = true;
        if (auto removed = setting.mounts.drop({name, {}, {}}); !removed) return removed;
    }
    if (!record) return record.error();
    auto done = write_changes(setting, *record, run);
    if (done) return done;
    // Two unloads can meet: what the other one has written, or is about to end, is no loss.
    const auto now = setting.mounts.find(name);
    if (!now && now.error().kind == ErrorKind::missing) return Done{};
    if (!now) return now.error();
    if (now->mount != record->mount) return Done{};
    if (machine::is_written(setting.drives, *now)) return setting.mounts.remove(now->mount);
    return keep_or_drop(setting, *now, done.error(), run.report);
}

Result<Done> work(Setting& setting, const std::vector<std::string>& words, Run& run) {
    ToolReport& report = run.report;
    const auto command = machine::parse_tool_command(words);
    if (!command) return Error{ErrorKind::invalid, machine::ToolCommand::usage};
    const auto name = name_of_mount(command->key);
    if (!name) return name.error();
    report.verb = command->loads ? ToolReport::Verb::load : ToolReport::Verb::unload;
    report.name = *name;
    auto done = command->loads ? load(setting, command->file, *name, run) : unload(setting, *name, run);
    if (done) return done;
    return Error{done.error().kind, "HKU\\" + text::to_utf8(*name) + ": " + done.error().message};
}

}  // namespace

Run run(Setting setting, const std::vector<std::string>& words) {
    Run run;
    const auto done = work(setting, words, run);
    run.report.succeeded = done.ok();
    if (!done) {
        run.report.why = done.error().kind;
        run.report.detail = done.error().message;
    }
    return run;
}

}  // namespace regg
