#include "regf/editor.h"

#include <algorithm>

#include "regf/bytes.h"
#include "regf/layout.h"

namespace regf {

namespace {

/// An `lf` must fit one bin; the others hold about twice as many.
constexpr size_t longest_lf = 507;
constexpr size_t longest_leaf = 1012;

/// A list moved to a larger cell gets room for what may come, so that not every insertion moves it again.
size_t with_headroom(size_t count) { return count + count / 2; }

std::vector<uint32_t> offsets_of(const std::vector<Leaf>& leaves) {
    std::vector<uint32_t> out(leaves.size());
    std::transform(leaves.begin(), leaves.end(), out.begin(), [](const Leaf& leaf) { return leaf.offset; });
    return out;
}

bool is_wide(const char* kind) { return kind[1] == 'f' || kind[1] == 'h'; }
size_t longest(const char* kind) { return kind[1] == 'f' ? longest_lf : longest_leaf; }

void put_offsets(std::span<uint8_t> list, const std::vector<uint32_t>& offsets) {
    for (size_t i = 0; i < offsets.size(); ++i)
        put32(list, i * 4, offsets[i]);
}

void raise32(std::span<uint8_t> record, size_t at, uint32_t value) {
    if (get32(record, at) < value) put32(record, at, value);
}

}  // namespace

// --- keys

uint32_t Editor::add_key(uint32_t parent, std::u16string_view name, FileTime now) {
    const StoredName stored = store_name(name);
    const uint32_t security = security_for_child(parent);
    const uint32_t offset = image_.allocate(nk::name + stored.bytes.size());
    const auto made = record(offset);
    std::copy_n("nk", 2, made.begin());
    put16(made, nk::flags, stored.compressed ? nk::compressed_name : 0);
    put64(made, nk::last_written, now);
    put32(made, nk::parent, parent);
    for (const size_t list : {nk::subkey_list, nk::volatile_list, nk::value_list, nk::class_name})
        put32(made, list, nil);
    put32(made, nk::security, security);
    put16(made, nk::name_length, static_cast<uint16_t>(stored.bytes.size()));
    std::copy(stored.bytes.begin(), stored.bytes.end(), made.begin() + nk::name);
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

void Editor::remove_key(uint32_t offset, FileTime now) {
    const uint32_t parent = get32(key(offset), nk::parent);
    take_from_list(parent, offset);
    std::vector<uint32_t> doomed{offset};
    while (!doomed.empty()) {
        const uint32_t at = doomed.back();
        doomed.pop_back();
        const auto below = subkey_offsets(image_, key(at));
        doomed.insert(doomed.end(), below.begin(), below.end());
        release_key(at);
    }
    const auto above = record(parent);
    const uint32_t left = get32(above, nk::subkey_count) - 1;
    put32(above, nk::subkey_count, left);
    put64(above, nk::last_written, now);
    if (left > 0) return;
    put16(above, nk::largest_subkey_name, 0);
    put32(above, nk::largest_class_name, 0);
}

void Editor::release_key(uint32_t offset) {
    const CellView doomed = key(offset);
    const auto values = value_offsets(image_, doomed);
    for (uint32_t value : values) {
        release_data(value);
        image_.release(value);
    }
    if (!values.empty()) image_.release(get32(doomed, nk::value_list));
    if (get16(doomed, nk::class_length) > 0) image_.release(get32(doomed, nk::class_name));
    const auto leaves = subkey_lists(image_, doomed).leaves;
    for (const Leaf& leaf : leaves)
        image_.release(leaf.offset);
    if (!leaves.empty() && leaves.front().index_offset != nil) image_.release(leaves.front().index_offset);
    drop_security(get32(doomed, nk::security));
    image_.release(offset);
}

/// The descriptor that most siblings share, as they inherited it (found by letting unlike ones cancel each
/// other out); without siblings that of the parent.
uint32_t Editor::security_for_child(uint32_t parent) const {
    uint32_t best = get32(key(parent), nk::security);
    size_t votes = 0;
    for (uint32_t sibling : subkey_offsets(image_, key(parent))) {
        const uint32_t security = get32(key(sibling), nk::security);
        if (votes == 0) best = security;
        votes = security == best ? votes + 1 : votes - 1;
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
    const bool is_index = kind[0] == 'r';
    const size_t step = is_wide(kind) ? 8 : 4;
    uint32_t at = old.value_or(nil);
    if (!old || image_.cell(*old)->size() < 4 + step * offsets.size()) {
        size_t room = offsets.size();
        if (old) {
            image_.release(*old);
            room = is_index ? with_headroom(room) : std::min(with_headroom(room), longest(kind));
        }
        at = image_.allocate(4 + step * room);
    }
    const auto list = record(at);
    std::copy_n(kind, 2, list.begin());
    put16(list, 2, static_cast<uint16_t>(offsets.size()));
    for (size_t i = 0; i < offsets.size(); ++i) {
        put32(list, 4 + i * step, offsets[i]);
        if (!is_wide(kind)) continue;
        const std::u16string name = key_name(key(offsets[i]));
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
    auto leaves = subkey_lists(image_, key(parent)).leaves;
    if (leaves.empty()) {
        // A list may move the image: the parent's record is looked up behind it.
        const uint32_t first = store_list(std::nullopt, leaf_kind(nullptr, 1), {child});
        return put32(record(parent), nk::subkey_list, first);
    }
    const std::u16string name = key_name(key(child));
    auto before = [&](uint32_t other) { return compare_key_name(key(other), name) < 0; };
    size_t which = 0;  // the last leaf that begins before the new name
    while (which + 1 < leaves.size() && before(leaves[which + 1].keys.front()))
        ++which;
    Leaf& leaf = leaves[which];
    leaf.keys.insert(std::partition_point(leaf.keys.begin(), leaf.keys.end(), before), child);

    const char* const kind = leaf_kind(&leaf, leaf.keys.size());
    if (leaf.keys.size() > longest(kind)) return split_leaf(parent, leaves, which, kind);
    const uint32_t stored = store_list(leaf.offset, kind, leaf.keys);
    if (leaf.index_offset == nil) return put32(record(parent), nk::subkey_list, stored);
    put32(record(leaf.index_offset), 4 + 4 * which, stored);
}

void Editor::split_leaf(uint32_t parent, const std::vector<Leaf>& leaves, size_t which, const char* kind) {
    const auto& keys = leaves[which].keys;
    const auto half = keys.begin() + static_cast<ptrdiff_t>(keys.size() / 2);
    image_.release(leaves[which].offset);
    auto offsets = offsets_of(leaves);
    offsets[which] = store_list(std::nullopt, kind, {keys.begin(), half});
    offsets.insert(offsets.begin() + static_cast<ptrdiff_t>(which) + 1,
                   store_list(std::nullopt, kind, {half, keys.end()}));
    const uint32_t index = leaves[which].index_offset;
    const uint32_t stored = store_list(index == nil ? std::nullopt : std::optional(index), "ri", offsets);
    put32(record(parent), nk::subkey_list, stored);
}

void Editor::take_from_list(uint32_t parent, uint32_t child) {
    auto leaves = subkey_lists(image_, key(parent)).leaves;
    auto leaf = leaves.begin();
    while (std::erase(leaf->keys, child) == 0)
        ++leaf;
    if (!leaf->keys.empty()) {
        store_list(leaf->offset, leaf_kind(&*leaf, leaf->keys.size()), leaf->keys);  // shrinks in place
        return;
    }
    const uint32_t index = leaf->index_offset;
    image_.release(leaf->offset);
    leaves.erase(leaf);
    if (leaves.empty()) {
        if (index != nil) image_.release(index);
        return put32(record(parent), nk::subkey_list, nil);
    }
    store_list(index, "ri", offsets_of(leaves));
}

// --- values

void Editor::set_value(uint32_t owner_offset, std::u16string_view name, const Value& value, FileTime now) {
    const auto existing = find_value(image_, key(owner_offset), name);
    const uint32_t at = existing ? *existing : append_value(owner_offset, name);
    store_data(at, value.data);
    put32(record(at), vk::type, value.type);
    const auto owner = record(owner_offset);
    raise32(owner, nk::largest_value_name, static_cast<uint32_t>(name.size() * 2));
    raise32(owner, nk::largest_value_data, static_cast<uint32_t>(value.data.size()));
    put64(owner, nk::last_written, now);
}

uint32_t Editor::append_value(uint32_t owner_offset, std::u16string_view name) {
    const StoredName stored = store_name(name);
    const uint32_t at = image_.allocate(vk::name + stored.bytes.size());
    const auto value = record(at);
    std::copy_n("vk", 2, value.begin());
    put16(value, vk::name_length, static_cast<uint16_t>(stored.bytes.size()));
    put32(value, vk::data_size, vk::resident);
    put16(value, vk::flags, stored.compressed && !name.empty() ? vk::compressed_name : 0);
    std::copy(stored.bytes.begin(), stored.bytes.end(), value.begin() + vk::name);

    auto offsets = value_offsets(image_, key(owner_offset));
    const bool had_list = !offsets.empty();
    offsets.push_back(at);
    uint32_t list_at = get32(key(owner_offset), nk::value_list);
    if (!had_list || image_.cell(list_at)->size() < offsets.size() * 4) {
        if (had_list) image_.release(list_at);
        list_at = image_.allocate(4 * (had_list ? with_headroom(offsets.size()) : offsets.size()));
    }
    put_offsets(record(list_at), offsets);
    const auto owner = record(owner_offset);
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
    const uint32_t cell = in_segments ? store_segments(data) : image_.allocate(size);
    if (!in_segments) std::copy(data.begin(), data.end(), record(cell).begin());
    put32(record(value), vk::data_size, size);
    put32(record(value), vk::data, cell);
}

uint32_t Editor::store_segments(const Bytes& data) {
    std::vector<uint32_t> segments;
    for (ByteView rest = data; !rest.empty();
         rest = rest.subspan(std::min<size_t>(rest.size(), db::segment_data))) {
        segments.push_back(image_.allocate(db::segment_data));  // the last one is as large as the others
        std::copy_n(rest.begin(), std::min<size_t>(rest.size(), db::segment_data),
                    record(segments.back()).begin());
    }
    const uint32_t list = image_.allocate(segments.size() * 4);
    put_offsets(record(list), segments);
    const uint32_t cell = image_.allocate(db::record_size);
    const auto big = record(cell);
    std::copy_n("db", 2, big.begin());
    put16(big, db::segment_count, static_cast<uint16_t>(segments.size()));
    put32(big, db::segment_list, list);
    return cell;
}

void Editor::release_data(uint32_t value) {
    const auto place = *value_data_place(image_, record(value));
    if (place.resident || place.size == 0) return;
    for (uint32_t segment : place.segments)
        image_.release(segment);
    if (place.segment_list) image_.release(*place.segment_list);
    image_.release(place.cell);
}

void Editor::remove_value(uint32_t owner_offset, uint32_t value, FileTime now) {
    release_data(value);
    image_.release(value);
    auto offsets = value_offsets(image_, key(owner_offset));
    std::erase(offsets, value);
    const auto owner = record(owner_offset);
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
    put_offsets(record(list_at), offsets);
}

}  // namespace regf
