#include "regf/records.h"

#include <algorithm>

namespace regf {

std::optional<CellView> key_record(const Image& image, CellOffset offset) {
    const auto key = image.cell_at(offset, nk::name);
    if (!key || !has_signature(*key, "nk")) return std::nullopt;
    const size_t length = get16(*key, nk::name_length);
    if (length == 0 || length > key->size() - nk::name) return std::nullopt;
    return key;
}

NameView key_name(CellView key) {
    return {key.subspan(nk::name, get16(key, nk::name_length)),
            bool(get16(key, nk::flags) & nk::compressed_name)};
}

namespace {

/// Bytes of one element: 0 where it is no leaf.
size_t step_of(CellView list) {
    if (has_signature(list, "lf") || has_signature(list, "lh")) return 8;
    return has_signature(list, "li") ? 4 : 0;
}

}  // namespace

std::optional<Leaf> read_leaf(const Image& image, CellOffset offset, CellOffset index_offset) {
    const auto list = image.cell_at(offset, 4);
    const size_t step = list ? step_of(*list) : 0;
    if (step == 0) return std::nullopt;
    const Leaf leaf{offset, index_offset, *list, get16(*list, 2), step};
    if (leaf.count == 0 || leaf.count * step > list->size() - 4) return std::nullopt;
    return leaf;
}

SubkeyLists subkey_lists(const Image& image, CellView key) {
    SubkeyLists out;
    read_subkey_lists(image, key, out);
    return out;
}

void read_subkey_lists(const Image& image, CellView key, SubkeyLists& out) {
    out.leaves.clear();
    out.whole = get32(key, nk::subkey_count) == 0;
    if (out.whole) return;
    const CellOffset offset = get_cell(key, nk::subkey_list);
    const auto list = image.cell_at(offset, 4);
    if (list && has_signature(*list, "ri")) {
        const size_t count = get16(*list, 2);
        if (count * 4 > list->size() - 4) return;
        size_t room = image.bins_size() / 8;  // a leaf named again and again must not fill the memory
        for (size_t i = 0; i < count; ++i) {
            const auto leaf = read_leaf(image, get_cell(*list, 4 + 4 * i), offset);
            if (!leaf || leaf->count > room) return;
            room -= leaf->count;
            out.leaves.push_back(*leaf);
        }
        out.whole = count > 0;
    } else if (const auto leaf = read_leaf(image, offset, nil)) {
        out.leaves.push_back(*leaf);
        out.whole = true;
    }
}

std::vector<CellOffset> subkey_offsets(const Image& image, CellView key) {
    std::vector<CellOffset> out;
    for (const Leaf& leaf : subkey_lists(image, key).leaves) {
        for (size_t i = 0; i < leaf.count; ++i) {
            if (key_record(image, leaf.key(i))) out.push_back(leaf.key(i));
        }
    }
    return out;
}

std::optional<CellOffset> find_subkey(const Image& image, CellView key, std::u16string_view name,
                                      bool in_order) {
    const auto compare = [&](CellOffset child) {
        const auto record = key_record(image, child);
        return record ? compare_names(key_name(*record), name) : 1;
    };
    for (const Leaf& leaf : subkey_lists(image, key).leaves) {
        size_t at = 0;
        for (size_t end = leaf.count; in_order && at < end;) {
            const size_t middle = at + (end - at) / 2;
            if (compare(leaf.key(middle)) < 0) {
                at = middle + 1;
            } else {
                end = middle;
            }
        }
        while (!in_order && at < leaf.count && compare(leaf.key(at)) != 0)
            ++at;
        if (at < leaf.count && compare(leaf.key(at)) == 0) return leaf.key(at);
    }
    return std::nullopt;
}

std::optional<CellView> value_record(const Image& image, CellOffset offset) {
    const auto value = image.cell_at(offset, vk::name);
    if (!value || !has_signature(*value, "vk")) return std::nullopt;
    if (get16(*value, vk::name_length) > value->size() - vk::name) return std::nullopt;
    return value;
}

NameView value_name(CellView value) {
    return {value.subspan(vk::name, get16(value, vk::name_length)),
            bool(get16(value, vk::flags) & vk::compressed_name)};
}

ValueList value_list(const Image& image, CellView key) {
    const size_t count = get32(key, nk::value_count);
    if (count == 0 || (get16(key, nk::flags) & nk::predefined_handle)) return {};
    const CellOffset offset = get_cell(key, nk::value_list);
    const auto list = image.cell_at(offset);
    if (!list) return {};
    return {offset, *list, std::min(count, list->size() / 4)};
}

std::optional<CellOffset> find_value(const Image& image, CellView key, std::u16string_view name) {
    const ValueList values = value_list(image, key);
    for (size_t i = 0; i < values.count; ++i) {
        const auto value = value_record(image, values.value(i));
        if (value && compare_names(value_name(*value), name) == 0) return values.value(i);
    }
    return std::nullopt;
}

uint32_t value_type(CellView value) { return get32(value, vk::type); }

std::optional<DataPlace> value_data_place(const Image& image, CellView value) {
    const uint32_t told = get32(value, vk::data_size);
    DataPlace place;
    place.size = told & ~vk::resident;
    if (told & vk::resident) {
        place.resident = true;
        if (place.size > vk::most_resident) return std::nullopt;
        return place;
    }
    if (place.size == 0) return place;
    place.cell = get_cell(value, vk::data);
    if (place.size <= db::segment_data || image.minor_version() < db::first_minor_version) {
        if (!image.cell_at(place.cell, place.size)) return std::nullopt;
        return place;
    }
    const auto record = image.cell_at(place.cell, 8);
    if (!record || !has_signature(*record, "db")) return std::nullopt;
    const uint32_t count = get16(*record, db::segment_count);
    if (count < 2 || count != (uint64_t{place.size} + db::segment_data - 1) / db::segment_data)
        return std::nullopt;
    place.segment_list = get_cell(*record, db::segment_list);
    const auto list = image.cell_at(place.segment_list, size_t{count} * 4);
    if (!list) return std::nullopt;
    place.segments = list->first(size_t{count} * 4);
    for (uint32_t i = 0, left = place.size; i < count; ++i) {
        const uint32_t here = std::min(left, db::segment_data);
        if (!image.cell_at(place.segment(i), here)) return std::nullopt;
        left -= here;
    }
    return place;
}

std::optional<Bytes> value_data(const Image& image, CellView value) {
    const auto place = value_data_place(image, value);
    if (!place) return std::nullopt;
    auto copy = [](CellView from, size_t size) {
        return Bytes(from.begin(), from.begin() + static_cast<ptrdiff_t>(size));
    };
    if (place->resident) return copy(value.subspan(vk::data), place->size);
    if (place->size == 0) return Bytes{};
    if (place->segments.empty()) return copy(*image.cell_at(place->cell), place->size);
    Bytes out;
    for (size_t i = 0; i < place->count_segments(); ++i) {
        const auto cell = *image.cell_at(place->segment(i));
        const size_t here = std::min<size_t>(place->size - out.size(), db::segment_data);
        out.insert(out.end(), cell.begin(), cell.begin() + static_cast<ptrdiff_t>(here));
    }
    return out;
}

std::optional<CellView> security_descriptor(const Image& image, CellOffset offset) {
    const auto record = image.cell_at(offset, sk::descriptor);
    if (!record || !has_signature(*record, "sk")) return std::nullopt;
    const size_t size = get32(*record, sk::descriptor_size);
    if (size == 0 || size > record->size() - sk::descriptor) return std::nullopt;
    return record->subspan(sk::descriptor, size);
}

namespace {

bool has_sid(CellView descriptor, uint32_t at) {
    if (at == 0 || at > descriptor.size() || descriptor.size() - at < 8) return false;
    const size_t sub_authorities = descriptor[at + 1];
    return descriptor[at] == 1 && sub_authorities <= 15 && descriptor.size() - at >= 8 + 4 * sub_authorities;
}

/// An absent list is legal.
bool has_acl(CellView descriptor, uint32_t at) {
    if (at == 0) return true;
    if (at > descriptor.size() || descriptor.size() - at < 8) return false;
    const size_t size = get16(descriptor, at + 2);
    return size >= 8 && size <= descriptor.size() - at;
}

}  // namespace

bool is_valid_descriptor(CellView descriptor) {
    constexpr size_t header = 20;
    constexpr uint16_t self_relative = 0x8000;
    constexpr size_t largest = 0x40000;  // two lists of 64 KB each and two owners are half of it
    if (descriptor.size() < header || descriptor.size() > largest || descriptor[0] != 1 ||
        !(get16(descriptor, 2) & self_relative)) {
        return false;
    }
    return has_sid(descriptor, get32(descriptor, 4)) && has_sid(descriptor, get32(descriptor, 8)) &&
           has_acl(descriptor, get32(descriptor, 12)) && has_acl(descriptor, get32(descriptor, 16));
}

std::optional<std::u16string> class_name_of(const Image& image, CellView key) {
    const size_t length = get16(key, nk::class_length);
    if (length == 0) return std::u16string();
    const auto cell = image.cell_at(get_cell(key, nk::class_name), length);
    if (!cell) return std::nullopt;
    return NameView{cell->first(length)}.text();
}

std::vector<CellOffset> cells_of(const Image& image, CellOffset key) {
    const CellView record = key_record(image, key).value();
    std::vector<CellOffset> cells;
    const ValueList values = value_list(image, record);
    for (size_t i = 0; i < values.count; ++i) {
        const auto place = value_data_place(image, value_record(image, values.value(i)).value()).value();
        for (size_t segment = 0; segment < place.count_segments(); ++segment)
            cells.push_back(place.segment(segment));
        for (const CellOffset cell : {place.segment_list, place.cell, values.value(i)})
            cells.push_back(cell);
    }
    const SubkeyLists lists = subkey_lists(image, record);
    for (const Leaf& leaf : lists.leaves)
        cells.push_back(leaf.offset);
    for (const CellOffset cell : {lists.index(), values.offset})
        cells.push_back(cell);
    if (get16(record, nk::class_length) > 0) cells.push_back(get_cell(record, nk::class_name));
    cells.push_back(key);
    std::erase(cells, nil);
    return cells;
}

}  // namespace regf
