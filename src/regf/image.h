#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "regf/hive.h"

namespace regf {

/// The bytes of a hive file, taken apart into bins and cells. The one way to the content of a cell is
/// cell_at(): it answers only for offsets at which a cell in use begins, so that no number from the file is
/// ever followed anywhere else.
class Image {
  public:
    /// Walks the bins. What cannot be walked is told by problem(); the cells before it can be read.
    explicit Image(Bytes bytes);

    struct Problem {
        uint64_t file_offset;
        std::string text;
    };
    const std::optional<Problem>& problem() const { return problem_; }
    /// Free cells side by side: Windows merges them.
    const std::vector<CellOffset>& unmerged_cells() const { return unmerged_; }

    const Bytes& bytes() const { return bytes_; }
    std::span<uint8_t> base_block() { return std::span(bytes_).first(base_size_); }
    std::span<const uint8_t> base_block() const { return std::span(bytes_).first(base_size_); }
    uint32_t bins_size() const { return bins_size_; }
    CellOffset root() const;
    uint32_t minor_version() const;

    /// The content of the cell in use at `offset`, without its size field; none where no such cell begins
    /// there, or it has less than `least` bytes.
    std::optional<std::span<const uint8_t>> cell_at(CellOffset offset, size_t least = 0) const;
    std::optional<std::span<uint8_t>> cell_at(CellOffset offset, size_t least = 0);
    /// Every cell in use, in the order of the file.
    std::vector<CellOffset> used_cells() const;

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

  private:
    // In here offsets are numbers to reckon with.
    using FreeCells = std::map<uint32_t, uint32_t>;  // offset, size

    void walk_bins();
    bool walk_cells(uint32_t bin_start, uint32_t bin_end);
    void fail(uint64_t file_offset, std::string text);
    void note_free(uint32_t offset, uint32_t size);
    FreeCells::iterator forget_free(FreeCells::iterator cell);
    int32_t size_field(uint32_t offset) const;
    void set_size_field(uint32_t offset, int32_t size);
    void append_bin(size_t cell_size);

    Bytes bytes_;
    size_t base_size_ = 0;
    uint32_t bins_size_ = 0;  // no more than the file has
    std::vector<bool> used_;  // a cell in use begins at offset 8 * index
    FreeCells free_;
    std::set<std::pair<uint32_t, uint32_t>> free_by_size_;  // size, offset
    std::vector<CellOffset> unmerged_;
    std::optional<Problem> problem_;
};

/// The whole cell, its size field included, for so many bytes of content.
constexpr uint64_t cell_size_for(uint64_t size) { return (size + 4 + 7) & ~uint64_t{7}; }

}  // namespace regf
