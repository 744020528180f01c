#include "regf/examine.h"

#include <algorithm>
#include <cstdio>
#include <unordered_map>

#include "regf/bytes.h"
#include "regf/layout.h"
#include "regf/records.h"

namespace regf {

namespace {

using Level = Finding::Level;

class Examiner {
  public:
    Examiner(const Image& image, size_t limit) : image_(image), limit_(limit) {}

    Examination run() {
        check_base_block();
        if (image_.problem()) error(image_.problem()->file_offset, image_.problem()->text);
        for (CellOffset at : image_.unmerged_cells())
            warn(in_file(at), "free cells side by side");
        claimed_.assign(image_.bins_size() / 8, false);
        walk_keys();
        if (out_.walkable) {
            check_security_ring();
            check_orphans();
        }
        return std::move(out_);
    }

  private:
    struct Visit {
        CellOffset offset;
        CellOffset parent;  // nil: the root
        uint32_t depth;
    };

    static uint64_t in_file(CellOffset offset) { return base_block_size + uint64_t{number_of(offset)}; }

    void add(Level level, uint64_t at, std::string text) {
        if (out_.findings.size() < limit_ || (level == Level::error && !out_.first_error())) {
            out_.findings.push_back({level, at, std::move(text)});
        }
    }
    void error(uint64_t at, std::string text) { add(Level::error, at, std::move(text)); }
    void warn(uint64_t at, std::string text) { add(Level::warning, at, std::move(text)); }
    bool is_full() const { return out_.findings.size() >= limit_ && out_.first_error(); }
    void key_error(CellOffset key, const std::string& text) {
        if (!is_full()) error(in_file(key), text + " (key " + path_of(key) + ")");
    }
    void key_warning(CellOffset key, const std::string& text) {
        if (out_.findings.size() < limit_) warn(in_file(key), text + " (key " + path_of(key) + ")");
    }

    std::string path_of(CellOffset offset) const {
        std::string path;
        for (int level = 0; level < 64; ++level) {
            const auto parent = parents_.find(offset);
            if (parent == parents_.end() || parent->second == nil) break;
            const auto key = key_record(image_, offset);
            path.insert(0, "\\" + (key ? printable(key_name(*key)) : std::string("?")));
            offset = parent->second;
        }
        return path.empty() ? "\\" : path;
    }

    /// For whatever belongs to a key. A cell that is claimed twice ends the walk: what shares cells can take
    /// for ever to read, and fill any memory.
    void claim(CellOffset cell, CellOffset key, const char* what) {
        if (claimed_[number_of(cell) / 8]) {
            out_.walkable = false;
            key_error(key, std::string(what) + " is reached twice");
        }
        claimed_[number_of(cell) / 8] = true;
    }

    void check_base_block();
    void walk_keys();
    void check_key(const Visit& visit, CellView key);
    void check_class(CellOffset offset, CellView key);
    void check_values(CellOffset offset, CellView key);
    void check_value_data(CellOffset offset, CellView value, uint32_t& largest_data);
    void check_subkeys(const Visit& visit, CellView key);
    void check_leaf(CellOffset key_offset, const Leaf& leaf);
    void check_security_ring();
    void check_orphans();

