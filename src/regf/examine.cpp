#include "regf/examine.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "regf/records.h"

namespace regf {

namespace {

using Level = Finding::Level;

class Examiner {
  public:
    Examiner(const Image& image, size_t limit)
        : image_(image), limit_(limit), claimed_((image.bins_size() + 511) / 512) {}

    Examination run() {
        check_base_block();
        if (image_.problem()) error(image_.problem()->file_offset, image_.problem()->text);
        for (CellOffset at : image_.unmerged_cells())
            warn(in_file(number_of(at)), "free cells side by side");
        walk_keys();
        if (out_.walkable) {
            check_security_ring();
            check_orphans();
        }
        return std::move(out_);
    }

    Examination run_for(const std::vector<KeyInTree>& keys, std::vector<CellOffset>& cells) {
        cells_ = &cells;
        for (const auto& [key, parent] : keys) {
            visit(key, parent);
            frames_.clear();
        }
        return std::move(out_);
    }

    Examination run_for_base_block() {
        check_base_block();
        return std::move(out_);
    }

  private:
    /// A key on the way down from the root, and which of its subkeys comes next.
    struct Frame {
        CellOffset key;
        CellView index;  ///< its index of leaves; empty where it has one leaf alone
        size_t next_leaf;
        Leaf leaf;
        size_t next_key;
    };

    static uint64_t in_file_of(CellOffset offset) { return in_file(number_of(offset)); }

    void add(Level level, uint64_t at, std::string text) {
        if (out_.findings.size() < limit_ || (level == Level::error && !out_.first_error())) {
            out_.findings.push_back({level, at, std::move(text)});
        }
    }
    void error(uint64_t at, std::string text) { add(Level::error, at, std::move(text)); }
    void warn(uint64_t at, std::string text) { add(Level::warning, at, std::move(text)); }
    bool is_full() const { return out_.findings.size() >= limit_; }
    void key_error(const std::string& text) {
        if (!is_full() || !out_.first_error()) error(in_file_of(current_), text + " (key " + path() + ")");
    }
    void key_warning(const std::string& text) {
        if (!is_full()) warn(in_file_of(current_), text + " (key " + path() + ")");
    }

    /// Of the key at hand.
    std::string path() const {
        std::string path;
        const auto add = [&](CellOffset key) {
            const auto record = key_record(image_, key);
            path += "\\" + (record ? printable(key_name(*record).text()) : std::string("?"));
        };
        for (size_t level = 1; level < frames_.size(); ++level)
            add(frames_[level].key);
        if (!frames_.empty() && frames_.back().key != current_) add(current_);
        return path.empty() ? "\\" : path;
    }

    bool is_claimed(CellOffset cell) const {
        return (claimed_[number_of(cell) / 512] >> number_of(cell) / 8 % 64 & 1) != 0;
    }
    /// For whatever belongs to a key. A cell that is claimed twice ends the walk: what shares cells can take
    /// for ever to read, and fill any memory.
    void claim(CellOffset cell, const char* what) {
        if (is_claimed(cell)) {
            out_.walkable = false;
            key_error(std::string(what) + " is reached twice");
            return;
        }
        claimed_[number_of(cell) / 512] |= uint64_t{1} << number_of(cell) / 8 % 64;
        ++claims_;
        if (cells_) cells_->push_back(cell);
    }

    void check_base_block();
    void walk_keys();
    std::optional<CellOffset> next_subkey();
    void visit(CellOffset offset, CellOffset parent);
    void check_key(CellOffset parent, CellView key);
    void check_security(CellView key);
    void check_class(CellView key);
    void check_values(CellView key);
    void check_value_names();
    void check_value_data(CellView value, uint32_t& largest_data);
    void check_subkeys(CellView key);
    void check_leaf(const Leaf& leaf);
    void check_security_ring();
    void check_orphans();

