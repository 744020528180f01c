#include "regf/model.h"

#include <algorithm>

#include "regf/bytes.h"
#include "regf/layout.h"
#include "regf/records.h"

namespace regf {

namespace {

// Recursion goes as deep as a hive may be: 512 levels.
std::unique_ptr<ModelKey> read_key(const Image& image, CellOffset offset) {
    const CellView record = key_record(image, offset).value();
    auto key = std::make_unique<ModelKey>();
    key->name = key_name(record);
    key->class_name = class_name_of(image, record).value_or(u"");
    key->security = security_descriptor(image, get_cell(record, nk::security));
    key->flags = get16(record, nk::flags);
    key->last_written = get64(record, nk::last_written);
    for (CellOffset at : value_offsets(image, record)) {
        const auto value = value_record(image, at);
        if (!value) continue;
        key->values.push_back(
            {value_name(*value), {value_type(*value), value_data(image, *value).value_or(Bytes{})}});
    }
    for (CellOffset child : subkey_offsets(image, record))
        key->subkeys.push_back(read_key(image, child));
    return key;
}

using Children = std::vector<std::unique_ptr<ModelKey>>;

Children::iterator place_of(ModelKey& key, std::u16string_view name) {
    return std::partition_point(key.subkeys.begin(), key.subkeys.end(),
                                [&](const auto& child) { return compare_names(child->name, name) < 0; });
}

ModelKey* child_of(ModelKey& key, std::u16string_view name) {
    const auto at = place_of(key, name);
    return at != key.subkeys.end() && same_name((*at)->name, name) ? at->get() : nullptr;
}

/// The key above the last part of the path, and that part; null where a level is missing.
std::pair<ModelKey*, std::u16string_view> walk_to_last(ModelKey& root, std::u16string_view path) {
    ModelKey* key = &root;
    for (size_t end = path.find(u'\\'); key && end != std::u16string_view::npos; end = path.find(u'\\')) {
        key = child_of(*key, path.substr(0, end));
        path.remove_prefix(end + 1);
    }
    return {key, path};
}

bool create_in_model(ModelKey& parent, std::u16string_view name, FileTime when) {
    const auto at = place_of(parent, name);
    if (at != parent.subkeys.end() && same_name((*at)->name, name)) return false;
    auto key = std::make_unique<ModelKey>();
    key->name = name;
    key->flags = store_name(name).compressed ? nk::compressed_name : 0;
    key->last_written = when;
    parent.subkeys.insert(at, std::move(key));
    parent.last_written = when;
    return true;
}

bool delete_in_model(ModelKey& parent, std::u16string_view name, FileTime when) {
    const auto at = place_of(parent, name);
    if (at == parent.subkeys.end() || !same_name((*at)->name, name)) return false;
    parent.subkeys.erase(at);
    parent.last_written = when;
    return true;
}

bool change_values(ModelKey& key, const Change& change) {
    const auto at = std::find_if(key.values.begin(), key.values.end(),
                                 [&](const auto& v) { return same_name(v.name, change.name); });
    key.last_written = change.when;
    if (change.kind == Change::Kind::set_value) {
        if (at == key.values.end()) {
            key.values.push_back({change.name, change.value});
        } else {
            at->value = change.value;
        }
        return true;
    }
    if (at == key.values.end()) return false;
    key.values.erase(at);
    return true;
}

std::string difference_of_one(const ModelKey& expected, const ModelKey& found) {
    if (expected.name != found.name) return "another name: " + printable(found.name);
    if (expected.class_name != found.class_name) return "another class name";
    if (expected.security && !(found.security && std::ranges::equal(*expected.security, *found.security)))
        return "another security descriptor";
    if (expected.flags != found.flags) return "other flags";
    if (expected.last_written != found.last_written) return "another time stamp";
    if (expected.values.size() != found.values.size()) return "another number of values";
    for (size_t i = 0; i < expected.values.size(); ++i) {
        if (!(expected.values[i] == found.values[i]))
            return "another value " + printable(expected.values[i].name);
    }
    return expected.subkeys.size() != found.subkeys.size() ? "another number of subkeys" : "";
}

}  // namespace

std::unique_ptr<ModelKey> model_of(const Image& image) { return read_key(image, image.root()); }

bool apply_to_model(ModelKey& root, const Change& change) {
    const auto [parent, last] = walk_to_last(root, change.path);
    if (!parent) return false;
    if (change.kind == Change::Kind::create_key) return create_in_model(*parent, last, change.when);
    if (change.kind == Change::Kind::delete_key) return delete_in_model(*parent, last, change.when);
    ModelKey* const key = last.empty() ? parent : child_of(*parent, last);
    return key && change_values(*key, change);
}

std::string first_difference(const ModelKey& expected, const ModelKey& found) {
    std::string what = difference_of_one(expected, found);
    if (!what.empty()) return ": " + what;
    for (size_t i = 0; i < expected.subkeys.size(); ++i) {
        what = first_difference(*expected.subkeys[i], *found.subkeys[i]);
        if (!what.empty()) return "\\" + printable(expected.subkeys[i]->name) + what;
    }
    return "";
}

namespace {

int size_of(const ModelKey& key) {
    int size = 1 + static_cast<int>(key.values.size());
    for (const auto& child : key.subkeys)
        size += size_of(*child);
    return size;
}

/// Values of `key` that `other` lacks; those with other content count where `changed` asks for them.
int count_values(const ModelKey& key, const ModelKey& other, bool changed) {
    return static_cast<int>(std::ranges::count_if(key.values, [&](const auto& value) {
        const auto same = std::ranges::find_if(
            other.values, [&](const auto& any) { return same_name(any.name, value.name); });
        return same == other.values.end() || (changed && !(same->value == value.value));
    }));
}

}  // namespace

int count_differences(const ModelKey& before, const ModelKey& after) {
    int count = count_values(before, after, true) + count_values(after, before, false);
    auto old = before.subkeys.begin();
    auto now = after.subkeys.begin();
    while (old != before.subkeys.end() || now != after.subkeys.end()) {  // both are ascending
        const int order = old == before.subkeys.end()  ? 1
                          : now == after.subkeys.end() ? -1
                                                       : compare_names((*old)->name, (*now)->name);
        if (order == 0) {
            count += count_differences(**old++, **now++);
        } else {
            count += order < 0 ? size_of(**old++) : size_of(**now++);
        }
    }
    return count;
}

}  // namespace regf
