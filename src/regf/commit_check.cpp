#include "regf/commit_check.h"

#include <algorithm>

#include "regf/bins.h"
#include "regf/examine.h"
#include "regf/model.h"
#include "regf/records.h"

namespace regf {

namespace {

using Cells = std::vector<CellOffset>;  // sorted once they are complete

bool has(const Cells& cells, CellOffset cell) { return std::ranges::binary_search(cells, cell); }

std::string at(uint32_t offset) { return describe({Finding::Level::error, in_file(offset), ""}); }

/// The two are the same but for the fields that are given.
bool same_but_for(ByteView a, ByteView b, std::initializer_list<std::pair<size_t, size_t>> fields) {
    if (a.size() != b.size()) return false;
    size_t from = 0;
    for (const auto& [begin, size] : fields) {
        if (!std::ranges::equal(a.subspan(from, begin - from), b.subspan(from, begin - from))) return false;
        from = begin + size;
    }
    return std::ranges::equal(a.subspan(from), b.subspan(from));
}

class Check {
  public:
    explicit Check(const Commit& commit)
        : commit_(commit), old_(commit.opened), expected_(commit.opened), cells_(commit.opened.cells()) {}

    std::string run() {
        if (auto fault = check_base_block(); !fault.empty()) return fault;
        if (auto fault = walk_changed_bins(); !fault.empty()) return fault;
        // From here on nothing is taken from the editor: its bytes are read with the cells that they show.
        const Image fresh(commit_.edited.bytes(), cells_);
        new_ = &fresh;
        for (const auto step : {&Check::check_content, &Check::check_keys, &Check::check_kept_keys,
                                &Check::check_security, &Check::check_claims, &Check::check_changed_bins}) {
            if (auto fault = (this->*step)(); !fault.empty()) return fault;
        }
        return "";
    }

    int count_differences() const { return expected_.count_differences(); }

  private:
    std::string check_base_block() const;
    std::string walk_changed_bins();
    std::string check_content();
    std::string check_keys();
    std::string check_security();
    std::string check_ring(const Cells& gone);
    std::string check_claims();
    std::string check_kept_keys();
    std::string check_changed_bins();
    std::string check_cells_that_were(uint32_t bin, uint32_t end) const;
    std::string check_cells_that_are(uint32_t bin, uint32_t end) const;
    bool is_kept(CellOffset cell) const;
    void forget_below(CellOffset key);
    uint32_t expected_users(CellOffset security) const;
    uint32_t end_of_bin(uint32_t bin) const {
        return bin + get32(commit_.edited.bytes(), in_file(bin) + bin::size);
    }

