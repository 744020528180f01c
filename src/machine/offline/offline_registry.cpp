#include "machine/offline/offline_registry.h"

#include <span>

#include "base/text.h"
#include "machine/registry_path.h"

namespace machine {

namespace {

constexpr std::string_view software = "SOFTWARE";

Outcome refused(WinCode code) { return {code, code}; }

regf::Change change(regf::Change::Kind kind, std::u16string path, std::string_view name = "",
                    regf::Value value = {}) {
    return {kind, std::move(path), text::to_utf16(name), std::move(value), regf::current_file_time()};
}

}  // namespace

OfflineRegistry::OfflineRegistry(const DriveMap& drives, const MountTable& mounts, HostPlace software_hive,
                                 HostPlace user_hive)
    : drives_(drives),
      mounts_(mounts),
      software_(std::move(software_hive), FileHive::Missing::is_an_error),
      user_(std::move(user_hive), FileHive::Missing::is_empty) {}

HiveStore* OfflineRegistry::mounted(std::string_view name, WinCode& code, std::optional<HandedHive> handed) {
    const std::string folded = text::lower(name);
    if (const auto open = open_mounts_.find(folded); open != open_mounts_.end()) return open->second.get();
    const auto found = mounts_.find(name);
    auto hive = found ? open_mounted(drives_, mounts_, *found, std::move(handed))
                      : base::Result<MountedHive>(found.error());
    auto record = hive ? mounts_.open_sealed(hive->record) : base::Result<Descriptor>(hive.error());
    if (!record) {
        code = win_code(record.error().kind);
        return nullptr;
    }
    auto store = std::make_unique<MountHive>(std::move(*hive), std::move(*record));
    return open_mounts_.emplace(folded, std::move(store)).first->second.get();
}

OfflineRegistry::Location OfflineRegistry::locate(Root root, std::string_view subkey) {
    const auto split = split_subkey(subkey);
    Location location;
    if (!split) {
        location.code = split.error();
        return location;
    }
    std::span<const std::string_view> levels = *split;
    location.key = std::to_string(static_cast<uint32_t>(root));
    for (const std::string_view level : levels)
        location.key += '\\' + text::lower(level);
    if (root == Root::current_user) {
        location.store = &user_;
    } else if (levels.empty()) {
        return location;
    } else if (root == Root::users) {
        location.store = mounted(levels[0], location.code);
        levels = levels.subspan(1);
    } else if (text::equal_ignoring_case(levels[0], software)) {
        location.store = &software_;
        levels = levels.subspan(1);
    } else {
        location.code = file_not_found;
    }
    location.at_top = levels.empty();
    for (std::string_view level : levels)
        location.path.append(location.path.empty() ? u"" : u"\\").append(text::to_utf16(level));
    return location;
}

OfflineRegistry::Opened OfflineRegistry::open(const Location& location) {
    if (!location.store) return {location.code, nullptr, std::nullopt};
    const HiveStore::View view = location.store->read();
    if (!view.hive) return {view.code, nullptr, std::nullopt};
    const auto key = view.hive->find(location.path);
    return {key ? success : file_not_found, view.hive, key};
}

WinCode OfflineRegistry::open_for_writing(const Location& location) {
    const Opened opened = open(location);
    return opened.key ? location.store->check_writing() : opened.code;
}

void OfflineRegistry::remember_spelling(const Location& location) {
    if (spelling_.knows(location.key)) return;
    if (const Opened opened = open(location); opened.key)
        spelling_.remember(location.key, opened.hive->values(*opened.key));
}

Outcome OfflineRegistry::query(Root root, std::string_view subkey, std::string_view name, RawValue& out) {
    const Location location = locate(root, subkey);
    remember_spelling(location);
    const Opened opened = open(location);
    if (opened.code != success) return refused(opened.code);
    if (!opened.key) return {success, file_not_found};
    const auto value = opened.hive->value(*opened.key, text::to_utf16(text::up_to_nul(name)));
    if (!value) return {success, file_not_found};
    out = Spelling::to_ansi(*value);
    return {};
}

Outcome OfflineRegistry::set(Root root, std::string_view subkey, std::string_view name,
                             const RawValue& value) {
    Location location = locate(root, subkey);
    if (const WinCode code = open_for_writing(location); code != success) return refused(code);
    if (!location.store) return {success, access_denied};
    remember_spelling(location);
    const std::string_view plain_name = text::up_to_nul(name);
    return {success,
            location.store->apply(change(regf::Change::Kind::set_value, std::move(location.path), plain_name,
                                         spelling_.to_stored(location.key, plain_name, value)))};
}

Outcome OfflineRegistry::delete_value(Root root, std::string_view subkey, std::string_view name) {
    Location location = locate(root, subkey);
    if (const WinCode code = open_for_writing(location); code != success) return refused(code);
    if (!location.store) return {success, file_not_found};
    remember_spelling(location);
    return {success, location.store->apply(change(regf::Change::Kind::delete_value, std::move(location.path),
                                                  text::up_to_nul(name)))};
}

Registry::Disposition OfflineRegistry::create_key(Root root, std::string_view subkey) {
    Location location = locate(root, subkey);
    if (!location.store) return location.code == success ? Disposition::opened : Disposition::failed;
    const Opened opened = open(location);
    if (!opened.hive || location.store->check_writing() != success) return Disposition::failed;
    if (opened.key) return Disposition::opened;
    const WinCode code =
        location.store->apply(change(regf::Change::Kind::create_key, std::move(location.path)));
    return code == success ? Disposition::created : Disposition::failed;
}

WinCode OfflineRegistry::delete_key(Root root, std::string_view subkey) {
    Location location = locate(root, subkey);
    if (const WinCode code = open_for_writing(location); code != success) return code;
    const Opened opened = open(location);
    if (!opened.key || location.at_top || !opened.hive->subkeys(*opened.key).empty()) return access_denied;
    remember_spelling(location);
    spelling_.forget_uses(location.key);
    return location.store->apply(change(regf::Change::Kind::delete_key, std::move(location.path)));
}

std::vector<std::string> OfflineRegistry::subkey_names(Root root, std::string_view subkey) {
    std::vector<std::string> names;
    const Location location = locate(root, subkey);
    const Opened opened = open(location);
    if (opened.code != success) return names;
    if (!opened.key) {
        if (root == Root::local_machine) return {std::string(software)};
        const auto mounts = mounts_.mounts();
        for (const Mount& mount : mounts ? *mounts : std::vector<Mount>())
            names.push_back(mount.name);
        return names;
    }
    for (const regf::Key key : opened.hive->subkeys(*opened.key)) {
        if (auto name = text::from_utf16(opened.hive->name(key))) names.push_back(std::move(*name));
    }
    return names;
}

WinCode OfflineRegistry::enum_key(Root root, std::string_view subkey, uint32_t index, std::string& name) {
    const std::vector<std::string> names = subkey_names(root, subkey);
    if (index >= names.size()) return no_more_items;
    name = names[index];
    return more_data;
}

bool OfflineRegistry::hold(std::string_view name, std::optional<HandedHive> handed) {
    WinCode code = success;
    return mounted(name, code, std::move(handed)) != nullptr;
}

OfflineRegistry::Released OfflineRegistry::release_mounts(std::string_view to_unload) {
    Released released;
    for (auto& [name, hive] : open_mounts_) {
        if (const WinCode code = hive->seal(); code != success) released.code = code;
        if (name != text::lower(to_unload)) continue;
        released.hive = hive->hand_over();
        released.remains = std::move(hive);
    }
    open_mounts_.clear();
    spelling_.end_session();
    return released;
}

std::vector<std::string> OfflineRegistry::open_mounts() const {
    std::vector<std::string> names;
    for (const auto& [name, hive] : open_mounts_)
        names.push_back(name);
    return names;
}

}  // namespace machine
