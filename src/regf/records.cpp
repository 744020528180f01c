#include "regf/records.h"

#include <algorithm>
#include <iterator>

#include "regf/bytes.h"
#include "regf/layout.h"

namespace regf {

std::optional<CellView> key_record(const Image& image, CellOffset offset) {
    const auto key = image.cell_at(offset, nk::name);
    if (!key || !has_signature(*key, "nk")) return std::nullopt;
    const size_t length = get16(*key, nk::name_length);
    if (length == 0 || length > key->size() - nk::name) return std::nullopt;
    return key;
}

std::u16string key_name(CellView key) {
    return load_name(key.subspan(nk::name, get16(key, nk::name_length)),
                     get16(key, nk::flags) & nk::compressed_name);
}

int compare_key_name(CellView key, std::u16string_view name) {
    const bool compressed = get16(key, nk::flags) & nk::compressed_name;
    const size_t length = get16(key, nk::name_length) / (compressed ? 1 : 2);
    for (size_t i = 0; i < std::min(length, name.size()); ++i) {
        const auto unit =
            static_cast<char16_t>(compressed ? key[nk::name + i] : get16(key, nk::name + 2 * i));
        const int difference = upcase(unit) - upcase(name[i]);
        if (difference != 0) return difference;
    }
    return static_cast<int>(length) - static_cast<int>(name.size());
}

namespace {

bool is_leaf(CellView list) {
    return has_signature(list, "li") || has_signature(list, "lf") || has_signature(list, "lh");
}

size_t step_of(CellView list) { return has_signature(list, "lf") || has_signature(list, "lh") ? 8 : 4; }

/// How many elements a list has; 0 where they do not fit.
size_t count_of(CellView list) {
    const size_t count = get16(list, 2);
    return count * step_of(list) <= list.size() - 4 ? count : 0;
}

std::optional<Leaf> read_leaf(const Image& image, CellOffset offset, CellOffset index_offset) {
    const auto list = image.cell_at(offset, 4);
    if (!list || !is_leaf(*list) || count_of(*list) == 0) return std::nullopt;
    Leaf leaf{offset, index_offset, std::vector<LeafEntry>(count_of(*list))};
    const size_t step = step_of(*list);
    for (size_t i = 0; i < leaf.entries.size(); ++i) {
        const size_t at = 4 + i * step;
        leaf.entries[i] = {get_cell(*list, at), step == 8 ? get32(*list, at + 4) : 0};
    }
    return leaf;
}

}  // namespace

SubkeyLists subkey_lists(const Image& image, CellView key) {
    SubkeyLists out;
    const CellOffset offset = get_cell(key, nk::subkey_list);
    const auto list = image.cell_at(offset, 4);
    if (get32(key, nk::subkey_count) == 0) {
        out.whole = true;
    } else if (list && has_signature(*list, "ri")) {
        // A leaf named again and again must not make a small file large in memory.
        size_t room = image.bins_size() / 8;
        for (size_t i = 0; i < count_of(*list); ++i) {
            auto leaf = read_leaf(image, get_cell(*list, 4 + 4 * i), offset);
            if (!leaf || leaf->entries.size() > room) return out;
            room -= leaf->entries.size();
            out.leaves.push_back(std::move(*leaf));
        }
        out.whole = !out.leaves.empty();
    } else if (auto leaf = read_leaf(image, offset, nil)) {
        out.leaves.push_back(std::move(*leaf));
        out.whole = true;
    }
    return out;
}

std::vector<CellOffset> subkey_offsets(const Image& image, CellView key) {
    std::vector<CellOffset> out;
    for (const Leaf& leaf : subkey_lists(image, key).leaves) {
        for (const LeafEntry& entry : leaf.entries) {
            if (key_record(image, entry.key)) out.push_back(entry.key);
        }
    }
    return out;
}

std::optional<CellOffset> find_subkey(const Image& image, CellView key, std::u16string_view name,
                                      bool in_order) {
    auto compare = [&](const LeafEntry& entry) {
        const auto record = key_record(image, entry.key);
        return record ? compare_key_name(*record, name) : 1;
    };
    auto before = [&](const LeafEntry& entry) { return compare(entry) < 0; };
    auto same = [&](const LeafEntry& entry) { return compare(entry) == 0; };
    for (const Leaf& leaf : subkey_lists(image, key).leaves) {
        const auto& all = leaf.entries;
        const auto at = in_order ? std::partition_point(all.begin(), all.end(), before)
                                 : std::find_if(all.begin(), all.end(), same);
        if (at != all.end() && same(*at)) return at->key;
    }
    return std::nullopt;
}

std::optional<CellView> value_record(const Image& image, CellOffset offset) {
    const auto value = image.cell_at(offset, vk::name);
    if (!value || !has_signature(*value, "vk")) return std::nullopt;
    if (get16(*value, vk::name_length) > value->size() - vk::name) return std::nullopt;
    return value;
}

std::u16string value_name(CellView value) {
    return load_name(value.subspan(vk::name, get16(value, vk::name_length)),
                     get16(value, vk::flags) & vk::compressed_name);
}

std::vector<CellOffset> value_offsets(const Image& image, CellView key) {
    const size_t count = get32(key, nk::value_count);
    if (count == 0 || (get16(key, nk::flags) & nk::predefined_handle)) return {};
    const auto list = image.cell_at(get_cell(key, nk::value_list));
    std::vector<CellOffset> out;
    if (!list) return out;
    for (size_t i = 0; i < std::min(count, list->size() / 4); ++i)
        out.push_back(get_cell(*list, i * 4));
    return out;
}

std::optional<CellOffset> find_value(const Image& image, CellView key, std::u16string_view name) {
    for (CellOffset offset : value_offsets(image, key)) {
        const auto value = value_record(image, offset);
        if (value && same_name(value_name(*value), name)) return offset;
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
    const auto list = image.cell_at(*place.segment_list, size_t{count} * 4);
    if (!list) return std::nullopt;
    for (uint32_t i = 0, left = place.size; i < count; ++i) {
        const uint32_t here = std::min(left, db::segment_data);
        place.segments.push_back(get_cell(*list, size_t{i} * 4));
        if (!image.cell_at(place.segments.back(), here)) return std::nullopt;
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
    for (CellOffset segment : place->segments) {
        const auto cell = *image.cell_at(segment);
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
    return load_name(cell->first(length), false);
}

}  // namespace regf