    const Commit& commit_;
    const Image& old_;
    const Image* new_ = nullptr;
    Model expected_;
    CellMap cells_;                        ///< of the edited image, as its bytes show them
    std::vector<uint32_t> bins_;           ///< that are new or have changed
    std::vector<KeyInTree> keys_;          ///< of the edited image, that changes came near
    Cells old_cells_;                      ///< of keys that changes came near, and of those that are gone
    Cells new_cells_;                      ///< of keys_
    std::map<CellOffset, int64_t> users_;  ///< of security records: how many more keys name them
    Cells kept_keys_;                      ///< of keys_, those that were there before
    Cells ring_;                           ///< of security records, where one has left it
};

// --- bytes

std::string Check::check_base_block() const {
    using namespace base_block;
    const Image& edited = commit_.edited;
    const bool same = same_but_for(old_.base_block(), edited.base_block(),
                                   {{primary_sequence, 16}, {type, 4}, {bins_size, 4}, {checksum, 4}});
    if (!same || edited.bins_size() < old_.bins_size()) return "the base block";
    const auto error = first_error_in_base_block(edited);
    return error ? describe(*error) : "";
}

std::string Check::walk_changed_bins() {
    const ByteView bytes = commit_.edited.bytes();
    const uint32_t end = get32(bytes, base_block::bins_size);
    if (end % bin_unit != 0 || end > largest_bins_size || in_file(end) > bytes.size())
        return "the size of the bins";
    for (const uint32_t page : commit_.changed_pages) {
        const uint64_t offset = uint64_t{page} * bin_unit;
        if (offset < base_block_size || offset >= in_file(old_.bins_size())) continue;
        const uint32_t bin = old_.cells().bin_of(static_cast<uint32_t>(offset - base_block_size));
        if (bins_.empty() || bins_.back() != bin) bins_.push_back(bin);
    }
    cells_.resize(end);
    const auto walk = [&](uint32_t bin) {
        return walk_bin(bytes, bin, end, [&](uint32_t cell, int32_t) { cells_.set(cell); });
    };
    for (const uint32_t bin : bins_) {
        const auto header = [&](ByteView file) { return file.subspan(in_file(bin), bin_header_size); };
        const bool same = bin == 0 ? same_but_for(header(old_.bytes()), header(bytes), {{bin::timestamp, 8}})
                                   : std::ranges::equal(header(old_.bytes()), header(bytes));
        if (!same) return at(bin) + "the header of a bin";
        cells_.clear(bin, end_of_bin(bin));
        if (const auto problem = walk(bin)) return at(bin) + problem->text;
    }
    for (uint32_t bin = old_.bins_size(); bin < end; bin = end_of_bin(bin)) {
        if (const auto problem = walk(bin)) return at(bin) + problem->text;
        cells_.set_bin(bin);
        bins_.push_back(bin);
    }
    return "";
}

// --- keys

/// The edited image holds what the opened one and the changes make together.
std::string Check::check_content() {
    for (const Change& change : commit_.changes) {
        if (!expected_.apply(change)) return "a change that does not fit, at " + printable(change.path);
    }
    return expected_.first_difference(*new_, [&](const Model::Key& key, CellOffset cell, CellOffset parent) {
        keys_.push_back({cell, parent});
        if (key.cell == nil) ++users_[get_cell(*key_record(*new_, cell), nk::security)];
        if (key.cell != nil) {
            std::ranges::copy(cells_of(old_, key.cell), std::back_inserter(old_cells_));
            kept_keys_.push_back(cell);
        }
        for (CellOffset gone : key.gone)
            forget_below(gone);
    });
}

void Check::forget_below(CellOffset key) {
    std::ranges::copy(cells_of(old_, key), std::back_inserter(old_cells_));
    const CellView record = *key_record(old_, key);
    --users_[get_cell(record, nk::security)];
    for (CellOffset child : subkey_offsets(old_, record))
        forget_below(child);
}

std::string Check::check_keys() {
    const Examination found = examine_keys(*new_, keys_, new_cells_);
    const Finding* const error = found.first_error();
    return error ? describe(*error) : "";
}

/// What no change can have touched in the record of a key.
std::string Check::check_kept_keys() {
    using namespace nk;
    for (const CellOffset key : kept_keys_) {
        if (!same_but_for(*old_.cell_at(key), *new_->cell_at(key),
                          {{last_written, 8},
                           {subkey_count, 4},
                           {subkey_list, 4},
                           {value_count, 8},
                           {largest_subkey_name, 2},
                           {largest_class_name, 12}}))
            return at(number_of(key)) + "the record of a key";
    }
    return "";
}

// --- security records

uint32_t Check::expected_users(CellOffset security) const {
    const auto corrected = commit_.corrected_counts.find(security);
    const auto more = users_.find(security);
    const int64_t before = corrected != commit_.corrected_counts.end()
                               ? corrected->second
                               : get32(old_.cell_at(security).value(), sk::reference_count);
    return static_cast<uint32_t>(before + (more == users_.end() ? 0 : more->second));
}

/// Those that lost their last key are gone; another cell may begin where one lay.
std::string Check::check_security() {
    Cells gone;
    for (const auto& [security, more] : users_) {
        if (!security_descriptor(old_, security)) return at(number_of(security)) + "a new security record";
        const uint32_t users = expected_users(security);
        if (users == 0) {
            gone.push_back(security);
            continue;
        }
        const auto now = new_->cell_at(security, sk::descriptor);
        if (!now || get32(*now, sk::reference_count) != users)
            return at(number_of(security)) + "a security record miscounts its keys";
    }
    std::ranges::copy(gone, std::back_inserter(old_cells_));
    std::ranges::sort(old_cells_);
    std::ranges::sort(new_cells_);
    return gone.empty() ? "" : check_ring(gone);
}

namespace {

/// Empty where it is broken.
Cells ring_of(const Image& image) {
    Cells cells;
    const CellOffset first = get_cell(*key_record(image, image.root()), nk::security);
    for (CellOffset cell = first; cells.empty() || cell != first;) {
        const auto record = image.cell_at(cell, sk::descriptor);
        if (!record || cells.size() > image.bins_size() / sk::descriptor) return {};
        const CellOffset next = get_cell(*record, sk::next);
        const auto after = image.cell_at(next, sk::descriptor);
        if (!after || get_cell(*after, sk::previous) != cell) return {};
        cells.push_back(cell);
        cell = next;
    }
    std::ranges::sort(cells);
    return cells;
}

}  // namespace

std::string Check::check_ring(const Cells& gone) {
    ring_ = ring_of(old_);
    std::erase_if(ring_, [&](CellOffset cell) { return has(gone, cell); });
    return ring_.empty() || ring_of(*new_) != ring_ ? "the ring of security records" : "";
}

// --- cells

/// No cell belongs to two, and none was anybody else's before.
std::string Check::check_claims() {
    if (const auto twice = std::ranges::adjacent_find(new_cells_); twice != new_cells_.end())
        return at(number_of(*twice)) + "a cell that belongs to two";
    for (const CellOffset cell : new_cells_) {
        const uint32_t begin = number_of(cell);
        if (begin >= old_.bins_size()) continue;
        const auto end = std::min(old_.bins_size(), begin + static_cast<uint32_t>(-new_->size_field(begin)));
        uint32_t before = old_.cells().last_up_to(begin).value_or(end);
        for (; before < end; before = old_.cells().first_from(before + 8, end)) {
            if (old_.size_field(before) < 0 && !has(old_cells_, CellOffset{before}))
                return at(before) + "a cell of another key";
        }
    }
    for (const CellOffset cell : old_cells_) {
        if (new_->cell_at(cell) && !has(new_cells_, cell))
            return at(number_of(cell)) + "a cell that nothing leads to";
    }
    return "";
}

std::string Check::check_changed_bins() {
    for (const uint32_t bin : bins_) {
        const uint32_t end = end_of_bin(bin);
        if (bin < old_.bins_size()) {
            if (auto fault = check_cells_that_were(bin, end); !fault.empty()) return fault;
        }
        if (auto fault = check_cells_that_are(bin, end); !fault.empty()) return fault;
    }
    return "";
}

/// What was in use and not within reach of the changes is the same.
std::string Check::check_cells_that_were(uint32_t bin, uint32_t end) const {
    for (uint32_t cell = old_.cells().first_from(bin, end); cell < end;
         cell = old_.cells().first_from(cell + 8, end)) {
        if (old_.size_field(cell) < 0 && !has(old_cells_, CellOffset{cell}) && !is_kept(CellOffset{cell}))
            return at(cell) + "a cell that nobody asked to change";
    }
    return "";
}

bool Check::is_kept(CellOffset cell) const {
    const CellView before = old_.cell_at(cell).value();
    const auto now = new_->cell_at(cell);
    if (!now || now->size() != before.size()) return false;
    if (!security_descriptor(old_, cell)) return std::ranges::equal(before, *now);
    const size_t links = has(ring_, cell) ? sk::next : sk::reference_count;
    return same_but_for(before, *now, {{links, sk::reference_count + 4 - links}}) &&
           get32(*now, sk::reference_count) == expected_users(cell);
}

/// What is in use now was so before, or belongs to a key within reach.
std::string Check::check_cells_that_are(uint32_t bin, uint32_t end) const {
    for (uint32_t cell = cells_.first_from(bin, end); cell < end; cell = cells_.first_from(cell + 8, end)) {
        if (new_->size_field(cell) > 0 || has(new_cells_, CellOffset{cell})) continue;
        if (!old_.cell_at(CellOffset{cell}) || has(old_cells_, CellOffset{cell}))
            return at(cell) + "a cell that nothing leads to";
    }
    return "";
}

}  // namespace

Verdict judge(const Commit& commit) try {
    Check check(commit);
    std::string fault = check.run();
    const int differences = fault.empty() ? check.count_differences() : 0;
    return {std::move(fault), differences};
} catch (const std::bad_optional_access&) {
    return {"a record that cannot be read", 0};
}

}  // namespace regf
