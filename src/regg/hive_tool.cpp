#include "regg/hive_tool.h"

#include <algorithm>

#include "base/text.h"
#include "machine/offline/file_attributes.h"
#include "machine/offline/installation.h"
#include "machine/registry_path.h"

namespace regg {

namespace {

using base::Error;
using base::ErrorKind;
using base::Result;
using machine::MountRecord;
using machine::ToolReport;

constexpr auto usage = "the command is: load \"<file>\" HKU\\<name>, or: unload HKU\\<name>";

/// The name behind HKU\, in the code page.
Result<std::string> mount_name(const std::string& key) {
    constexpr std::string_view root = "HKU\\";
    const auto ansi = text::from_utf8(key);
    if (!ansi) return Error{ErrorKind::invalid, "Windows cannot spell the key " + key + " in its code page"};
    const std::string name = ansi->substr(std::min(root.size(), ansi->size()));
    const bool below_users = text::equal_ignoring_case(ansi->substr(0, root.size()), root);
    const bool plain = name.find('\\') == std::string::npos && text::up_to_nul(name) == name;
    if (!below_users || name.empty() || !plain)
        return Error{ErrorKind::invalid, key + " is not a key directly below HKU"};
    return name;
}

/// The file as the mount keeps it: a host path as it is, a Windows path in the code page.
Result<std::string> file_name(const Setting& setting, const std::string& file) {
    if (file.starts_with('/')) return file;
    const auto ansi = text::from_utf8(file);
    if (!ansi)
        return Error{ErrorKind::invalid, "Windows cannot spell the path " + file + " in its code page"};
    if (!machine::parse_path(*ansi))
        return Error{ErrorKind::invalid, file + " is not the full path of a file"};
    if (!setting.drives_known)
        return Error{ErrorKind::invalid, "no folder is known for the drive of " + file +
                                             ": name the file from the root of this system"};
    return *ansi;
}

Result<Done> load(const Setting& setting, const std::string& file, const std::string& name) {
    const auto named = file_name(setting, file);
    if (!named) return named.error();
    const auto place = machine::locate_hive(setting.drives, *named);
    if (!place) return place.error();
    // Windows writes over whatever it wakes up to.
    if (setting.drives_known && machine::hibernates(setting.drives))
        return Error{ErrorKind::unsupported, "this Windows hibernates: start it and shut it down first"};
    const auto lock =
        hostfile::lock_with_patience(*place, hostfile::FileLock::Purpose::work, hostfile::a_moment);
    if (!lock) return lock.error();
    if (machine::is_mounted(setting.drives, setting.mounts, *place))
        return Error{ErrorKind::in_use, file + " is mounted already"};
    const auto hive = regf::read_hive(*place, *lock);
    if (!hive) return hive.error();
    if (!hive->hive.read_only_reason().empty())
        return Error{ErrorKind::unsupported, file + " cannot be edited: " + hive->hive.read_only_reason()};
    if (!machine::may_replace(*place))
        return Error{ErrorKind::refused, "no permission to write " + file + " and its folder"};
    return setting.mounts.add({name, *named, hive->identity.stamp});
}

/// The changes of a mount that cannot be written any more are dropped with it: nothing would ever free its
/// name.
Result<Done> drop(const Setting& setting, const MountRecord& record, const Error& reason,
                  ToolReport& report) {
    if (auto removed = setting.mounts.remove(record.mount.name); !removed) return removed;
    if (record.sealed.empty()) return Done{};
    report.changes_lost = true;
    return Error{reason.kind, reason.message + "; what was to be written to it is dropped"};
}

Result<Done> unload(const Setting& setting, const std::string& name, ToolReport& report) {
    if (!setting.mounts.find(name)) return Error{ErrorKind::missing, "no hive is mounted there"};
    const auto hive = machine::open_mounted(setting.drives, setting.mounts, name);
    if (!hive) {
        const ErrorKind kind = hive.error().kind;
        const auto record = setting.mounts.find(name);
        if (record && kind == ErrorKind::changed && machine::is_written(setting.drives, *record))
            return setting.mounts.remove(name);
        if (record && (kind == ErrorKind::changed || kind == ErrorKind::missing))
            return drop(setting, *record, hive.error(), report);
        return hive.error();
    }
    if (hive->record.unsealed) {
        report.changes_lost = true;
        report.detail = "the unfinished changes of a run that was broken off are dropped";
    }
    const auto announce = [&](const regf::HiveStamp& stamp) { setting.mounts.announce(hive->record, stamp); };
    const auto written =
        regf::commit(hive->place, hive->file.hive, hive->file.identity, regf::current_file_time(), announce);
    if (!written)
        return Error{written.error().kind, written.error().message + "; it is kept for the next unload"};
    report.changed = hive->file.hive.count_differences();
    return setting.mounts.remove(name);
}

Result<Done> work(const Setting& setting, const std::vector<std::string>& words, ToolReport& report) {
    const bool loads = words.size() == 3 && words[0] == "load";
    const bool unloads = words.size() == 2 && words[0] == "unload";
    if (!loads && !unloads) return Error{ErrorKind::invalid, usage};
    const auto name = mount_name(words.back());
    if (!name) return name.error();
    report.verb = loads ? ToolReport::Verb::load : ToolReport::Verb::unload;
    report.name = *name;
    auto done = loads ? load(setting, words[1], *name) : unload(setting, *name, report);
    if (done) return done;
    return Error{done.error().kind, "HKU\\" + text::to_utf8(*name) + ": " + done.error().message};
}

}  // namespace

ToolReport run(const Setting& setting, const std::vector<std::string>& words) {
    ToolReport report;
    const auto done = work(setting, words, report);
    report.succeeded = done.ok();
    if (!done) {
        report.why = done.error().kind;
        report.detail = done.error().message;
    }
    return report;
}

}  // namespace regg
