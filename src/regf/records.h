#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "regf/image.h"
#include "regf/layout.h"
#include "regf/names.h"

/// Reading the records of an image. Every offset goes through Image::cell; an answer of none means that the
/// record breaks a rule of the format.
namespace regf {

using CellView = std::span<const uint8_t>;

/// The record of a key, its name whole.
std::optional<CellView> key_record(const Image& image, CellOffset offset);
std::u16string key_name(CellView key);
/// As compare_names, without making a string.
int compare_key_name(CellView key, std::u16string_view name);

/// One leaf of a key's subkey list.
struct LeafEntry {
    CellOffset key;
    uint32_t
        hash;  ///< as it is stored beside the key: a hash, the start of the name, or (in an `li`) nothing
};
struct Leaf {
    CellOffset offset;
    CellOffset index_offset;  ///< nil, or the index (`ri`) that holds it
    std::vector<LeafEntry> entries;
};
struct SubkeyLists {
    std::vector<Leaf> leaves;  ///< in order, up to the first that cannot be read
    bool whole = false;        ///< none is damaged, or an index inside an index
};
SubkeyLists subkey_lists(const Image& image, CellView key);
/// The subkeys that can be read, as the lists name them.
std::vector<CellOffset> subkey_offsets(const Image& image, CellView key);
/// `in_order`: the lists are known to be sound, as those of a hive that may be edited are.
std::optional<CellOffset> find_subkey(const Image& image, CellView key, std::u16string_view name,
                                      bool in_order);

std::optional<CellView> value_record(const Image& image, CellOffset offset);
std::u16string value_name(CellView value);
std::vector<CellOffset> value_offsets(const Image& image, CellView key);
std::optional<CellOffset> find_value(const Image& image, CellView key, std::u16string_view name);

/// The cells that hold a value's data, with what each must have.
struct DataPlace {
    uint32_t size = 0;      ///< bytes
    bool resident = false;  ///< in the value record itself
    CellOffset cell = nil;  ///< the data, or the big-data record
    std::optional<CellOffset> segment_list;
    std::vector<CellOffset> segments;
};
/// None where a cell is missing or too small for what is told of it.
std::optional<DataPlace> value_data_place(const Image& image, CellView value);
std::optional<Bytes> value_data(const Image& image, CellView value);
uint32_t value_type(CellView value);

/// The descriptor in a security record; none where it does not fit.
std::optional<CellView> security_descriptor(const Image& image, CellOffset offset);
/// Revision, self-relative, owner and group there, everything inside.
bool is_valid_descriptor(CellView descriptor);

std::optional<std::u16string> class_name_of(const Image& image, CellView key);

}  // namespace regf
