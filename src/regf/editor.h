#pragma once

#include <string_view>
#include <vector>

#include "regf/hive.h"
#include "regf/image.h"
#include "regf/records.h"

namespace regf {

/// Changes to the records of a healthy image. Callers have made sure that there is room; old cells are given
/// back before new ones are taken, so that repeated edits find their own space again.
class Editor {
  public:
    explicit Editor(Image& image) : image_(image) {}

    /// A new key in the list of its parent.
    uint32_t add_key(uint32_t parent, std::u16string_view name, FileTime now);
    /// A key with all that belongs to it and all that lies below it.
    void remove_key(uint32_t offset, FileTime now);

    void set_value(uint32_t owner_offset, std::u16string_view name, const Value& value, FileTime now);
    void remove_value(uint32_t owner_offset, uint32_t value, FileTime now);

  private:
    std::span<uint8_t> record(uint32_t offset) { return *image_.cell(offset); }
    CellView key(uint32_t offset) const { return *key_record(image_, offset); }
    void release_key(uint32_t offset);

    // Lists of subkeys.
    void insert_subkey(uint32_t parent, uint32_t child);
    void take_from_list(uint32_t parent, uint32_t child);
    void split_leaf(uint32_t parent, const std::vector<Leaf>& leaves, size_t which, const char* kind);
    const char* leaf_kind(const Leaf* old, size_t count) const;
    uint32_t store_list(std::optional<uint32_t> old, const char* kind, const std::vector<uint32_t>& offsets);

    // Values.
    void store_data(uint32_t value, const Bytes& data);
    uint32_t store_segments(const Bytes& data);
    void release_data(uint32_t value);
    uint32_t append_value(uint32_t owner_offset, std::u16string_view name);

    // Security records.
    uint32_t security_for_child(uint32_t parent) const;
    void drop_security(uint32_t offset);

    Image& image_;
};

}  // namespace regf
