#include "regf/image.h"

#include <algorithm>
#include <cassert>

#include "regf/bytes.h"
#include "regf/layout.h"

namespace regf {

namespace {

uint64_t in_file(uint32_t offset) { return base_block_size + uint64_t{offset}; }

}  // namespace

Image::Image(Bytes bytes) : bytes_(std::move(bytes)), base_size_(std::min(bytes_.size(), base_block_size)) {
    if (bytes_.size() < base_block_size + bin_unit) {
        fail(0, "the file is shorter than the smallest hive");
        return;
    }
    walk_bins();
}

CellOffset Image::root() const {
    return base_size_ < base_block_size ? nil : get_cell(bytes_, base_block::root);
}

uint32_t Image::minor_version() const {
    return base_size_ < base_block_size ? 0 : get32(bytes_, base_block::minor);
}

void Image::fail(uint64_t file_offset, std::string text) {
    if (!problem_) problem_ = Problem{file_offset, std::move(text)};
}

void Image::walk_bins() {
    const uint32_t told = get32(bytes_, base_block::bins_size);
    const uint64_t room =
        std::min<uint64_t>(bytes_.size() - base_block_size, largest_bins_size) / bin_unit * bin_unit;
    if (told == 0 || told % bin_unit != 0)
        fail(base_block::bins_size, "the size of the hive bins is no multiple of 4096");
    if (told > room) fail(in_file(static_cast<uint32_t>(room)), "the file ends before its last hive bin");
    const auto end = static_cast<uint32_t>(std::min<uint64_t>(told / bin_unit * bin_unit, room));
    bins_size_ = end;
    used_.assign(end / 8, false);
    for (uint32_t at = 0; at < end;) {
        const auto header = std::span<const uint8_t>(bytes_).subspan(in_file(at), bin_header_size);
        const uint32_t size = get32(header, bin::size);
        if (!has_signature(header, "hbin")) return fail(in_file(at), "no hive bin begins here");
        if (get32(header, bin::offset) != at)
            return fail(in_file(at), "a hive bin tells another place than its own");
        if (size == 0 || size % bin_unit != 0 || size > end - at)
            return fail(in_file(at), "a hive bin of impossible size");
        if (!walk_cells(at + bin_header_size, at + size)) return;
        at += size;
    }
}

bool Image::walk_cells(uint32_t at, uint32_t bin_end) {
    bool free_before = false;
    while (at < bin_end) {  // at least 8 bytes forward each turn
        const int64_t field = size_field(at);
        const int64_t size = field < 0 ? -field : field;
        if (size < 8 || size % 8 != 0 || size > bin_end - at) {
            fail(in_file(at), "a cell of impossible size");
            return false;
        }
        const bool free = field > 0;
        if (free && free_before) unmerged_.push_back(CellOffset{at});
        if (free) {
            note_free(at, static_cast<uint32_t>(size));
        } else {
            used_[at / 8] = true;
        }
        free_before = free;
        at += static_cast<uint32_t>(size);
    }
    return true;
}

int32_t Image::size_field(uint32_t offset) const {
    return static_cast<int32_t>(get32(bytes_, in_file(offset)));
}

void Image::set_size_field(uint32_t offset, int32_t size) {
    put32(bytes_, in_file(offset), static_cast<uint32_t>(size));
}

void Image::note_free(uint32_t offset, uint32_t size) {
    free_.emplace(offset, size);
    free_by_size_.emplace(size, offset);
    set_size_field(offset, static_cast<int32_t>(size));
}

Image::FreeCells::iterator Image::forget_free(FreeCells::iterator cell) {
    free_by_size_.erase({cell->second, cell->first});
    return free_.erase(cell);
}

std::optional<std::span<const uint8_t>> Image::cell_at(CellOffset cell, size_t least) const {
    const uint32_t offset = number_of(cell);
    if (offset % 8 != 0 || offset / 8 >= used_.size() || !used_[offset / 8]) return std::nullopt;
    const auto size = static_cast<size_t>(-int64_t{size_field(offset)}) - 4;
    if (size < least) return std::nullopt;
    return std::span<const uint8_t>(bytes_).subspan(in_file(offset) + 4, size);
}

std::optional<std::span<uint8_t>> Image::cell_at(CellOffset cell, size_t least) {
    const auto found = std::as_const(*this).cell_at(cell, least);
    if (!found) return std::nullopt;
    return std::span(bytes_).subspan(in_file(number_of(cell)) + 4, found->size());
}

std::vector<CellOffset> Image::used_cells() const {
    std::vector<CellOffset> out;
    for (size_t i = 0; i < used_.size(); ++i) {
        if (used_[i]) out.push_back(CellOffset{static_cast<uint32_t>(i * 8)});
    }
    return out;
}

bool Image::has_room_for(uint64_t size, uint64_t cells) const {
    const uint64_t worst = size + cells * (bin_unit + bin_header_size + 16);  // each in a bin of its own
    return worst <= largest_bins_size - bins_size_;
}

bool Image::same_cell_size(CellOffset cell, size_t size) const {
    const auto content = cell_at(cell);
    return content && content->size() + 4 == cell_size_for(size);
}

CellOffset Image::allocate(size_t size) {
    const auto wanted = static_cast<uint32_t>(cell_size_for(size));
    auto fit = free_by_size_.lower_bound({wanted, 0});
    if (fit == free_by_size_.end()) {
        append_bin(wanted);
        fit = free_by_size_.lower_bound({wanted, 0});
    }
    const auto [found_size, offset] = *fit;
    forget_free(free_.find(offset));
    if (found_size > wanted) note_free(offset + wanted, found_size - wanted);
    used_[offset / 8] = true;
    set_size_field(offset, -static_cast<int32_t>(wanted));
    std::fill_n(bytes_.begin() + static_cast<ptrdiff_t>(in_file(offset) + 4), wanted - 4, uint8_t{0});
    return CellOffset{offset};
}

/// A bin's header lies between its cells and those before: neighbours are always of one bin.
void Image::release(CellOffset cell) {
    const uint32_t offset = number_of(cell);
    uint32_t begin = offset;
    auto size = static_cast<uint32_t>(cell_at(cell).value().size()) + 4;
    std::fill_n(bytes_.begin() + static_cast<ptrdiff_t>(in_file(offset) + 4), size - 4, uint8_t{0});
    used_[offset / 8] = false;
    auto behind = free_.lower_bound(offset);
    while (behind != free_.end() && behind->first == begin + size) {
        size += behind->second;
        behind = forget_free(behind);
    }
    while (behind != free_.begin()) {
        const auto before = std::prev(behind);
        if (before->first + before->second != begin) break;
        begin = before->first;
        size += before->second;
        forget_free(before);
    }
    note_free(begin, size);
}

/// The file keeps its length while the new bin fits into its tail; what lay there has no meaning.
void Image::append_bin(size_t cell_size) {
    const uint64_t size = (cell_size + bin_header_size + bin_unit - 1) / bin_unit * bin_unit;
    assert(size <= largest_bins_size - bins_size_);
    const uint32_t at = bins_size_;
    const uint64_t end = in_file(at) + size;
    if (bytes_.size() < end) bytes_.resize(end);
    std::fill_n(bytes_.begin() + static_cast<ptrdiff_t>(in_file(at)), size, uint8_t{0});
    const auto header = std::span(bytes_).subspan(in_file(at), bin_header_size);
    std::copy_n("hbin", 4, header.begin());
    put32(header, bin::offset, at);
    put32(header, bin::size, static_cast<uint32_t>(size));
    bins_size_ += static_cast<uint32_t>(size);
    put32(bytes_, base_block::bins_size, bins_size_);
    used_.resize(bins_size_ / 8, false);
    note_free(at + bin_header_size, static_cast<uint32_t>(size - bin_header_size));
}

}  // namespace regf
