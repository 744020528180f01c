#include "regf/editor.h"

#include <algorithm>

namespace regf {

namespace {

/// An `lf` must fit one bin; the others hold about twice as many.
constexpr size_t longest_lf = 507;
constexpr size_t longest_leaf = 1012;

/// A list moved to a larger cell gets room for what may come, so that not every insertion moves it again.
size_t with_headroom(size_t count) { return count + count / 2; }

std::vector<CellOffset> offsets_of(const std::vector<Leaf>& leaves) {
    std::vector<CellOffset> out(leaves.size());
    std::transform(leaves.begin(), leaves.end(), out.begin(), [](const Leaf& leaf) { return leaf.offset; });
    return out;
}

bool is_wide(const char* kind) { return kind[1] == 'f' || kind[1] == 'h'; }
size_t longest(const char* kind) { return kind[1] == 'f' ? longest_lf : longest_leaf; }

void put_offsets(std::span<uint8_t> list, const std::vector<CellOffset>& offsets) {
    for (size_t i = 0; i < offsets.size(); ++i)
        put_cell(list, i * 4, offsets[i]);
}

void raise32(std::span<uint8_t> record, size_t at, uint32_t value) {
    if (get32(record, at) < value) put32(record, at, value);
}

}  // namespace

// --- keys

CellOffset Editor::add_key(CellOffset parent, std::u16string_view name, FileTime now) {
    const StoredName stored = store_name(name);
    const CellOffset security = security_for_child(parent);
    const CellOffset offset = image_.allocate(nk::name + stored.bytes.size());
    const auto made = record(offset);
    std::copy_n("nk", 2, made.begin());
    put16(made, nk::flags, stored.compressed ? nk::compressed_name : 0);
    put64(made, nk::last_written, now);
    put_cell(made, nk::parent, parent);
    for (const size_t list : {nk::subkey_list, nk::volatile_list, nk::value_list, nk::class_name})
        put_cell(made, list, nil);
    put_cell(made, nk::security, security);
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

void Editor::remove_key(CellOffset offset, FileTime now) {
    const CellOffset parent = get_cell(key(offset), nk::parent);
    take_from_list(parent, offset);
    std::vector<CellOffset> doomed{offset};
    while (!doomed.empty()) {
        const CellOffset at = doomed.back();
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

void Editor::release_key(CellOffset offset) {
    const CellOffset security = get_cell(key(offset), nk::security);
    for (const CellOffset cell : cells_of(image_, offset))
        image_.release(cell);
    drop_security(security);
}

/// The descriptor that most siblings share, as they inherited it (found by letting unlike ones cancel each
/// other out); without siblings that of the parent.
CellOffset Editor::security_for_child(CellOffset parent) const {
    CellOffset best = get_cell(key(parent), nk::security);
    size_t votes = 0;
    for (CellOffset sibling : subkey_offsets(image_, key(parent))) {
        const CellOffset security = get_cell(key(sibling), nk::security);
        if (votes == 0) best = security;
        votes = security == best ? votes + 1 : votes - 1;
    }
    return best;
}

void Editor::drop_security(CellOffset offset) {
    const auto shared = record(offset);
    const uint32_t users = get32(shared, sk::reference_count);
    if (users > 1) return put32(shared, sk::reference_count, users - 1);
    const CellOffset next = get_cell(shared, sk::next);
    const CellOffset previous = get_cell(shared, sk::previous);
    if (users == 0 || next == offset) return;  // miscounted by somebody else, or the last of the hive
    put_cell(record(previous), sk::next, next);
    put_cell(record(next), sk::previous, previous);
    image_.release(offset);
}

// --- lists of subkeys

/// The old cell where the list still fits it, else a new one.
CellOffset Editor::cell_for_list(std::optional<CellOffset> old, size_t step, size_t count, size_t most) {
    if (!old) return image_.allocate(4 + step * count);
    if (record(*old).size() >= 4 + step * count) return *old;
    image_.release(*old);
    return image_.allocate(4 + step * std::min(with_headroom(count), most));
}

CellOffset Editor::store_leaf(std::optional<CellOffset> old, const char* kind,
                              std::span<const Entry> entries) {
    const size_t step = is_wide(kind) ? 8 : 4;
    const CellOffset at = cell_for_list(old, step, entries.size(), longest(kind));
    const auto list = record(at);
    std::copy_n(kind, 2, list.begin());
    put16(list, 2, static_cast<uint16_t>(entries.size()));
    for (size_t i = 0; i < entries.size(); ++i) {
        put_cell(list, 4 + i * step, entries[i].key);
        if (is_wide(kind)) put32(list, 8 + i * step, entries[i].hash);
    }
    return at;
}

CellOffset Editor::store_index(std::optional<CellOffset> old, const std::vector<CellOffset>& leaves) {
    const CellOffset at = cell_for_list(old, 4, leaves.size(), 0xFFFF);
    const auto list = record(at);
    std::copy_n("ri", 2, list.begin());
    put16(list, 2, static_cast<uint16_t>(leaves.size()));
    put_offsets(list.subspan(4), leaves);
    return at;
}

uint32_t Editor::hash_for(const char* kind, CellOffset child) const {
    const NameView name = key_name(key(child));
    return kind[1] == 'h' ? name_hash(name) : kind[1] == 'f' ? name_hint(name) : 0;
}

/// An existing list keeps its kind, so that an index never mixes two; alone, an `lf` gives way when it
/// outgrows one bin.
const char* Editor::leaf_kind(const Leaf* old, size_t count) const {
    const bool hashed = image_.minor_version() >= 5;
    if (!old) return hashed ? "lh" : "lf";
    if (has_signature(old->list, "lh")) return "lh";
    if (has_signature(old->list, "li")) return "li";
    if (old->index_offset != nil || count <= longest_lf) return "lf";
    return hashed ? "lh" : "li";
}

std::vector<Editor::Entry> Editor::entries_of(const Leaf& leaf) {
    std::vector<Entry> entries(leaf.count);
    for (size_t i = 0; i < leaf.count; ++i)
        entries[i] = {leaf.key(i), leaf.hash(i)};
    return entries;
}

void Editor::insert_subkey(CellOffset parent, CellOffset child) {
    const auto leaves = subkey_lists(image_, key(parent)).leaves;
    if (leaves.empty()) {
        const char* const kind = leaf_kind(nullptr, 1);
        const Entry only{child, hash_for(kind, child)};
        const CellOffset first = store_leaf(std::nullopt, kind, {&only, 1});
        return put_cell(record(parent), nk::subkey_list, first);
    }
    const NameView name = key_name(key(child));
    const auto is_before = [&](CellOffset other) { return compare_names(key_name(key(other)), name) < 0; };
    size_t which = 0;  // the last leaf that begins before the new name
    while (which + 1 < leaves.size() && is_before(leaves[which + 1].first()))
        ++which;
    const Leaf& leaf = leaves[which];
    auto entries = entries_of(leaf);
    const char* const kind = leaf_kind(&leaf, entries.size() + 1);
    const auto place = std::ranges::partition_point(entries, is_before, &Entry::key);
    entries.insert(place, {child, hash_for(kind, child)});
    // What Windows stored beside the others stays: it may know capitals that we do not, or others.
    if (!has_signature(leaf.list, kind)) {
        for (Entry& entry : entries)
            entry.hash = hash_for(kind, entry.key);
    }
    if (entries.size() > longest(kind)) return split_leaf(parent, leaves, which, entries, kind);
    const CellOffset stored = store_leaf(leaf.offset, kind, entries);
    if (leaf.index_offset == nil) return put_cell(record(parent), nk::subkey_list, stored);
    put_cell(record(leaf.index_offset), 4 + 4 * which, stored);
}

void Editor::split_leaf(CellOffset parent, const std::vector<Leaf>& leaves, size_t which,
                        std::span<const Entry> entries, const char* kind) {
    const size_t half = entries.size() / 2;
    image_.release(leaves[which].offset);
    auto offsets = offsets_of(leaves);
    offsets[which] = store_leaf(std::nullopt, kind, entries.first(half));
    offsets.insert(offsets.begin() + static_cast<ptrdiff_t>(which) + 1,
                   store_leaf(std::nullopt, kind, entries.subspan(half)));
    const CellOffset index = leaves[which].index_offset;
    const CellOffset stored = store_index(index == nil ? std::nullopt : std::optional(index), offsets);
    put_cell(record(parent), nk::subkey_list, stored);
}

void Editor::take_from_list(CellOffset parent, CellOffset child) {
    auto leaves = subkey_lists(image_, key(parent)).leaves;
    std::vector<Entry> entries;
    const auto leaf = std::ranges::find_if(leaves, [&](const Leaf& any) {
        entries = entries_of(any);
        return std::erase_if(entries, [child](const Entry& entry) { return entry.key == child; }) > 0;
    });
    if (leaf == leaves.end()) throw std::bad_optional_access();
    if (!entries.empty()) {
        store_leaf(leaf->offset, leaf_kind(&*leaf, 0), entries);  // shrinks in place
        return;
    }
    const CellOffset index = leaf->index_offset;
    image_.release(leaf->offset);
    leaves.erase(leaf);
    if (leaves.empty()) {
        if (index != nil) image_.release(index);
        return put_cell(record(parent), nk::subkey_list, nil);
    }
    store_index(index, offsets_of(leaves));
}

// --- values

void Editor::set_value(CellOffset owner_offset, std::u16string_view name, const Value& value, FileTime now) {
    const auto existing = find_value(image_, key(owner_offset), name);
    const CellOffset at = existing ? *existing : append_value(owner_offset, name);
    store_data(at, value.data);
    put32(record(at), vk::type, value.type);
    const auto owner = record(owner_offset);
    raise32(owner, nk::largest_value_name, static_cast<uint32_t>(name.size() * 2));
    raise32(owner, nk::largest_value_data, static_cast<uint32_t>(value.data.size()));
    put64(owner, nk::last_written, now);
}

CellOffset Editor::append_value(CellOffset owner_offset, std::u16string_view name) {
    const StoredName stored = store_name(name);
    const CellOffset at = image_.allocate(vk::name + stored.bytes.size());
    const auto value = record(at);
    std::copy_n("vk", 2, value.begin());
    put16(value, vk::name_length, static_cast<uint16_t>(stored.bytes.size()));
    put32(value, vk::data_size, vk::resident);
    put16(value, vk::flags, stored.compressed && !name.empty() ? vk::compressed_name : 0);
    std::copy(stored.bytes.begin(), stored.bytes.end(), value.begin() + vk::name);

    auto offsets = value_offsets(owner_offset);
    const bool had_list = !offsets.empty();
    offsets.push_back(at);
    CellOffset list_at = get_cell(key(owner_offset), nk::value_list);
    if (!had_list || record(list_at).size() < offsets.size() * 4) {
        if (had_list) image_.release(list_at);
        list_at = image_.allocate(4 * (had_list ? with_headroom(offsets.size()) : offsets.size()));
    }
    put_offsets(record(list_at), offsets);
    const auto owner = record(owner_offset);
    put_cell(owner, nk::value_list, list_at);
    put32(owner, nk::value_count, static_cast<uint32_t>(offsets.size()));
    return at;
}

std::vector<CellOffset> Editor::value_offsets(CellOffset owner_offset) const {
    const ValueList values = value_list(image_, key(owner_offset));
    std::vector<CellOffset> out(values.count);
    for (size_t i = 0; i < out.size(); ++i)
        out[i] = values.value(i);
    return out;
}

void Editor::store_data(CellOffset value, const Bytes& data) {
    const auto size = static_cast<uint32_t>(data.size());
    const bool in_segments = size > db::segment_data && image_.minor_version() >= db::first_minor_version;
    const auto old = value_data_place(image_, record(value)).value();
    const bool old_in_one_cell = !old.resident && old.size > 0 && old.segment_list == nil;
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
    const CellOffset cell = in_segments ? store_segments(data) : image_.allocate(size);
    if (!in_segments) std::copy(data.begin(), data.end(), record(cell).begin());
    put32(record(value), vk::data_size, size);
    put_cell(record(value), vk::data, cell);
}

CellOffset Editor::store_segments(const Bytes& data) {
    std::vector<CellOffset> segments;
    for (ByteView rest = data; !rest.empty();
         rest = rest.subspan(std::min<size_t>(rest.size(), db::segment_data))) {
        segments.push_back(image_.allocate(db::segment_data));  // the last one is as large as the others
        std::copy_n(rest.begin(), std::min<size_t>(rest.size(), db::segment_data),
                    record(segments.back()).begin());
    }
    const CellOffset list = image_.allocate(segments.size() * 4);
    put_offsets(record(list), segments);
    const CellOffset cell = image_.allocate(db::record_size);
    const auto big = record(cell);
    std::copy_n("db", 2, big.begin());
    put16(big, db::segment_count, static_cast<uint16_t>(segments.size()));
    put_cell(big, db::segment_list, list);
    return cell;
}

void Editor::release_data(CellOffset value) {
    const auto place = value_data_place(image_, record(value)).value();
    if (place.resident || place.size == 0) return;
    for (size_t i = 0; i < place.count_segments(); ++i)
        image_.release(place.segment(i));
    if (place.segment_list != nil) image_.release(place.segment_list);
    image_.release(place.cell);
}

void Editor::remove_value(CellOffset owner_offset, CellOffset value, FileTime now) {
    release_data(value);
    image_.release(value);
    auto offsets = value_offsets(owner_offset);
    std::erase(offsets, value);
    const auto owner = record(owner_offset);
    const CellOffset list_at = get_cell(owner, nk::value_list);
    put32(owner, nk::value_count, static_cast<uint32_t>(offsets.size()));
    put64(owner, nk::last_written, now);
    if (offsets.empty()) {
        image_.release(list_at);
        put_cell(owner, nk::value_list, nil);
        put32(owner, nk::largest_value_name, 0);
        put32(owner, nk::largest_value_data, 0);
        return;
    }
    put_offsets(record(list_at), offsets);
}

}  // namespace regf
