#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "regf/bins.h"
#include "regf/hive.h"
#include "sealed_memory/sealed_memory.h"

namespace regf {

using sealed_memory::Mapping;

/// Where the bins and cells of an image begin, a bit for each 8 bytes.
class CellMap {
  public:
    /// Of so many bytes of bins.
    void resize(uint32_t bins_size);
    uint32_t bins_size() const { return bins_size_; }

    bool begins_at(uint32_t offset) const {
        return offset % 8 == 0 && offset < bins_size_ && (cells_[offset / 512] >> offset / 8 % 64 & 1) != 0;
    }
    void set(uint32_t offset) { cells_[offset / 512] |= bit(offset); }
    void clear(uint32_t offset) { cells_[offset / 512] &= ~bit(offset); }
    void clear(uint32_t from, uint32_t to);
    /// The first cell that begins at `offset` or after it, before `end`; else `end`.
    uint32_t first_from(uint32_t offset, uint32_t end) const;
    /// The last cell that begins at `offset` or before; none where there is none.
    std::optional<uint32_t> last_up_to(uint32_t offset) const;

    bool bin_begins_at(uint32_t offset) const { return bins_[offset / 4096]; }
    void set_bin(uint32_t offset) { bins_[offset / 4096] = true; }
    /// Where the bin begins that `offset` lies in.
    uint32_t bin_of(uint32_t offset) const;

    /// All of it as plain numbers, and again as it was.
    std::vector<uint64_t> words() const;
    static CellMap of(uint32_t bins_size, std::span<const uint64_t> words);
    static size_t count_words(uint32_t bins_size) { return bins_size / 512 + (bins_size / 4096 + 63) / 64; }

    bool operator==(const CellMap&) const = default;

  private:
    static uint64_t bit(uint32_t offset) { return uint64_t{1} << offset / 8 % 64; }
    uint32_t bins_size_ = 0;
    std::vector<uint64_t> cells_;
    std::vector<bool> bins_;
};

/// The bytes of a hive file, taken apart into bins and cells. The one way to the content of a cell is
/// cell_at(): it answers only for offsets at which a cell in use begins, so that no number from the file is
/// ever followed anywhere else.
class Image {
  public:
    /// Walks the bins. What cannot be walked is told by problem(); the cells before it can be read.
    explicit Image(const std::shared_ptr<const Memory>& memory);
    /// Other looks at bytes whose cells are known, not to be edited: at a memory as it was filled, and at
    /// what outlives the image.
    Image(std::shared_ptr<const Memory> memory, CellMap cells);
    Image(ByteView bytes, CellMap cells) : bytes_(bytes), cells_(std::move(cells)) {}

    const std::optional<Problem>& problem() const { return problem_; }
    /// Free cells side by side, which Windows merges: some of them.
    const std::vector<CellOffset>& unmerged_cells() const { return unmerged_; }
    /// How many cells were in use when the bins were walked.
    size_t used_cells() const { return used_cells_; }

    ByteView bytes() const { return bytes_; }
    std::span<uint8_t> base_block() { return touch(0, base_size()); }
    ByteView base_block() const { return bytes().first(base_size()); }
    uint32_t bins_size() const { return cells_.bins_size(); }
    const CellMap& cells() const { return cells_; }
    const std::shared_ptr<const Memory>& memory() const { return memory_; }
    CellOffset root() const;
    uint32_t minor_version() const;

    /// The content of the cell in use at `offset`, without its size field; none where no such cell begins
    /// there, or it has less than `least` bytes.
    std::optional<ByteView> cell_at(CellOffset offset,
                                    size_t least = 0) const;  // in the header: asked for every cell
    std::optional<std::span<uint8_t>> cell_at(CellOffset offset, size_t least = 0);
    /// The size of any cell, negative where it is in use; one must begin there.
    int32_t size_field(uint32_t offset) const;

    /// Pages of the file (of 4096 bytes, by number, ascending) that may differ from the memory.
    std::vector<uint32_t> touched_pages() const;

    void set_time_of_first_bin(FileTime now);
    /// Takes a cell for `size` bytes, zeroed: the smallest free one that fits, the first among equals; else
    /// from a new bin.
    CellOffset allocate(size_t size);
    /// Gives a cell in use back, zeroed and merged with its free neighbours; throws std::bad_optional_access
    /// where there is none.
    void release(CellOffset offset);
    /// A cell of this many bytes would be the same size as the one at `offset`.
    bool same_cell_size(CellOffset offset, size_t size) const;
    /// Can so many bytes more be allocated, spread over up to `cells` cells?
    bool has_room_for(uint64_t size, uint64_t cells) const;

    /// Puts what walking the bins has found out behind the file in the memory, for another process, which
    /// makes the image from it again; none where nobody has put it there.
    void append_survey();
    static std::optional<Image> surveyed(std::shared_ptr<const Memory> memory);

  private:
    // In here offsets are numbers to reckon with.
    struct FreeCell {
        uint32_t size;
        uint32_t offset;
        bool operator==(const FreeCell&) const = default;
        bool operator<(const FreeCell& other) const {
            return size != other.size ? size < other.size : offset < other.offset;
        }
    };
    Image(std::shared_ptr<const Memory> memory, uint64_t size, uint64_t most);

    size_t base_size() const;
    void walk_bins();
    void fail(uint64_t file_offset, std::string text);
    std::span<uint8_t> touch(uint64_t file_offset, size_t size);
    void sort_free_cells();
    void note_free(uint32_t offset, uint32_t size);
    void forget_free(uint32_t offset);
    void set_size_field(uint32_t offset, int32_t size);
    void append_bin(size_t cell_size);

    std::shared_ptr<const Memory> memory_;
    std::optional<Mapping> mapping_;
    ByteView bytes_;
    CellMap cells_;
    std::vector<FreeCell> free_;  ///< not all of a hive that is nothing but holes
    bool free_is_sorted_ = false;
    std::vector<bool> touched_;  ///< by page
    size_t used_cells_ = 0;
    std::vector<CellOffset> unmerged_;
    std::optional<Problem> problem_;
};

inline int32_t Image::size_field(uint32_t offset) const {
    return static_cast<int32_t>(get32(bytes_, in_file(offset)));
}

inline std::optional<ByteView> Image::cell_at(CellOffset cell, size_t least) const {
    const uint32_t offset = number_of(cell);
    if (!cells_.begins_at(offset)) return std::nullopt;
    const int64_t field = size_field(offset);
    if (field > 0 || static_cast<size_t>(-field) - 4 < least) return std::nullopt;
    return bytes_.subspan(in_file(offset) + 4, static_cast<size_t>(-field) - 4);
}

/// The whole cell, its size field included, for so many bytes of content.
constexpr uint64_t cell_size_for(uint64_t size) { return (size + 4 + 7) & ~uint64_t{7}; }

}  // namespace regf