    const Image& image_;
    size_t limit_;
    Examination out_;
    std::vector<uint64_t> claimed_;  ///< a bit for each 8 bytes
    size_t claims_ = 0;
    std::vector<CellOffset>* cells_ = nullptr;
    std::vector<Frame> frames_;
    CellOffset current_ = nil;
    CellOffset last_security_ = nil;  ///< of many keys in a row
    uint32_t* last_users_ = nullptr;
    SubkeyLists lists_;  // the key at hand's; kept, as making them anew takes its time
    std::vector<NameView> names_;
};

void Examiner::check_base_block() {
    const auto block = image_.base_block();
    if (block.size() < base_block_size) return;  // told with the bins
    if (!has_signature(block, "regf")) error(0, "no hive signature");
    if (get32(block, base_block::checksum) != base_block_checksum(block)) {
        error(base_block::checksum, "the checksum of the base block is wrong");
    }
    if (get32(block, base_block::primary_sequence) != get32(block, base_block::secondary_sequence)) {
        error(base_block::primary_sequence, "a write was not finished");
    }
    if (get32(block, base_block::major) != 1) error(base_block::major, "unknown major version");
    const uint32_t minor = get32(block, base_block::minor);
    if (minor < 1 || minor > 6) error(base_block::minor, "unknown minor version " + std::to_string(minor));
    if (get32(block, base_block::type) != 0) error(base_block::type, "not the file type of a hive");
    if (get32(block, base_block::format) != 1) error(base_block::format, "unknown file format");
    const uint32_t clustering = get32(block, base_block::clustering);
    if (clustering < 1 || clustering > 8) error(base_block::clustering, "impossible clustering factor");
}

void Examiner::walk_keys() {
    const CellOffset root = image_.root();
    if (!key_record(image_, root)) {
        out_.walkable = false;
        return error(base_block::root, "the root key cannot be read");
    }
    visit(root, nil);
    while (!frames_.empty() && out_.walkable) {
        if (const auto subkey = next_subkey()) {
            visit(*subkey, frames_.back().key);
        } else {
            frames_.pop_back();
        }
    }
}

std::optional<CellOffset> Examiner::next_subkey() {
    Frame& frame = frames_.back();
    if (frame.next_key < frame.leaf.count) return frame.leaf.key(frame.next_key++);
    if (frame.index.empty() || frame.next_leaf >= get16(frame.index, 2)) return std::nullopt;
    const CellOffset next = get_cell(frame.index, 4 + 4 * frame.next_leaf++);
    const auto leaf = read_leaf(image_, next, frame.leaf.index_offset);
    if (!leaf) return std::nullopt;
    frame.leaf = *leaf;
    frame.next_key = 1;
    return leaf->key(0);
}

void Examiner::visit(CellOffset offset, CellOffset parent) {
    const auto key = key_record(image_, offset);
    if (!key) return;  // told with its parent
    current_ = offset;
    claim(offset, "a subkey");
    if (frames_.size() >= deepest_level) {
        out_.walkable = false;
        key_error("more than 512 levels");
    }
    if (!out_.walkable) return;
    check_key(parent, *key);
    if (lists_.leaves.empty()) return;
    const CellOffset index = lists_.index();
    frames_.push_back(
        {offset, index == nil ? CellView() : *image_.cell_at(index), 1, lists_.leaves.front(), 0});
}

void Examiner::check_key(CellOffset parent, CellView key) {
    const uint16_t flags = get16(key, nk::flags);
    const bool is_root = parent == nil;
    if (!(flags & nk::compressed_name) && get16(key, nk::name_length) % 2 != 0) {
        key_error("a name of odd length");
    }
    const NameView name = key_name(key);
    for (size_t i = 0; !is_root && i < name.size(); ++i) {
        if (name[i] == u'\\') key_error("a backslash in a name");
    }
    if (!is_root && get_cell(key, nk::parent) != parent) key_error("a key tells another parent");
    if (bool(flags & nk::is_root) != is_root) warn(in_file_of(current_), "the root flag is on the wrong key");
    if (flags & (nk::is_volatile | nk::is_mount_point)) key_error("a key that may not lie on disk");
    check_security(key);
    check_class(key);
    if (!(flags & nk::predefined_handle)) check_values(key);
    check_subkeys(key);
}

void Examiner::check_security(CellView key) {
    const CellOffset security = get_cell(key, nk::security);
    if (!last_users_ || security != last_security_) {
        const auto [at, is_new] = out_.security_users.try_emplace(security, 0);
        if (is_new && !security_descriptor(image_, security)) {
            out_.security_users.erase(at);
            return key_error("a key without a security descriptor");
        }
        last_security_ = security;
        last_users_ = &at->second;
    }
    ++*last_users_;
}

void Examiner::check_class(CellView key) {
    const size_t length = get16(key, nk::class_length);
    if (length == 0) return;
    const CellOffset cell = get_cell(key, nk::class_name);
    if (!image_.cell_at(cell, length)) return key_error("the class name cannot be read");
    claim(cell, "the cell of the class name");
}

void Examiner::check_values(CellView key) {
    const uint32_t count = get32(key, nk::value_count);
    if (count == 0) return;
    const ValueList values = value_list(image_, key);
    if (values.offset == nil) return key_error("the value list cannot be read");
    if (count > values.count) key_error("the value list is shorter than its count");
    claim(values.offset, "the value list");
    names_.clear();
    uint32_t largest_name = 0;
    uint32_t largest_data = 0;
    for (size_t i = 0; i < values.count; ++i) {
        const auto value = value_record(image_, values.value(i));
        if (!value) {
            key_error("a value cannot be read");
            continue;
        }
        claim(values.value(i), "a value");
        if (!out_.walkable) return;
        names_.push_back(value_name(*value));
        largest_name = std::max(largest_name, static_cast<uint32_t>(names_.back().size() * 2));
        check_value_data(*value, largest_data);
    }
    check_value_names();
    if (get32(key, nk::largest_value_name) < largest_name ||
        get32(key, nk::largest_value_data) < largest_data) {
        key_warning("a value is larger than its key tells");
    }
}

void Examiner::check_value_names() {
    if (names_.size() < 2) return;
    const auto compare = [](const NameView& a, const NameView& b) { return compare_names(a, b); };
    std::sort(names_.begin(), names_.end(), [&](auto& a, auto& b) { return compare(a, b) < 0; });
    const auto same = [&](auto& a, auto& b) { return compare(a, b) == 0; };
    if (std::adjacent_find(names_.begin(), names_.end(), same) != names_.end())
        key_warning("two values of the same name");
}

void Examiner::check_value_data(CellView value, uint32_t& largest_data) {
    const auto place = value_data_place(image_, value);
    if (!place)
        return key_error("the data of the value " + printable(value_name(value).text()) + " cannot be read");
    largest_data = std::max(largest_data, place->size);
    if (place->resident || place->size == 0) return;
    claim(place->cell, "a cell with data");
    if (place->segment_list == nil) return;
    claim(place->segment_list, "a list of segments");
    for (size_t i = 0; i < place->count_segments(); ++i)
        claim(place->segment(i), "a segment of data");
}

void Examiner::check_subkeys(CellView key) {
    read_subkey_lists(image_, key, lists_);
    const uint32_t count = get32(key, nk::subkey_count);
    if (count == 0) return;
    if (!lists_.whole) key_error("the list of subkeys is damaged");
    if (lists_.index() != nil) claim(lists_.index(), "an index of subkeys");
    for (const Leaf& leaf : lists_.leaves)
        claim(leaf.offset, "a list of subkeys");
    if (!out_.walkable) return;
    size_t found = 0;
    uint32_t largest_name = 0;
    uint32_t largest_class = 0;
    std::optional<NameView> before;
    for (const Leaf& leaf : lists_.leaves) {
        check_leaf(leaf);
        found += leaf.count;
        for (size_t i = 0; i < leaf.count; ++i) {
            const auto record = key_record(image_, leaf.key(i));
            if (!record) {
                key_error("a subkey cannot be read");
                continue;
            }
            const NameView name = key_name(*record);
            if (before && compare_names(*before, name) >= 0) key_error("subkeys out of order");
            largest_name = std::max(largest_name, static_cast<uint32_t>(name.size() * 2));
            largest_class = std::max<uint32_t>(largest_class, get16(*record, nk::class_length));
            before = name;
        }
    }
    if (lists_.whole && found != count)
        key_error("the list of subkeys has another length than the key tells");
    if (get16(key, nk::largest_subkey_name) < largest_name ||
        get32(key, nk::largest_class_name) < largest_class) {
        key_warning("a subkey's name or class is longer than its key tells");
    }
}

void Examiner::check_leaf(const Leaf& leaf) {
    const bool hashes = has_signature(leaf.list, "lh");
    const bool hints = has_signature(leaf.list, "lf");
    if (hashes && image_.minor_version() < 5) key_error("a list of a later version");
    if (!hashes && !hints) return;
    for (size_t i = 0; i < leaf.count; ++i) {
        const auto record = key_record(image_, leaf.key(i));
        if (!record) continue;
        const NameView name = key_name(*record);
        const uint32_t hash = leaf.hash(i);
        const bool right = hashes ? hash == name_hash(name) : hash == name_hint(name) || hash == 0;
        if (!right) key_warning("a wrong hash in the list of subkeys");
    }
}

void Examiner::check_security_ring() {
    const auto root = key_record(image_, image_.root());
    if (!root) return;
    const CellOffset first = get_cell(*root, nk::security);
    if (!security_descriptor(image_, first)) return;  // told with the root
    CellOffset at = first;
    size_t in_ring = 0;
    do {
        const auto record = image_.cell_at(at, sk::descriptor);
        const auto descriptor = security_descriptor(image_, at);
        if (!descriptor || is_claimed(at))
            return error(in_file_of(at), "the ring of security records is broken");
        claim(at, "a security record");
        if (!is_valid_descriptor(*descriptor)) error(in_file_of(at), "an invalid security descriptor");
        const auto users = out_.security_users.find(at);
        const uint32_t used = users == out_.security_users.end() ? 0 : users->second;
        const uint32_t told = get32(*record, sk::reference_count);
        if (told < used) error(in_file_of(at), "a security record counts too few keys");
        if (told > used) warn(in_file_of(at), "a security record counts too many keys");
        in_ring += used > 0;
        const CellOffset next = get_cell(*record, sk::next);
        const auto next_record = image_.cell_at(next, sk::descriptor);
        if (!next_record || get_cell(*next_record, sk::previous) != at) {
            return error(in_file_of(at), "the ring of security records is broken");
        }
        at = next;
    } while (at != first);
    if (in_ring != out_.security_users.size())
        error(in_file_of(first), "a security record lies outside the ring");
}

void Examiner::check_orphans() {
    const size_t orphans = image_.used_cells() - std::min(claims_, image_.used_cells());
    if (orphans > 0) warn(0, std::to_string(orphans) + " cells in use that nothing leads to");
}

}  // namespace

const Finding* Examination::first_error() const {
    const auto at = std::find_if(findings.begin(), findings.end(),
                                 [](const Finding& f) { return f.level == Level::error; });
    return at == findings.end() ? nullptr : &*at;
}

Examination examine(const Image& image, size_t limit) { return Examiner(image, limit).run(); }

Examination examine_keys(const Image& image, const std::vector<KeyInTree>& keys,
                         std::vector<CellOffset>& cells) {
    return Examiner(image, 1).run_for(keys, cells);
}

std::optional<Finding> first_error_in_base_block(const Image& image) {
    const Examination found = Examiner(image, 1).run_for_base_block();
    return found.findings.empty() ? std::nullopt : std::optional(found.findings.front());
}

std::vector<Finding> validate(ByteView bytes, size_t limit) {
    return examine(Image(std::make_shared<Memory>(Memory::holding(bytes))), limit).findings;
}

std::string describe(const Finding& finding) {
    char place[32];
    (void)std::snprintf(place, sizeof place, "0x%llX", static_cast<unsigned long long>(finding.file_offset));
    return std::string("at ") + place + ": " + finding.text;
}

uint32_t base_block_checksum(std::span<const uint8_t> base_block) {
    uint32_t sum = 0;
    for (size_t at = 0; at < base_block::checksum; at += 4)
        sum ^= get32(base_block, at);
    if (sum == 0xFFFFFFFF) return 0xFFFFFFFE;
    return sum == 0 ? 1 : sum;
}

}  // namespace regf