    const Image& image_;
    size_t limit_;
    Examination out_;
    std::vector<bool> claimed_;
    std::unordered_map<CellOffset, CellOffset> parents_;  // of each key reached
    std::vector<Visit> open_;
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
    open_.push_back({root, nil, 1});
    while (!open_.empty() && out_.walkable) {
        const Visit visit = open_.back();
        open_.pop_back();
        claim(visit.offset, visit.parent == nil ? visit.offset : visit.parent, "a subkey");
        if (visit.depth > deepest_level) {
            out_.walkable = false;
            key_error(visit.parent, "more than 512 levels");
        }
        if (!out_.walkable) return;
        parents_[visit.offset] = visit.parent;
        check_key(visit, *key_record(image_, visit.offset));
    }
}

void Examiner::check_key(const Visit& visit, CellView key) {
    const uint16_t flags = get16(key, nk::flags);
    const bool is_root = visit.parent == nil;
    const std::u16string name = key_name(key);
    if (!(flags & nk::compressed_name) && get16(key, nk::name_length) % 2 != 0) {
        key_error(visit.offset, "a name of odd length");
    }
    if (!is_root && name.find(u'\\') != std::u16string::npos)
        key_error(visit.offset, "a backslash in a name");
    if (!is_root && get_cell(key, nk::parent) != visit.parent)
        key_error(visit.offset, "a key tells another parent");
    if (bool(flags & nk::is_root) != is_root)
        warn(in_file(visit.offset), "the root flag is on the wrong key");
    if (flags & (nk::is_volatile | nk::is_mount_point))
        key_error(visit.offset, "a key that may not lie on disk");
    const CellOffset security = get_cell(key, nk::security);
    if (security_descriptor(image_, security)) {
        ++out_.security_users[security];
    } else {
        key_error(visit.offset, "a key without a security descriptor");
    }
    check_class(visit.offset, key);
    if (!(flags & nk::predefined_handle)) check_values(visit.offset, key);
    check_subkeys(visit, key);
}

void Examiner::check_class(CellOffset offset, CellView key) {
    if (get16(key, nk::class_length) == 0) return;
    const CellOffset cell = get_cell(key, nk::class_name);
    if (!class_name_of(image_, key)) return key_error(offset, "the class name cannot be read");
    claim(cell, offset, "the cell of the class name");
}

void Examiner::check_values(CellOffset offset, CellView key) {
    const uint32_t count = get32(key, nk::value_count);
    if (count == 0) return;
    const CellOffset list_offset = get_cell(key, nk::value_list);
    const auto list = image_.cell_at(list_offset);
    if (!list) return key_error(offset, "the value list cannot be read");
    if (count > list->size() / 4) key_error(offset, "the value list is shorter than its count");
    claim(list_offset, offset, "the value list");
    std::vector<std::u16string> names;
    uint32_t largest_name = 0;
    uint32_t largest_data = 0;
    for (CellOffset at : value_offsets(image_, key)) {
        const auto value = value_record(image_, at);
        if (!value) {
            key_error(offset, "a value cannot be read");
            continue;
        }
        claim(at, offset, "a value");
        if (!out_.walkable) return;
        names.push_back(value_name(*value));
        largest_name = std::max(largest_name, static_cast<uint32_t>(names.back().size() * 2));
        check_value_data(offset, *value, largest_data);
    }
    auto before = [](const std::u16string& a, const std::u16string& b) { return compare_names(a, b) < 0; };
    std::sort(names.begin(), names.end(), before);
    if (std::adjacent_find(names.begin(), names.end(), same_name) != names.end()) {
        key_warning(offset, "two values of the same name");
    }
    if (get32(key, nk::largest_value_name) < largest_name ||
        get32(key, nk::largest_value_data) < largest_data) {
        key_warning(offset, "a value is larger than its key tells");
    }
}

void Examiner::check_value_data(CellOffset offset, CellView value, uint32_t& largest_data) {
    const auto place = value_data_place(image_, value);
    if (!place)
        return key_error(offset, "the data of the value " + printable(value_name(value)) + " cannot be read");
    largest_data = std::max(largest_data, place->size);
    if (place->resident || place->size == 0) return;
    claim(place->cell, offset, "a cell with data");
    if (place->segment_list) claim(*place->segment_list, offset, "a list of segments");
    for (CellOffset segment : place->segments)
        claim(segment, offset, "a segment of data");
}

void Examiner::check_subkeys(const Visit& visit, CellView key) {
    const uint32_t count = get32(key, nk::subkey_count);
    if (count == 0) return;
    const SubkeyLists lists = subkey_lists(image_, key);
    if (!lists.whole) key_error(visit.offset, "the list of subkeys is damaged");
    if (!lists.leaves.empty() && lists.leaves.front().index_offset != nil)
        claim(lists.leaves.front().index_offset, visit.offset, "an index of subkeys");
    for (const Leaf& leaf : lists.leaves)
        claim(leaf.offset, visit.offset, "a list of subkeys");
    if (!out_.walkable) return;
    uint32_t found = 0;
    uint32_t largest_name = 0;
    uint32_t largest_class = 0;
    std::optional<std::u16string> before;
    for (const Leaf& leaf : lists.leaves) {
        check_leaf(visit.offset, leaf);
        found += static_cast<uint32_t>(leaf.entries.size());
        for (const auto& [child, hash] : leaf.entries) {
            const auto record = key_record(image_, child);
            if (!record) {
                key_error(visit.offset, "a subkey cannot be read");
                continue;
            }
            std::u16string name = key_name(*record);
            if (before && compare_names(*before, name) >= 0) key_error(visit.offset, "subkeys out of order");
            largest_name = std::max(largest_name, static_cast<uint32_t>(name.size() * 2));
            largest_class = std::max<uint32_t>(largest_class, get16(*record, nk::class_length));
            before = std::move(name);
            open_.push_back({child, visit.offset, visit.depth + 1});
        }
    }
    if (lists.whole && found != count)
        key_error(visit.offset, "the list of subkeys has another length than the key tells");
    if (get16(key, nk::largest_subkey_name) < largest_name ||
        get32(key, nk::largest_class_name) < largest_class) {
        key_warning(visit.offset, "a subkey's name or class is longer than its key tells");
    }
}

void Examiner::check_leaf(CellOffset key_offset, const Leaf& leaf) {
    const auto list = *image_.cell_at(leaf.offset);
    const bool hashes = has_signature(list, "lh");
    const bool hints = has_signature(list, "lf");
    if (hashes && image_.minor_version() < 5) key_error(key_offset, "a list of a later version");
    if (!hashes && !hints) return;
    for (const LeafEntry& entry : leaf.entries) {
        const auto record = key_record(image_, entry.key);
        if (!record) continue;
        const std::u16string name = key_name(*record);
        const bool right =
            hashes ? entry.hash == name_hash(name) : entry.hash == name_hint(name) || entry.hash == 0;
        if (!right) key_warning(key_offset, "a wrong hash in the list of subkeys");
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
        if (!descriptor || claimed_[number_of(at) / 8])
            return error(in_file(at), "the ring of security records is broken");
        claimed_[number_of(at) / 8] = true;
        if (!is_valid_descriptor(*descriptor)) error(in_file(at), "an invalid security descriptor");
        const uint32_t users = out_.security_users.contains(at) ? out_.security_users[at] : 0;
        const uint32_t told = get32(*record, sk::reference_count);
        if (told < users) error(in_file(at), "a security record counts too few keys");
        if (told > users) warn(in_file(at), "a security record counts too many keys");
        in_ring += users > 0;
        const CellOffset next = get_cell(*record, sk::next);
        const auto next_record = image_.cell_at(next, sk::descriptor);
        if (!next_record || get_cell(*next_record, sk::previous) != at) {
            return error(in_file(at), "the ring of security records is broken");
        }
        at = next;
    } while (at != first);
    if (in_ring != out_.security_users.size())
        error(in_file(first), "a security record lies outside the ring");
}

void Examiner::check_orphans() {
    size_t orphans = 0;
    for (CellOffset at : image_.used_cells())
        orphans += !claimed_[number_of(at) / 8];
    if (orphans > 0) warn(0, std::to_string(orphans) + " cells in use that nothing leads to");
}

}  // namespace

const Finding* Examination::first_error() const {
    const auto at = std::find_if(findings.begin(), findings.end(),
                                 [](const Finding& f) { return f.level == Level::error; });
    return at == findings.end() ? nullptr : &*at;
}

Examination examine(const Image& image, size_t limit) { return Examiner(image, limit).run(); }

std::vector<Finding> validate(ByteView bytes, size_t limit) {
    return examine(Image(Bytes(bytes.begin(), bytes.end())), limit).findings;
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
