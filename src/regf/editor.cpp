#include "regf/editor.h"

#include <algorithm>
#include <map>

#include "regf/bytes.h"
#include "regf/layout.h"

namespace regf {

namespace {

/// An `lf` must fit one bin; the others hold about twice as many.
constexpr size_t longest_lf = 507;
constexpr size_t longest_leaf = 1012;

size_t with_headroom(size_t count) { return count + count / 2; }

void raise32(std::span<uint8_t> record, size_t at, uint32_t value) {
    if (get32(record, at) < value) put32(record, at, value);
}

}  // namespace

std::optional<uint32_t> Editor::find_subkey(uint32_t parent, std::u16string_view name) const {
    const auto key = key_record(image_, parent);
    if (!key) return std::nullopt;
    // Binary search would miss a key in a list out of order, which can still be read.
    for (uint32_t child : subkey_offsets(image_, *key)) {
        if (compare_key_name(*key_record(image_, child), name) == 0) return child;
    }
    return std::nullopt;
}

std::optional<uint32_t> Editor::find_value(uint32_t key, std::u16string_view name) const {
    const auto record = key_record(image_, key);
    if (!record) return std::nullopt;
    for (uint32_t at : value_offsets(image_, *record)) {
        const auto value = value_record(image_, at);
        if (value && same_name(value_name(*value), name)) return at;
    }
    return std::nullopt;
}

// --- keys

uint32_t Editor::add_key(uint32_t parent, std::u16string_view name, FileTime now) {
    const StoredName stored = store_name(name);
    const uint32_t security = security_for_child(parent);
    const uint32_t offset = image_.allocate(nk::name + stored.bytes.size());
    const auto key = record(offset);
    std::copy_n("nk", 2, key.begin());
    put16(key, nk::flags, stored.compressed ? nk::compressed_name : 0);
    put64(key, nk::last_written, now);
    put32(key, nk::parent, parent);
    for (const size_t list : {nk::subkey_list, nk::volatile_list, nk::value_list, nk::class_name})
        put32(key, list, nil);
    put32(key, nk::security, security);
    put16(key, nk::name_length, static_cast<uint16_t>(stored.bytes.size()));
    std::copy(stored.bytes.begin(), stored.bytes.end(), key.begin() + nk::name);
    const auto shared = record(security);
    put32(shared, sk::reference_count, get32(shared, sk::reference_count) + 1);

    insert_subkey(parent, offset);
    const auto above = record(parent);
    put32(above, nk::subkey_count, get32(above, nk::subkey_count) + 1);
    put64(above, nk::last_written, now);
    const auto length = static_cast<uint16_t>(name.size() * 2);
    if (get16(above, nk::largest_subkey_name) < length) put16(above, nk::largest_subkey_name, length);
    return offset;
}

void Editor::remove_key(uint32_t offset, uint32_t parent, FileTime now) {
    const CellView key = *key_record(image_, offset);
    const auto values = value_offsets(image_, key);
    for (uint32_t value : values) {
        release_data(value);
        image_.release(value);
    }
    if (!values.empty()) image_.release(get32(key, nk::value_list));
    if (get16(key, nk::class_length) > 0) image_.release(get32(key, nk::class_name));
    drop_security(get32(key, nk::security));
    take_from_list(parent, offset);
    image_.release(offset);

    const auto above = record(parent);
    const uint32_t left = get32(above, nk::subkey_count) - 1;
    put32(above, nk::subkey_count, left);
    put64(above, nk::last_written, now);
    if (left > 0) return;
    put16(above, nk::largest_subkey_name, 0);
    put32(above, nk::largest_class_name, 0);
}

/// The descriptor that most of the siblings share, as they inherited it; without siblings that of the parent.
uint32_t Editor::security_for_child(uint32_t parent) const {
    const CellView key = *key_record(image_, parent);
    uint32_t best = get32(key, nk::security);
    size_t most = 0;
    std::map<uint32_t, size_t> users;
    for (uint32_t sibling : subkey_offsets(image_, key)) {
        const uint32_t security = get32(*key_record(image_, sibling), nk::security);
        if (++users[security] <= most) continue;
        most = users[security];
        best = security;
    }
    return best;
}

void Editor::drop_security(uint32_t offset) {
    const auto shared = record(offset);
    const uint32_t users = get32(shared, sk::reference_count);
    if (users > 1) return put32(shared, sk::reference_count, users - 1);
    const uint32_t next = get32(shared, sk::next);
    const uint32_t previous = get32(shared, sk::previous);
    if (users == 0 || next == offset) return;  // miscounted by somebody else, or the last of the hive
    put32(record(previous), sk::next, next);
    put32(record(next), sk::previous, previous);
    image_.release(offset);
}

// --- lists of subkeys

uint32_t Editor::store_list(std::optional<uint32_t> old, const char* kind,
                            const std::vector<uint32_t>& offsets) {
    const bool wide = kind[1] == 'f' || kind[1] == 'h';
    const size_t step = wide ? 8 : 4;
    uint32_t at = old.value_or(nil);
    if (!old || image_.cell(*old)->size() < 4 + step * offsets.size()) {
        if (old) image_.release(*old);
        at = image_.allocate(4 + step * (old ? with_headroom(offsets.size()) : offsets.size()));
    }
    const auto list = record(at);
    std::copy_n(kind, 2, list.begin());
    put16(list, 2, static_cast<uint16_t>(offsets.size()));
    for (size_t i = 0; i < offsets.size(); ++i) {
        put32(list, 4 + i * step, offsets[i]);
        if (!wide) continue;
        const std::u16string name = key_name(*key_record(image_, offsets[i]));
        put32(list, 8 + i * step, kind[1] == 'h' ? name_hash(name) : name_hint(name));
    }
    return at;
}

/// An existing list keeps its kind, so that an index never mixes two; alone, an `lf` gives way when it
/// outgrows one bin.
const char* Editor::leaf_kind(const Leaf* old, size_t count) const {
    const bool hashed = image_.minor_version() >= 5;
    if (!old) return hashed ? "lh" : "lf";
    const CellView list = *image_.cell(old->offset);
    if (has_signature(list, "lh")) return "lh";
    if (has_signature(list, "li")) return "li";
    if (old->index_offset != nil || count <= longest_lf) return "lf";
    return hashed ? "lh" : "li";
}

void Editor::insert_subkey(uint32_t parent, uint32_t child) {
    auto leaves = *subkey_leaves(image_, *key_record(image_, parent));
    if (leaves.empty()) {
        return put32(record(parent), nk::subkey_list,
                     store_list(std::nullopt, leaf_kind(nullptr, 1), {child}));
    }
    const std::u16string name = key_name(*key_record(image_, child));
    auto before = [&](uint32_t other) { return compare_key_name(*key_record(image_, other), name) < 0; };
    size_t which = 0;  // the last leaf that begins before the new name
    while (which + 1 < leaves.size() && before(leaves[which + 1].keys.front()))
        ++which;
    Leaf& leaf = leaves[which];
    leaf.keys.insert(std::partition_point(leaf.keys.begin(), leaf.keys.end(), before), child);

    const char* const kind = leaf_kind(&leaf, leaf.keys.size());
    const size_t most = kind[1] == 'f' ? longest_lf : longest_leaf;
    if (leaf.keys.size() > most) return split_leaf(parent, leaves, which, kind);
    const uint32_t stored = store_list(leaf.offset, kind, leaf.keys);
    if (leaf.index_offset == nil) return put32(record(parent), nk::subkey_list, stored);
    put32(record(leaf.index_offset), 4 + 4 * which, stored);
}

void Editor::split_leaf(uint32_t parent, const std::vector<Leaf>& leaves, size_t which, const char* kind) {
    const auto& keys = leaves[which].keys;
    const auto half = keys.begin() + static_cast<ptrdiff_t>(keys.size() / 2);
    image_.release(leaves[which].offset);
    std::vector<uint32_t> offsets;
    for (const Leaf& leaf : leaves)
        offsets.push_back(leaf.offset);
    offsets[which] = store_list(std::nullopt, kind, {keys.begin(), half});
    offsets.insert(offsets.begin() + static_cast<ptrdiff_t>(which) + 1,
                   store_list(std::nullopt, kind, {half, keys.end()}));
    const uint32_t index = leaves[which].index_offset;
    const uint32_t stored = store_list(index == nil ? std::nullopt : std::optional(index), "ri", offsets);
    put32(record(parent), nk::subkey_list, stored);
}

void Editor::take_from_list(uint32_t parent, uint32_t child) {
    const CellView key = *key_record(image_, parent);
    auto leaves = *subkey_leaves(image_, key);
    const auto leaf = std::find_if(leaves.begin(), leaves.end(), [&](const Leaf& l) {
        return std::find(l.keys.begin(), l.keys.end(), child) != l.keys.end();
    });
    std::erase(leaf->keys, child);
    const bool in_index = leaf->index_offset != nil;
    if (!leaf->keys.empty()) {
        store_list(leaf->offset, leaf_kind(&*leaf, leaf->keys.size()), leaf->keys);  // shrinks in place
        return;
    }
    image_.release(leaf->offset);
    const uint32_t index = leaf->index_offset;
    leaves.erase(leaf);
    if (!leaves.empty()) {
        std::vector<uint32_t> offsets;
        for (const Leaf& l : leaves)
            offsets.push_back(l.offset);
        store_list(index, "ri", offsets);
        return;
    }
    if (in_index) image_.release(index);
    put32(record(parent), nk::subkey_list, nil);
}

// --- values

void Editor::set_value(uint32_t key, std::u16string_view name, const Value& value, FileTime now) {
    const auto existing = find_value(key, name);
    const uint32_t at = existing ? *existing : append_value(key, name);
    store_data(at, value.data);
    put32(record(at), vk::type, value.type);
    const auto owner = record(key);
    raise32(owner, nk::largest_value_name, static_cast<uint32_t>(name.size() * 2));
    raise32(owner, nk::largest_value_data, static_cast<uint32_t>(value.data.size()));
    put64(owner, nk::last_written, now);
}

uint32_t Editor::append_value(uint32_t key, std::u16string_view name) {
    const StoredName stored = store_name(name);
    const uint32_t at = image_.allocate(vk::name + stored.bytes.size());
    const auto value = record(at);
    std::copy_n("vk", 2, value.begin());
    put16(value, vk::name_length, static_cast<uint16_t>(stored.bytes.size()));
    put32(value, vk::data_size, vk::resident);
    put16(value, vk::flags, stored.compressed && !name.empty() ? vk::compressed_name : 0);
    std::copy(stored.bytes.begin(), stored.bytes.end(), value.begin() + vk::name);

    auto offsets = value_offsets(image_, *key_record(image_, key));
    const bool had_list = !offsets.empty();
    offsets.push_back(at);
    uint32_t list_at = get32(record(key), nk::value_list);
    if (!had_list || image_.cell(list_at)->size() < offsets.size() * 4) {
        if (had_list) image_.release(list_at);
        list_at = image_.allocate(4 * (had_list ? with_headroom(offsets.size()) : offsets.size()));
    }
    const auto list = record(list_at);
    for (size_t i = 0; i < offsets.size(); ++i)
        put32(list, i * 4, offsets[i]);
    const auto owner = record(key);
    put32(owner, nk::value_list, list_at);
    put32(owner, nk::value_count, static_cast<uint32_t>(offsets.size()));
    return at;
}

void Editor::store_data(uint32_t value, const Bytes& data) {
    const auto size = static_cast<uint32_t>(data.size());
    const bool in_segments = size > db::segment_data && image_.minor_version() >= db::first_minor_version;
    const auto old = *value_data_place(image_, record(value));
    const bool old_in_one_cell = !old.resident && old.size > 0 && old.segments.empty();
    if (size > vk::most_resident && !in_segments && old_in_one_cell &&
        image_.same_cell_size(old.cell, size)) {
        const auto cell = record(old.cell);
        std::fill(std::copy(data.begin(), data.end(), cell.begin()), cell.end(), uint8_t{0});
        return put32(record(value), vk::data_size, size);
    }
    release_data(value);
    if (size <= vk::most_resident) {
        const auto target = record(value);
        put32(target, vk::data_size, vk::resident | size);
        put32(target, vk::data, 0);
        std::copy(data.begin(), data.end(), target.begin() + vk::data);
        return;
    }
    uint32_t cell = 0;
    if (!in_segments) {
        cell = image_.allocate(size);
        std::copy(data.begin(), data.end(), record(cell).begin());
    } else {
        const uint32_t count = (size + db::segment_data - 1) / db::segment_data;
        cell = image_.allocate(db::record_size);
        const uint32_t list = image_.allocate(size_t{count} * 4);
        for (uint32_t i = 0; i < count; ++i) {
            const uint32_t segment =
                image_.allocate(db::segment_data);  // the last one is as large as the others
            const uint32_t here = std::min(size - i * db::segment_data, db::segment_data);
            std::copy_n(data.begin() + static_cast<ptrdiff_t>(i) * db::segment_data, here,
                        record(segment).begin());
            put32(record(list), size_t{i} * 4, segment);
        }
        const auto big = record(cell);
        std::copy_n("db", 2, big.begin());
        put16(big, db::segment_count, static_cast<uint16_t>(count));
        put32(big, db::segment_list, list);
    }
    put32(record(value), vk::data_size, size);
    put32(record(value), vk::data, cell);
}

void Editor::release_data(uint32_t value) {
    const auto place = *value_data_place(image_, record(value));
    if (place.resident || place.size == 0) return;
    for (uint32_t segment : place.segments)
        image_.release(segment);
    if (place.segment_list) image_.release(*place.segment_list);
    image_.release(place.cell);
}

void Editor::remove_value(uint32_t key, uint32_t value, FileTime now) {
    release_data(value);
    image_.release(value);
    auto offsets = value_offsets(image_, *key_record(image_, key));
    std::erase(offsets, value);
    const auto owner = record(key);
    const uint32_t list_at = get32(owner, nk::value_list);
    put32(owner, nk::value_count, static_cast<uint32_t>(offsets.size()));
    put64(owner, nk::last_written, now);
    if (offsets.empty()) {
        image_.release(list_at);
        put32(owner, nk::value_list, nil);
        put32(owner, nk::largest_value_name, 0);
        put32(owner, nk::largest_value_data, 0);
        return;
    }
    const auto list = record(list_at);
    for (size_t i = 0; i < offsets.size(); ++i)
        put32(list, i * 4, offsets[i]);
}

}  // namespace regf
