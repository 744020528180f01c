#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "regf/bytes.h"
#include "regf/image.h"
#include "regf/layout.h"
#include "regf/names.h"

/// Reading the records of an image. Every offset goes through Image::cell_at; an answer of none means that
/// the record breaks a rule of the format.
namespace regf {

using CellView = ByteView;

/// The record of a key, its name whole.
std::optional<CellView> key_record(const Image& image, CellOffset offset);
NameView key_name(CellView key);

/// One leaf of a key's subkey list.
struct Leaf {
    CellOffset offset;
    CellOffset index_offset;  ///< nil, or the index (`ri`) that holds it
    CellView list;
    size_t count;
    size_t step;  ///< 8 where each key has a number beside it

    CellOffset key(size_t i) const { return get_cell(list, 4 + i * step); }
    /// As it is stored beside the key: a hash, the start of the name, or (in an `li`) nothing.
    uint32_t hash(size_t i) const { return step == 8 ? get32(list, 8 + i * step) : 0; }
    CellOffset first() const { return key(0); }
};
std::optional<Leaf> read_leaf(const Image& image, CellOffset offset, CellOffset index_offset);
struct SubkeyLists {
    std::vector<Leaf> leaves;  ///< in order, up to the first that cannot be read
    bool whole = false;        ///< none is damaged, or an index inside an index
    CellOffset index() const { return leaves.empty() ? nil : leaves.front().index_offset; }
};
SubkeyLists subkey_lists(const Image& image, CellView key);
/// The same, without new memory for each key.
void read_subkey_lists(const Image& image, CellView key, SubkeyLists& out);
/// The subkeys that can be read, as the lists name them.
std::vector<CellOffset> subkey_offsets(const Image& image, CellView key);
/// `in_order`: the lists are known to be sound, as those of a hive that may be edited are.
std::optional<CellOffset> find_subkey(const Image& image, CellView key, std::u16string_view name,
                                      bool in_order);

/// The values of a key as its list names them, in the order of their creation.
struct ValueList {
    CellOffset offset = nil;
    CellView list{};
    size_t count = 0;  ///< no more than fit the list
    CellOffset value(size_t i) const { return get_cell(list, 4 * i); }
};
ValueList value_list(const Image& image, CellView key);
std::optional<CellView> value_record(const Image& image, CellOffset offset);
NameView value_name(CellView value);
std::optional<CellOffset> find_value(const Image& image, CellView key, std::u16string_view name);

/// The cells that hold a value's data, with what each must have.
struct DataPlace {
    uint32_t size = 0;      ///< bytes
    bool resident = false;  ///< in the value record itself
    CellOffset cell = nil;  ///< the data, or the big-data record
    CellOffset segment_list = nil;
    CellView segments{};  ///< of the list: an offset each
    size_t count_segments() const { return segments.size() / 4; }
    CellOffset segment(size_t i) const { return get_cell(segments, 4 * i); }
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

/// The cells that belong to one key alone, its own the last; not its subkeys, nor its security record.
std::vector<CellOffset> cells_of(const Image& image, CellOffset key);

}  // namespace regf
