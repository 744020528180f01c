#include "machine/memory/memory_registry.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"
#include "machine/memory/journal.h"
#include "machine/registry_path.h"

namespace machine {

namespace {

constexpr size_t longest_name = 255;

void dump_below(const MemoryKey& key, const std::string& path, std::string& out) {
    for (const auto& [name, value] : key.values)
        out.append(path).append(" : ").append(name).append(" = ").append(describe(value)).append("\n");
    for (const auto& [name, subkey] : key.subkeys) {
        std::string below = path;
        below.append(path.empty() ? "" : "\\").append(name);
        out.append(below).append("\n");
        dump_below(*subkey, below, out);
    }
}

Outcome refused(WinCode code) { return {code, code}; }

}  // namespace

bool NameLess::operator()(std::string_view a, std::string_view b) const {
    return text::less_ignoring_case(a, b);
}

RawValue text_value(std::string_view text) { return {reg_sz, std::string(text) + '\0'}; }

RawValue dword_value(int32_t number) {
    RawValue value{reg_dword, ""};
    for (int shift = 0; shift < 32; shift += 8)
        value.data += static_cast<char>((static_cast<uint32_t>(number) >> shift) & 0xFF);
    return value;
}

MemoryKey& MemoryKey::operator[](std::string_view subkey) {
    MemoryKey* key = this;
    const auto levels = *split_subkey(subkey);
    for (std::string_view level : levels) {
        auto& next = key->subkeys.try_emplace(std::string(level)).first->second;
        if (!next) next = std::make_shared<MemoryKey>();
        key = next.get();
    }
    return *key;
}

const MemoryKey* MemoryKey::find(std::string_view subkey) const {
    const MemoryKey* key = this;
    const auto levels = *split_subkey(subkey);
    for (std::string_view level : levels) {
        const auto next = key->subkeys.find(level);
        if (next == key->subkeys.end()) return nullptr;
        key = next->second.get();
    }
    return key;
}

MemoryKey& MemoryKey::set(std::string_view name, const RawValue& value) {
    values.insert_or_assign(std::string(name), value);
    return *this;
}

std::string MemoryKey::dump() const {
    std::string out;
    dump_below(*this, "", out);
    return out;
}

MemoryKey& MemoryRegistry::at(Root root, std::string_view subkey) { return roots_[root][subkey]; }

std::string MemoryRegistry::dump(Root root, std::string_view subkey) const {
    const auto at = roots_.find(root);
    const MemoryKey* key = at == roots_.end() ? nullptr : at->second.find(subkey);
    return key ? key->dump() : "(missing)";
}

bool MemoryRegistry::mount(std::string_view name, const std::shared_ptr<MemoryKey>& hive) {
    return at(Root::users).subkeys.try_emplace(std::string(name), hive).second;
}

bool MemoryRegistry::unmount(std::string_view name) {
    auto& mounts = at(Root::users).subkeys;
    const auto mount = mounts.find(name);
    if (mount == mounts.end() || left_open_.contains(name)) return false;
    mounts.erase(mount);
    return true;
}

bool MemoryRegistry::is_mounted(const MemoryKey& hive) const {
    const auto users = roots_.find(Root::users);
    return users != roots_.end() &&
           std::any_of(users->second.subkeys.begin(), users->second.subkeys.end(),
                       [&](const auto& mount) { return mount.second.get() == &hive; });
}

MemoryRegistry::Opened MemoryRegistry::open(Root root, std::string_view subkey, Access wanted) {
    const auto levels = split_subkey(subkey);
    if (!levels) return {levels.error(), nullptr};
    MemoryKey* key = &roots_[root];
    for (std::string_view level : *levels) {
        const auto next = key->subkeys.find(level);
        if (next == key->subkeys.end()) return {file_not_found, nullptr};
        key = next->second.get();
    }
    return key->access <= wanted ? Opened{success, key} : Opened{access_denied, nullptr};
}

Outcome MemoryRegistry::query(Root root, std::string_view subkey, std::string_view name, RawValue& out) {
    const Opened opened = open(root, subkey, Access::read_only);
    if (!opened.key) return refused(opened.code);
    const auto value = opened.key->values.find(text::up_to_nul(name));
    if (value == opened.key->values.end()) return {success, file_not_found};
    out = value->second;
    return {};
}

Outcome MemoryRegistry::set(Root root, std::string_view subkey, std::string_view name,
                            const RawValue& value) {
    const Opened opened = open(root, subkey, Access::full);
    if (!opened.key) return refused(opened.code);
    if (failing_set != success) return {success, failing_set};
    opened.key->set(text::up_to_nul(name), value);
    return {};
}

Outcome MemoryRegistry::delete_value(Root root, std::string_view subkey, std::string_view name) {
    const Opened opened = open(root, subkey, Access::full);
    if (!opened.key) return refused(opened.code);
    if (failing_delete != success) return {success, failing_delete};
    const auto value = opened.key->values.find(text::up_to_nul(name));
    if (value == opened.key->values.end()) return {success, file_not_found};
    opened.key->values.erase(value);
    return {};
}

Registry::Disposition MemoryRegistry::create_key(Root root, std::string_view subkey) {
    const auto levels = split_subkey(subkey);
    if (!levels) return Disposition::failed;
    MemoryKey* key = &roots_[root];
    Disposition disposition = Disposition::opened;
    for (std::string_view level : *levels) {
        const auto next = key->subkeys.find(level);
        if (next != key->subkeys.end()) {
            key = next->second.get();
            continue;
        }
        const bool below_users = root == Root::users && key == &roots_[root];
        if (key->access != Access::full || (below_users && !users_root_open) || level.size() > longest_name)
            return Disposition::failed;
        key = &(*key)[level];
        disposition = Disposition::created;
    }
    if (key->access != Access::full) return Disposition::failed;
    if (failing_flush && root == Root::users && !levels->empty()) left_open_.emplace(levels->front());
    return disposition;
}

WinCode MemoryRegistry::delete_key(Root root, std::string_view subkey) {
    const Opened opened = open(root, subkey, Access::full);
    if (!opened.key) return opened.code;
    const auto levels = *split_subkey(subkey);
    const bool root_of_hive = levels.empty() || (root == Root::users && levels.size() == 1);
    if (root_of_hive || !opened.key->subkeys.empty()) return access_denied;
    MemoryKey* parent = &roots_[root];
    for (size_t i = 0; i + 1 < levels.size(); ++i)
        parent = parent->subkeys.find(levels[i])->second.get();
    parent->subkeys.erase(parent->subkeys.find(levels.back()));
    return success;
}

WinCode MemoryRegistry::enum_key(Root root, std::string_view subkey, uint32_t index, std::string& name) {
    const Opened opened = open(root, subkey, Access::read_only);
    if (!opened.key || index >= opened.key->subkeys.size()) return no_more_items;
    name = std::next(opened.key->subkeys.begin(), index)->first;
    return more_data;
}

}  // namespace machine
