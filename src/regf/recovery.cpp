#include "regf/recovery.h"

#include <algorithm>
#include <optional>

#include "regf/bytes.h"
#include "regf/examine.h"
#include "regf/layout.h"

namespace regf {

namespace {

constexpr size_t sector = 512;
constexpr uint32_t new_format = 6;

bool has_right_checksum(ByteView block) {
    return block.size() >= sector && get32(block, base_block::checksum) == base_block_checksum(block);
}

uint32_t primary_sequence(ByteView block) { return get32(block, base_block::primary_sequence); }

bool has_log_header(const Bytes& log) {
    if (log.size() < sector || !has_signature(log, "regf") || !has_right_checksum(log)) return false;
    const uint32_t type = get32(log, base_block::type);
    const uint32_t size = get32(log, base_block::bins_size);
    return primary_sequence(log) == get32(log, base_block::secondary_sequence) &&
           get32(log, base_block::major) == 1 && get32(log, base_block::format) == 1 &&
           (type == 1 || type == 2 || type == new_format) && size != 0 && size % bin_unit == 0 &&
           size <= largest_bins_size;
}

/// Bytes of the file that replace what the hive holds at `offset` of its bins.
struct Page {
    uint32_t offset;
    ByteView bytes;
};

/// The largest hive that a file and its logs can fill.
uint64_t room_in(ByteView primary, const std::vector<Log>& logs) {
    uint64_t room = primary.size();
    for (const Log& log : logs)
        room += log.bytes.size();
    return std::min(room, largest_file);
}

/// False where there is nothing to fill so many bins with.
bool grow_to(Bytes& image, uint32_t bins_size, uint64_t room) {
    const uint64_t size = base_block_size + uint64_t{bins_size};
    if (size > room) return false;
    image.resize(std::max<uint64_t>(image.size(), size));
    return true;
}

void write_pages(Bytes& image, const std::vector<Page>& pages) {
    for (const Page& page : pages) {
        std::copy(page.bytes.begin(), page.bytes.end(), image.begin() + base_block_size + page.offset);
    }
}

/// Makes a base block out of the copy that a log begins with.
void take_base_block(Bytes& image, const Bytes& log) {
    std::fill_n(image.begin(), base_block_size, uint8_t{0});
    std::copy_n(log.begin(), sector, image.begin());
}

void finish(Bytes& image, uint32_t sequence) {
    put32(image, base_block::type, 0);
    put32(image, base_block::primary_sequence, sequence);
    put32(image, base_block::secondary_sequence, sequence);
    put32(image, base_block::checksum, base_block_checksum(image));
}

// --- the format up to Windows 8: one bitmap of dirty pages, then the pages

std::optional<std::vector<Page>> old_pages(const Bytes& log) {
    const uint32_t bins_size = get32(log, base_block::bins_size);
    const size_t cluster = sector * std::clamp<uint32_t>(get32(log, base_block::clustering), 1, 8);
    const size_t map_at = cluster + 4;
    const size_t map_size = bins_size / bin_unit;  // a bit for each sector
    if (log.size() < map_at + map_size || !has_signature(ByteView(log).subspan(cluster), "DIRT"))
        return std::nullopt;
    size_t page_at = (map_at + map_size + cluster - 1) / cluster * cluster;
    std::vector<Page> pages;
    for (size_t i = 0; i < map_size * 8; ++i) {
        if (!(log[map_at + i / 8] >> i % 8 & 1)) continue;
        if (log.size() < page_at + sector)
            return std::nullopt;  // cut off: what the bitmap promises is not there
        pages.push_back({static_cast<uint32_t>(i * sector), ByteView(log).subspan(page_at, sector)});
        page_at += sector;
    }
    return pages;
}

std::optional<Bytes> replay_old(ByteView primary, const std::vector<Log>& logs) {
    const bool sound = has_right_checksum(primary);
    // In a broken base block any field may be the broken one; the first bin has the same time.
    const auto is_of_this_write = [&](const Bytes& log) {
        const uint64_t written = get64(log, base_block::last_written);
        return written == get64(primary, base_block::last_written) ||
               (!sound && written == get64(primary, base_block_size + bin::timestamp));
    };
    const Bytes* best = nullptr;
    for (const Log& log : logs) {
        if (!has_log_header(log.bytes) || get32(log.bytes, base_block::type) == new_format) continue;
        if (!is_of_this_write(log.bytes) || !old_pages(log.bytes)) continue;
        if (!best || primary_sequence(log.bytes) > primary_sequence(*best)) best = &log.bytes;
    }
    if (!best) return std::nullopt;
    const auto pages = *old_pages(*best);
    if (pages.empty()) return std::nullopt;
    Bytes image(primary.begin(), primary.end());
    const uint32_t sequence = std::max(sound ? primary_sequence(primary) : 0, primary_sequence(*best)) + 1;
    if (!sound) {
        take_base_block(image, *best);
    } else {
        for (const size_t field : {base_block::root, base_block::bins_size, base_block::minor}) {
            put32(image, field, get32(*best, field));
        }
    }
    if (!grow_to(image, get32(*best, base_block::bins_size), room_in(primary, logs))) return std::nullopt;
    write_pages(image, pages);
    finish(image, sequence);
    return image;
}

// --- the format from Windows 8.1 on: a run of entries, each with its hashes

struct Entry {
    uint32_t sequence;
    uint32_t flags;
    uint32_t bins_size;
    std::vector<Page> pages;
};

/// One entry at the front of `rest`; none where it is damaged or of another run.
std::optional<Entry> read_entry(ByteView rest, uint32_t sequence) {
    constexpr size_t header = 40;
    constexpr size_t hashed_header = 32;
    if (rest.size() < sector || !has_signature(rest, "HvLE")) return std::nullopt;
    const size_t size = get32(rest, 4);
    if (size < sector || size % sector != 0 || size > rest.size()) return std::nullopt;
    Entry entry{get32(rest, 12), get32(rest, 8), get32(rest, 16), {}};
    const size_t count = get32(rest, 20);
    const bool sized =
        entry.bins_size != 0 && entry.bins_size % bin_unit == 0 && entry.bins_size <= largest_bins_size;
    if (entry.sequence != sequence || !sized || count == 0 || count > (size - header) / 8)
        return std::nullopt;
    const ByteView whole = rest.first(size);
    if (get64(rest, 24) != log_entry_hash(whole.subspan(header)) ||
        get64(rest, 32) != log_entry_hash(whole.first(hashed_header))) {
        return std::nullopt;
    }
    size_t content = header + 8 * count;
    for (size_t i = 0; i < count; ++i) {
        const uint32_t offset = get32(whole, header + 8 * i);
        const uint32_t length = get32(whole, header + 8 * i + 4);
        if (length > size - content || offset > entry.bins_size || length > entry.bins_size - offset)
            return std::nullopt;
        entry.pages.push_back({offset, whole.subspan(content, length)});
        content += length;
    }
    return entry;
}

std::vector<Entry> read_entries(const Bytes& log) {
    std::vector<Entry> out;
    for (size_t at = sector; at < log.size();) {
        auto entry =
            read_entry(ByteView(log).subspan(at), primary_sequence(log) + static_cast<uint32_t>(out.size()));
        if (!entry) break;
        at += get32(log, at + 4);
        out.push_back(std::move(*entry));
    }
    return out;
}

/// Sequence numbers wrap.
int32_t ahead_of(uint32_t a, uint32_t b) { return static_cast<int32_t>(a - b); }

std::optional<Bytes> replay_new(ByteView primary, const std::vector<Log>& logs) {
    const bool sound = has_right_checksum(primary);
    std::vector<const Bytes*> usable;
    for (const Log& log : logs) {
        if (!has_log_header(log.bytes) || get32(log.bytes, base_block::type) != new_format) continue;
        const bool old = sound && ahead_of(primary_sequence(log.bytes),
                                           get32(primary, base_block::secondary_sequence)) < 0;
        if (!old) usable.push_back(&log.bytes);
    }
    if (usable.empty()) return std::nullopt;
    const uint32_t origin = get32(sound ? primary : *usable.front(), base_block::secondary_sequence);
    std::stable_sort(usable.begin(), usable.end(), [origin](const Bytes* a, const Bytes* b) {
        return ahead_of(primary_sequence(*a), origin) < ahead_of(primary_sequence(*b), origin);
    });
    Bytes image(primary.begin(), primary.end());
    if (!sound) {
        usable.erase(usable.begin(), usable.end() - 1);  // the later one alone
        take_base_block(image, *usable.front());
    }
    const uint32_t first = primary_sequence(*usable.front());
    uint32_t next = first;
    for (const Bytes* log : usable) {
        if (primary_sequence(*log) != next) break;
        for (const Entry& entry : read_entries(*log)) {
            if (!grow_to(image, entry.bins_size, room_in(primary, logs))) return std::nullopt;
            write_pages(image, entry.pages);
            put32(image, base_block::bins_size, entry.bins_size);
            put32(image, base_block::flags, (get32(image, base_block::flags) & ~1u) | (entry.flags & 1));
            next = entry.sequence + 1;
        }
    }
    if (next == first) return std::nullopt;
    finish(image, next);
    return image;
}

}  // namespace

namespace {

uint32_t rotate_left(uint32_t value, int by) { return value << by | value >> (32 - by); }

}  // namespace

uint64_t log_entry_hash(ByteView bytes) {
    uint32_t high = 0x82EF4D88;
    uint32_t low = 0x7A4E55C5;
    auto mix = [&](uint32_t value) {
        low += value;
        high ^= low;
        low = rotate_left(low, 20) + high;
        high = rotate_left(high, 9) ^ low;
        low = rotate_left(low, 27) + high;
        high = rotate_left(high, 19);
    };
    for (size_t at = 0; at + 4 <= bytes.size(); at += 4)
        mix(get32(bytes, at));
    mix(0x80);
    mix(0);
    return uint64_t{high} << 32 | low;
}

bool is_clean(ByteView image) {
    return image.size() >= base_block_size && has_signature(image, "regf") && has_right_checksum(image) &&
           primary_sequence(image) == get32(image, base_block::secondary_sequence);
}

Result<Bytes> recover(ByteView image, const std::vector<Log>& logs) {
    if (image.size() >= base_block_size + bin_unit) {
        for (const auto replay : {replay_new, replay_old}) {
            auto recovered = replay(image, logs);
            if (!recovered) continue;
            const auto findings = validate(*recovered, 1);
            const auto error = std::ranges::find(findings, Finding::Level::error, &Finding::level);
            if (error == findings.end()) return std::move(*recovered);
            return Error{
                ErrorKind::dirty,
                "writes were not finished, and the log leads to a hive that is damaged " + describe(*error)};
        }
    }
    return Error{ErrorKind::dirty, "writes were not finished, and no log completes them"};
}

}  // namespace regf
