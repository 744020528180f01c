#pragma once

#include <string_view>
#include <vector>

#include "regf/hive.h"
#include "regf/image.h"
#include "regf/records.h"

namespace regf {

/// Changes to the records of a healthy image. Callers have made sure that there is room; old cells are given
/// back before new ones are taken, so that repeated edits find their own space again.
///
/// Where a cell is missing that must be there, std::bad_optional_access is thrown and the image is of no use
/// any more: never is an offset followed that leads to no cell in use.
class Editor {
  public:
    explicit Editor(Image& image) : image_(image) {}

    /// A new key in the list of its parent.
    CellOffset add_key(CellOffset parent, std::u16string_view name, FileTime now);
    /// A key with all that belongs to it and all that lies below it.
    void remove_key(CellOffset offset, FileTime now);

    void set_value(CellOffset owner_offset, std::u16string_view name, const Value& value, FileTime now);
    void remove_value(CellOffset owner_offset, CellOffset value, FileTime now);

  private:
    std::span<uint8_t> record(CellOffset offset) { return image_.cell_at(offset).value(); }
    CellView key(CellOffset offset) const { return key_record(image_, offset).value(); }
    void release_key(CellOffset offset);

    // Lists of subkeys.
    /// What is to stand in one leaf.
    struct Entry {
        CellOffset key;
        uint32_t hash;
    };
    static std::vector<Entry> entries_of(const Leaf& leaf);
    void insert_subkey(CellOffset parent, CellOffset child);
    void take_from_list(CellOffset parent, CellOffset child);
    void split_leaf(CellOffset parent, const std::vector<Leaf>& leaves, size_t which,
                    std::span<const Entry> entries, const char* kind);
    const char* leaf_kind(const Leaf* old, size_t count) const;
    uint32_t hash_for(const char* kind, CellOffset child) const;
    CellOffset cell_for_list(std::optional<CellOffset> old, size_t step, size_t count, size_t most);
    CellOffset store_leaf(std::optional<CellOffset> old, const char* kind, std::span<const Entry> entries);
    CellOffset store_index(std::optional<CellOffset> old, const std::vector<CellOffset>& leaves);

    // Values.
    void store_data(CellOffset value, const Bytes& data);
    CellOffset store_segments(const Bytes& data);
    void release_data(CellOffset value);
    std::vector<CellOffset> value_offsets(CellOffset owner_offset) const;
    CellOffset append_value(CellOffset owner_offset, std::u16string_view name);

    // Security records.
    CellOffset security_for_child(CellOffset parent) const;
    void drop_security(CellOffset offset);

    Image& image_;
};

}  // namespace regf
