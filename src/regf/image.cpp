#include "regf/image.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstring>

#include "regf/bytes.h"
#include "regf/layout.h"

namespace regf {

// --- cells

void CellMap::resize(uint32_t bins_size) {
    bins_size_ = bins_size;
    cells_.resize(bins_size / 512);
    bins_.resize(bins_size / bin_unit);
}

void CellMap::clear(uint32_t from, uint32_t to) {
    for (uint32_t at = first_from(from, to); at < to; at = first_from(at, to))
        clear(at);
}

uint32_t CellMap::first_from(uint32_t offset, uint32_t end) const {
    if (offset >= end) return end;
    size_t word = offset / 512;
    uint64_t left = cells_[word] >> offset / 8 % 64 << offset / 8 % 64;
    while (left == 0) {
        if (++word >= (end + 511) / 512) return end;
        left = cells_[word];
    }
    return std::min(end, static_cast<uint32_t>(word * 512 + std::countr_zero(left) * 8u));
}

std::optional<uint32_t> CellMap::last_up_to(uint32_t offset) const {
    size_t word = offset / 512;
    const auto beyond = 63 - offset / 8 % 64;
    uint64_t left = cells_[word] << beyond >> beyond;
    while (left == 0) {
        if (word-- == 0) return std::nullopt;
        left = cells_[word];
    }
    return static_cast<uint32_t>(word * 512 + (63u - std::countl_zero(left)) * 8u);
}

uint32_t CellMap::bin_of(uint32_t offset) const {
    size_t bin = offset / bin_unit;
    while (!bins_[bin])
        --bin;
    return static_cast<uint32_t>(bin * bin_unit);
}

std::vector<uint64_t> CellMap::words() const {
    std::vector<uint64_t> words = cells_;
    words.resize(count_words(bins_size_));
    for (size_t bin = 0; bin < bins_.size(); ++bin)
        words[cells_.size() + bin / 64] |= uint64_t{bins_[bin]} << bin % 64;
    return words;
}

CellMap CellMap::of(uint32_t bins_size, std::span<const uint64_t> words) {
    CellMap map;
    map.resize(bins_size);
    std::ranges::copy(words.first(map.cells_.size()), map.cells_.begin());
    for (size_t bin = 0; bin < map.bins_.size(); ++bin)
        map.bins_[bin] = (words[map.cells_.size() + bin / 64] >> bin % 64 & 1) != 0;
    return map;
}

// --- taking apart

namespace {

/// Holes are noted up to this number: a hive with more was made to exhaust the memory.
constexpr size_t most_free_cells = 1 << 20;
constexpr size_t most_unmerged_told = 100;

}  // namespace

Image::Image(std::shared_ptr<const Memory> memory, uint64_t size, uint64_t most)
    : memory_(std::move(memory)), mapping_(std::in_place, *memory_, size, most), bytes_(mapping_->bytes()) {}

Image::Image(const std::shared_ptr<const Memory>& memory)
    : Image(memory, memory->size(), in_file(largest_bins_size)) {
    if (bytes().size() < base_block_size + bin_unit) {
        fail(0, "the file is shorter than the smallest hive");
        return;
    }
    walk_bins();
}

Image::Image(std::shared_ptr<const Memory> memory, CellMap cells)
    : Image(std::move(memory), in_file(cells.bins_size()), 0) {
    cells_ = std::move(cells);
}

size_t Image::base_size() const { return std::min(bytes().size(), base_block_size); }

CellOffset Image::root() const {
    return base_size() < base_block_size ? nil : get_cell(bytes(), base_block::root);
}

uint32_t Image::minor_version() const {
    return base_size() < base_block_size ? 0 : get32(bytes(), base_block::minor);
}

void Image::fail(uint64_t file_offset, std::string text) {
    if (!problem_) problem_ = Problem{file_offset, std::move(text)};
}

void Image::walk_bins() {
    const uint32_t told = get32(bytes(), base_block::bins_size);
    const uint64_t room =
        std::min<uint64_t>(bytes().size() - base_block_size, largest_bins_size) / bin_unit * bin_unit;
    if (told == 0 || told % bin_unit != 0)
        fail(base_block::bins_size, "the size of the hive bins is no multiple of 4096");
    if (told > room) fail(in_file(static_cast<uint32_t>(room)), "the file ends before its last hive bin");
    const auto end = static_cast<uint32_t>(std::min<uint64_t>(told / bin_unit * bin_unit, room));
    cells_.resize(end);
    for (uint32_t bin = 0; bin < end; bin += get32(bytes(), in_file(bin) + bin::size)) {
        bool free_before = false;
        auto problem = walk_bin(bytes(), bin, end, [&](uint32_t at, int32_t size) {
            cells_.set(at);
            const bool free = size > 0;
            if (!free) ++used_cells_;
            if (free && free_.size() < most_free_cells) free_.push_back({static_cast<uint32_t>(size), at});
            if (free && free_before && unmerged_.size() < most_unmerged_told)
                unmerged_.push_back(CellOffset{at});
            free_before = free;
        });
        if (problem) return fail(problem->file_offset, std::move(problem->text));
        cells_.set_bin(bin);
    }
}

// --- from process to process

namespace {

/// The last bytes of a memory with a survey: before them the cell map, before that the free cells.
struct SurveyEnd {
    uint64_t file_size;
    uint64_t bins_size;
    uint64_t free_cells;
    uint64_t signature;
};
constexpr uint64_t survey_signature = 0x3159455652555348;

template <class T>
std::span<const uint8_t> raw(const std::vector<T>& items) {
    return {reinterpret_cast<const uint8_t*>(items.data()), items.size() * sizeof(T)};
}
template <class T>
std::span<uint8_t> raw(std::vector<T>& items) {
    return {reinterpret_cast<uint8_t*>(items.data()), items.size() * sizeof(T)};
}

}  // namespace

void Image::append_survey() {
    sort_free_cells();
    memory_->append(raw(free_));
    memory_->append(raw(cells_.words()));
    const std::vector<SurveyEnd> end{{bytes().size(), bins_size(), free_.size(), survey_signature}};
    memory_->append(raw(end));
}

std::optional<Image> Image::surveyed(std::shared_ptr<const Memory> memory) {
    const uint64_t size = memory->size();
    std::vector<SurveyEnd> read(1);
    if (size < sizeof(SurveyEnd) || !memory->read(size - sizeof(SurveyEnd), raw(read))) return std::nullopt;
    const SurveyEnd& end = read.front();
    if (end.signature != survey_signature || end.bins_size > largest_bins_size ||
        end.free_cells > most_free_cells)
        return std::nullopt;
    const auto bins_size = static_cast<uint32_t>(end.bins_size);
    std::vector<FreeCell> free(end.free_cells);
    std::vector<uint64_t> words(CellMap::count_words(bins_size));
    const uint64_t words_at = end.file_size + raw(free).size();
    if (end.file_size < in_file(bins_size) || words_at + raw(words).size() + sizeof(SurveyEnd) != size ||
        !memory->read(end.file_size, raw(free)) || !memory->read(words_at, raw(words)))
        return std::nullopt;
    Image image(std::move(memory), end.file_size, in_file(largest_bins_size));
    image.cells_ = CellMap::of(bins_size, words);
    image.free_ = std::move(free);
    image.free_is_sorted_ = true;
    return image;
}

// --- reading

bool Image::same_cell_size(CellOffset cell, size_t size) const {
    const auto content = cell_at(cell);
    return content && content->size() + 4 == cell_size_for(size);
}

std::vector<uint32_t> Image::touched_pages() const {
    std::vector<uint32_t> pages;
    for (size_t page = 0; page < touched_.size(); ++page) {
        if (touched_[page]) pages.push_back(static_cast<uint32_t>(page));
    }
    return pages;
}

// --- changing

/// Every write goes through here.
std::span<uint8_t> Image::touch(uint64_t file_offset, size_t size) {
    const auto place = mapping_->bytes().subspan(file_offset, size);
    touched_.resize((bytes().size() + bin_unit - 1) / bin_unit);
    for (uint64_t page = file_offset / bin_unit; page * bin_unit < file_offset + size; ++page)
        touched_[page] = true;
    return place;
}

std::optional<std::span<uint8_t>> Image::cell_at(CellOffset cell, size_t least) {
    const auto found = std::as_const(*this).cell_at(cell, least);
    if (!found) return std::nullopt;
    return touch(in_file(number_of(cell)) + 4, found->size());
}

/// Later systems leave it at 0.
void Image::set_time_of_first_bin(FileTime now) {
    const auto time = touch(in_file(bin::timestamp), 8);
    if (get64(time, 0) != 0) put64(time, 0, now);
}

void Image::set_size_field(uint32_t offset, int32_t size) {
    put32(touch(in_file(offset), 4), 0, static_cast<uint32_t>(size));
}

void Image::sort_free_cells() {
    if (!free_is_sorted_) std::sort(free_.begin(), free_.end());
    free_is_sorted_ = true;
}

void Image::note_free(uint32_t offset, uint32_t size) {
    const FreeCell cell{size, offset};
    sort_free_cells();
    free_.insert(std::lower_bound(free_.begin(), free_.end(), cell), cell);
    cells_.set(offset);
    set_size_field(offset, static_cast<int32_t>(size));
}

/// It need not have been noted.
void Image::forget_free(uint32_t offset) {
    const FreeCell cell{static_cast<uint32_t>(size_field(offset)), offset};
    sort_free_cells();
    const auto at = std::lower_bound(free_.begin(), free_.end(), cell);
    if (at != free_.end() && *at == cell) free_.erase(at);
    cells_.clear(offset);
}

bool Image::has_room_for(uint64_t size, uint64_t cells) const {
    const uint64_t worst = size + cells * (bin_unit + bin_header_size + 16);  // each in a bin of its own
    return worst <= largest_bins_size - bins_size();
}

CellOffset Image::allocate(size_t size) {
    const auto wanted = static_cast<uint32_t>(cell_size_for(size));
    sort_free_cells();
    const auto fitting = [&] { return std::lower_bound(free_.begin(), free_.end(), FreeCell{wanted, 0}); };
    if (fitting() == free_.end()) append_bin(wanted);
    const FreeCell found = *fitting();
    forget_free(found.offset);
    if (found.size > wanted) note_free(found.offset + wanted, found.size - wanted);
    cells_.set(found.offset);
    set_size_field(found.offset, -static_cast<int32_t>(wanted));
    std::ranges::fill(touch(in_file(found.offset) + 4, wanted - 4), uint8_t{0});
    return CellOffset{found.offset};
}

/// A bin's header lies between its cells and those before: neighbours are always of one bin.
void Image::release(CellOffset cell) {
    uint32_t begin = number_of(cell);
    const std::span<uint8_t> content = cell_at(cell).value();
    uint32_t end = begin + static_cast<uint32_t>(content.size()) + 4;
    std::ranges::fill(content, uint8_t{0});
    cells_.clear(begin);
    while (cells_.begins_at(end) && size_field(end) > 0) {
        const auto size = static_cast<uint32_t>(size_field(end));
        forget_free(end);
        end += size;
    }
    for (;;) {
        const auto before = cells_.last_up_to(begin);
        const int32_t size = before ? size_field(*before) : 0;
        if (size <= 0 || *before + static_cast<uint32_t>(size) != begin) break;
        forget_free(*before);
        begin = *before;
    }
    note_free(begin, end - begin);
}

/// The file keeps its length while the new bin fits into its tail; what lay there has no meaning.
void Image::append_bin(size_t cell_size) {
    const uint64_t size = (cell_size + bin_header_size + bin_unit - 1) / bin_unit * bin_unit;
    assert(size <= largest_bins_size - bins_size());
    const uint32_t at = bins_size();
    if (bytes().size() < in_file(at) + size) mapping_->grow(in_file(at) + size);
    bytes_ = mapping_->bytes();
    const auto bin = touch(in_file(at), size);
    std::ranges::fill(bin, uint8_t{0});
    std::copy_n("hbin", 4, bin.begin());
    put32(bin, bin::offset, at);
    put32(bin, bin::size, static_cast<uint32_t>(size));
    cells_.resize(at + static_cast<uint32_t>(size));
    cells_.set_bin(at);
    put32(base_block(), base_block::bins_size, bins_size());
    note_free(at + bin_header_size, static_cast<uint32_t>(size - bin_header_size));
}

}  // namespace regf
