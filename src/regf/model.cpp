#include "regf/model.h"

#include <algorithm>

#include "regf/records.h"

namespace regf {

// Recursion goes as deep as a hive may be: 512 levels.

namespace {

CellView key_at(const Image& image, CellOffset offset) { return key_record(image, offset).value(); }
CellView value_at(const Image& image, CellOffset offset) { return value_record(image, offset).value(); }

Value stored_value(const Image& image, CellOffset offset) {
    const CellView record = value_at(image, offset);
    return {value_type(record), value_data(image, record).value()};
}

}  // namespace

// --- reading

Model::Model(const Image& opened) : opened_(opened), root_(read_key(opened.root())) {}

std::unique_ptr<Model::Key> Model::read_key(CellOffset offset) const {
    const CellView record = key_at(opened_, offset);
    auto key = std::make_unique<Key>();
    key->cell = offset;
    key->name = key_name(record).text();
    key->class_name = class_name_of(opened_, record).value_or(u"");
    key->security = security_descriptor(opened_, get_cell(record, nk::security));
    key->flags = get16(record, nk::flags);
    key->last_written = get64(record, nk::last_written);
    const ValueList values = value_list(opened_, record);
    for (size_t i = 0; i < values.count; ++i)
        key->values.push_back({value_name(value_at(opened_, values.value(i))).text(), values.value(i), {}});
    for (CellOffset child : subkey_offsets(opened_, record))
        key->subkeys.push_back({child, nullptr});
    return key;
}

Model::Key* Model::read_child(Child& child) const {
    if (!child.key) child.key = read_key(child.cell);
    return child.key.get();
}

void Model::read_everything() { read_below(*root_); }

void Model::read_below(Key& key) {
    for (Child& child : key.subkeys)
        read_below(*read_child(child));
}

regf::Value Model::value_of(const Value& value) const {
    return value.set_since ? *value.set_since : stored_value(opened_, value.cell);
}

// --- changing

int Model::compare(const Child& child, std::u16string_view name) const {
    return child.key ? compare_names(child.key->name, name)
                     : compare_names(key_name(key_at(opened_, child.cell)), name);
}

std::vector<Model::Child>::iterator Model::place_of(Key& key, std::u16string_view name) const {
    return std::partition_point(key.subkeys.begin(), key.subkeys.end(),
                                [&](const Child& child) { return compare(child, name) < 0; });
}

Model::Key* Model::child_of(Key& key, std::u16string_view name) const {
    const auto at = place_of(key, name);
    return at != key.subkeys.end() && compare(*at, name) == 0 ? read_child(*at) : nullptr;
}

CellOffset Model::deleted_child(const Key& parent, std::u16string_view name) const {
    if (parent.was != nil) return find_subkey(opened_, key_at(opened_, parent.was), name, true).value_or(nil);
    const auto was = std::ranges::find_if(parent.gone, [&](CellOffset gone) {
        return compare_names(key_name(key_at(opened_, gone)), name) == 0;
    });
    return was != parent.gone.end() ? *was : nil;
}

bool Model::create(Key& parent, std::u16string_view name, FileTime when) {
    const auto at = place_of(parent, name);
    if (at != parent.subkeys.end() && compare(*at, name) == 0) return false;
    auto key = std::make_unique<Key>();
    key->name = name;
    key->flags = store_name(name).compressed ? nk::compressed_name : 0;
    key->last_written = when;
    key->was = deleted_child(parent, name);
    parent.subkeys.insert(at, {nil, std::move(key)});
    parent.last_written = when;
    return true;
}

bool Model::remove(Key& parent, std::u16string_view name, FileTime when) {
    const auto at = place_of(parent, name);
    if (at == parent.subkeys.end() || compare(*at, name) != 0) return false;
    if (at->cell != nil) parent.gone.push_back(at->cell);
    parent.subkeys.erase(at);
    parent.last_written = when;
    return true;
}

bool Model::change_values(Key& key, const Change& change) {
    const auto at = std::find_if(key.values.begin(), key.values.end(),
                                 [&](const Value& v) { return same_name(v.name, change.name); });
    key.last_written = change.when;
    if (change.kind == Change::Kind::set_value) {
        if (at == key.values.end()) {
            key.values.push_back({change.name, nil, change.value});
        } else {
            at->set_since = change.value;
        }
        return true;
    }
    if (at == key.values.end()) return false;
    key.values.erase(at);
    return true;
}

bool Model::apply(const Change& change) {
    Key* key = root_.get();
    std::u16string_view path = change.path;
    for (size_t end = path.find(u'\\'); end != std::u16string_view::npos; end = path.find(u'\\')) {
        key = child_of(*key, path.substr(0, end));
        if (!key) return false;
        path.remove_prefix(end + 1);
    }
    if (change.kind == Change::Kind::create_key) return create(*key, path, change.when);
    if (change.kind == Change::Kind::delete_key) return remove(*key, path, change.when);
    if (!path.empty()) key = child_of(*key, path);
    return key && change_values(*key, change);
}

// --- comparing

std::string Model::difference_in_values(const Key& key, const Image& image, CellOffset found) const {
    const ValueList values = value_list(image, key_at(image, found));
    if (key.values.size() != values.count) return "another number of values";
    for (size_t i = 0; i < values.count; ++i) {
        const CellOffset at = values.value(i);
        if (value_name(value_at(image, at)).text() != key.values[i].name ||
            stored_value(image, at) != value_of(key.values[i]))
            return "another value " + printable(key.values[i].name);
    }
    return "";
}

std::string Model::difference_in_one(const Key& key, const Image& image, CellOffset found) const {
    const CellView record = key_at(image, found);
    if (key.cell != nil && key.cell != found) return "another cell";
    if (key_name(record).text() != key.name) return "another name";
    if (class_name_of(image, record).value_or(u"") != key.class_name) return "another class name";
    const auto security = security_descriptor(image, get_cell(record, nk::security));
    if (!security || (key.security && !std::ranges::equal(*key.security, *security)))
        return "another security descriptor";
    if (get16(record, nk::flags) != key.flags) return "other flags";
    if (get64(record, nk::last_written) != key.last_written) return "another time stamp";
    return difference_in_values(key, image, found);
}

std::string Model::difference_below(const Key& key, const Image& image, CellOffset found, CellOffset parent,
                                    const Met& met) const {
    std::string what = difference_in_one(key, image, found);
    if (!what.empty()) return ": " + what;
    if (met) met(key, found, parent);
    const auto subkeys = subkey_offsets(image, key_at(image, found));
    if (subkeys.size() != key.subkeys.size()) return ": another number of subkeys";
    for (size_t i = 0; i < subkeys.size(); ++i) {
        const Child& child = key.subkeys[i];
        if (!child.key && child.cell != subkeys[i]) return ": another subkey";
        if (child.key) what = difference_below(*child.key, image, subkeys[i], found, met);
        if (!what.empty()) return "\\" + printable(child.key->name) + what;
    }
    return "";
}

std::string Model::first_difference(const Image& image, const Met& met) const {
    return difference_below(*root_, image, image.root(), nil, met);
}

// --- counting

int Model::size_of_opened(CellOffset offset) const {
    const CellView record = key_at(opened_, offset);
    int size = 1 + static_cast<int>(value_list(opened_, record).count);
    for (CellOffset child : subkey_offsets(opened_, record))
        size += size_of_opened(child);
    return size;
}

int Model::size_of(const Key& key) const {
    int size = 1 + static_cast<int>(key.values.size());
    for (const Child& child : key.subkeys)
        size += size_of(*child.key);  // all below a new key is new
    return size;
}

int Model::differences_in_values(const Key& key, CellOffset before) const {
    int count = 0;
    const CellView record = key_at(opened_, before);
    std::vector<CellOffset> kept;
    for (const Value& value : key.values) {
        const auto old =
            value.cell != nil ? std::optional(value.cell) : find_value(opened_, record, value.name);
        count += !old || (value.set_since && *value.set_since != stored_value(opened_, *old));
        if (old) kept.push_back(*old);
    }
    std::ranges::sort(kept);
    const ValueList values = value_list(opened_, record);
    for (size_t i = 0; i < values.count; ++i)
        count += !std::ranges::binary_search(kept, values.value(i));
    return count;
}

int Model::differences_in(const Key& key) const {
    const bool is_new = key.cell == nil;
    int count = differences_in_values(key, is_new ? key.was : key.cell);
    std::vector<CellOffset> lost = is_new ? subkey_offsets(opened_, key_at(opened_, key.was)) : key.gone;
    for (const Child& child : key.subkeys) {
        if (!child.key) continue;
        const CellOffset old = child.cell != nil ? child.cell : child.key->was;
        std::erase(lost, old);
        count += old == nil ? size_of(*child.key) : differences_in(*child.key);
    }
    for (CellOffset gone : lost)
        count += size_of_opened(gone);
    return count;
}

int Model::count_differences() const { return differences_in(*root_); }

}  // namespace regf
