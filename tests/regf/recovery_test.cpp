#include <gtest/gtest.h>

#include <bit>
#include <numeric>

#include "regf/bytes.h"
#include "regf/dump.h"
#include "regf/examine.h"
#include "regf/layout.h"
#include "regf/names.h"
#include "regf_file/hive_file.h"

namespace regf {
namespace {

constexpr size_t sector = 512;

/// The hash of log entries, from its description and not from what it tests.
uint64_t entry_hash(ByteView bytes) {
    Bytes padded(bytes.begin(), bytes.end());
    padded.insert(padded.end(), {0x80, 0, 0, 0, 0, 0, 0, 0});
    uint64_t state = 0x82EF4D88'7A4E55C5;
    for (size_t at = 0; at < padded.size(); at += 4) {
        const auto lo = static_cast<uint32_t>(state) + get32(padded, at);
        const auto hi = static_cast<uint32_t>(state >> 32) ^ lo;
        const uint32_t second = std::rotl(lo, 20) + hi;
        const uint32_t third = std::rotl(hi, 9) ^ second;
        const uint32_t fourth = std::rotl(second, 27) + third;
        state = uint64_t{std::rotl(third, 19)} << 32 | fourth;
    }
    return state;
}

ByteView text(std::string_view s) { return {reinterpret_cast<const uint8_t*>(s.data()), s.size()}; }

TEST(Figures, AreThoseOfWindows) {
    EXPECT_EQ(name_hash(u"A"), 0x41u);
    EXPECT_EQ(name_hash(u"Software"), 0xE9FE1463u);
    EXPECT_EQ(name_hash(u"Control Panel"), 0xBD9CD7B9u);
    EXPECT_EQ(name_hash(u"\u00EBigenaardig"), 0x4B098ECEu);
    EXPECT_EQ(name_hash(u"\u041F\u0440\u0438\u0432\u0435\u0442"), 0x81C3D610u);
    EXPECT_EQ(name_hint(u"123"), 0x00333231u);
    EXPECT_EQ(name_hint(u"\u00EBigenaardig"), 0x656769EBu);
    EXPECT_EQ(name_hint(u"key\xD81D"), 0u);
    const std::u16string ascending[] = {u"2",      u"3",       u"ss1",    u"SS3",
                                        u"\u009F", u"\u00DF2", u"\u0178", u"\u0430"};
    for (size_t i = 1; i < std::size(ascending); ++i)
        EXPECT_LT(compare_names(ascending[i - 1], ascending[i]), 0) << i;
    EXPECT_TRUE(same_name(u"\u00FF", u"\u0178"));
    EXPECT_EQ(entry_hash({}), 0xB39EFCA403966E08u);
    EXPECT_EQ(entry_hash(text("abcd")), 0x20094FB11A6CD086u);
    EXPECT_EQ(entry_hash(text("HvLE")), 0x914527932CF336DDu);
    Bytes counted(32);
    std::iota(counted.begin(), counted.end(), uint8_t{0});
    EXPECT_EQ(entry_hash(counted), 0xC64FEEE425C2E24Cu);
    constexpr FileTime now = 130000000000000000;
    const auto smallest =
        Hive::create({.minor_version = 3, .root_name = u"ROOT", .file_name = u"mini.dat", .now = now})
            .sealed_image(now);
    ASSERT_TRUE(smallest);
    EXPECT_EQ(smallest->size(), 8192u);
    EXPECT_EQ(get32(*smallest, base_block::checksum), 0xCB77AF53u);
}

/// A hive before and after some edits, to be joined by logs.
struct Recovery : testing::Test {
    static Bytes edited(const Bytes& from, std::u16string_view key, size_t size) {
        Hive hive = std::move(*Hive::open(from));
        EXPECT_TRUE(hive.set_value(*hive.create(key, 9), u"v", {REG_BINARY, Bytes(size, 7)}, 9));
        return *hive.sealed_image(1);
    }
    static void repair(Bytes& image) { put32(image, base_block::checksum, base_block_checksum(image)); }
    static void set_sequences(Bytes& image, uint32_t primary, uint32_t secondary) {
        put32(image, base_block::primary_sequence, primary);
        put32(image, base_block::secondary_sequence, secondary);
        repair(image);
    }
    static Bytes log_head(const Bytes& of, uint32_t type, uint32_t sequence, size_t size = sector) {
        Bytes log(of.begin(), of.begin() + sector);
        put32(log, base_block::type, type);
        set_sequences(log, sequence, sequence);
        log.resize(size);
        return log;
    }
    /// What differs, in steps of one page.
    static std::vector<uint32_t> pages(const Bytes& from, const Bytes& to, size_t page) {
        std::vector<uint32_t> out;
        for (size_t at = base_block_size; at < to.size(); at += page) {
            if (at >= from.size() || !std::equal(&to[at], &to[at] + page, &from[at]))
                out.push_back(static_cast<uint32_t>(at - base_block_size));
        }
        return out;
    }
    static Bytes old_log(const Bytes& from, const Bytes& to, uint32_t sequence, uint32_t clustering = 1) {
        const size_t unit = sector * clustering;
        Bytes head = to;
        put32(head, base_block::clustering, clustering);
        Bytes log = log_head(head, 1, sequence, unit);
        for (char c : {'D', 'I', 'R', 'T'})
            log.push_back(static_cast<uint8_t>(c));
        log.resize(log.size() + (to.size() - base_block_size) / bin_unit);
        const auto dirty = pages(from, to, sector);
        for (uint32_t at : dirty)
            log[unit + 4 + at / sector / 8] |= static_cast<uint8_t>(1 << at / sector % 8);
        log.resize((log.size() + unit - 1) / unit * unit);
        for (uint32_t at : dirty)
            log.insert(log.end(), &to[base_block_size + at], &to[base_block_size + at] + sector);
        return log;
    }
    static void append_entry(Bytes& log, const Bytes& from, const Bytes& to, uint32_t sequence) {
        const auto dirty = pages(from, to, bin_unit);
        Bytes entry(40);
        std::copy_n("HvLE", 4, entry.begin());
        put32(entry, 12, sequence);
        put32(entry, 16, static_cast<uint32_t>(to.size() - base_block_size));
        put32(entry, 20, static_cast<uint32_t>(dirty.size()));
        for (uint32_t at : dirty) {
            entry.resize(entry.size() + 8);
            put32(entry, entry.size() - 8, at);
            put32(entry, entry.size() - 4, bin_unit);
        }
        for (uint32_t at : dirty)
            entry.insert(entry.end(), &to[base_block_size + at], &to[base_block_size + at] + bin_unit);
        entry.resize((entry.size() + sector - 1) / sector * sector);
        put32(entry, 4, static_cast<uint32_t>(entry.size()));
        put64(entry, 24, entry_hash(ByteView(entry).subspan(40)));
        put64(entry, 32, entry_hash(ByteView(entry).first(32)));
        log.insert(log.end(), entry.begin(), entry.end());
    }
    static std::string outcome(const Bytes& image, const std::vector<Log>& logs) {
        const auto hive = Hive::open(image, logs);
        if (!hive) return hive.error().kind == ErrorKind::dirty ? "refused" : hive.error().message;
        EXPECT_TRUE(hive->recovered());
        const auto sealed = hive->sealed_image(10);
        EXPECT_TRUE(sealed && validate(*sealed).empty());
        std::string out;
        for (Key key : hive->subkeys(hive->root()))
            for (char16_t c : hive->name(key))
                out += static_cast<char>(c);
        return out;
    }

    Bytes first =
        edited(*Hive::create({.minor_version = 5, .file_name = u"x", .now = 1}).sealed_image(1), u"A", 9);
    Bytes second = edited(first, u"B", 20000);
    Bytes third = edited(second, u"C", 30);
};

TEST_F(Recovery, CompletesWritesFromTheOldLog) {
    Bytes dirty = first;
    set_sequences(dirty, 8, 7);
    for (const uint32_t clustering : {1u, 2u, 8u})
        EXPECT_EQ(outcome(dirty, {{"LOG", old_log(first, second, 7, clustering)}}), "AB") << clustering;
    EXPECT_EQ(outcome(dirty, {{"LOG1", old_log(first, second, 7)}, {"LOG2", old_log(first, third, 8)}}),
              "ABC");
    for (const size_t spoiled :
         {size_t{20}, size_t{0}}) {  // all but the time in the base block, or that as well
        Bytes headless = dirty;
        std::fill_n(headless.begin() + static_cast<ptrdiff_t>(spoiled), 400, uint8_t{0xEE});
        if (spoiled > base_block::last_written) put64(headless, base_block_size + bin::timestamp, 0);
        EXPECT_EQ(outcome(headless, {{"LOG", old_log(first, second, 7)}}), "AB") << spoiled;
    }

    EXPECT_EQ(outcome(dirty, {}), "refused");
    const Bytes whole = old_log(first, second, 7);
    EXPECT_EQ(outcome(dirty, {{"LOG", Bytes(whole.begin(), whole.end() - 1)}}), "refused") << "cut off";
    Bytes of_another_time = whole;
    put64(of_another_time, base_block::last_written, 99);
    repair(of_another_time);
    EXPECT_EQ(outcome(dirty, {{"LOG", of_another_time}}), "refused");
    Bytes spoiled = whole;
    spoiled[base_block::checksum] ^= 1;
    EXPECT_EQ(outcome(dirty, {{"LOG", spoiled}}), "refused");
}

TEST_F(Recovery, CompletesWritesFromTheNewLogs) {
    for (const uint32_t start : {7u, 0xFFFFFFFFu}) {  // sequence numbers wrap
        SCOPED_TRACE(start);
        Bytes dirty = first;
        set_sequences(dirty, start + 1, start);
        Bytes both = log_head(first, 6, start);
        append_entry(both, first, second, start);
        Bytes one = both;
        append_entry(both, second, third, start + 1);
        Bytes later = log_head(first, 6, start + 1);
        append_entry(later, second, third, start + 1);
        EXPECT_EQ(outcome(dirty, {{"LOG1", both}}), "ABC");
        EXPECT_EQ(outcome(dirty, {{"LOG1", later}, {"LOG2", one}}), "ABC") << "the earlier first";
        Bytes gap = log_head(first, 6, start + 2);
        append_entry(gap, second, third, start + 2);
        EXPECT_EQ(outcome(dirty, {{"LOG1", one}, {"LOG2", gap}}), "AB") << "one is missing between";
        Bytes stale = log_head(first, 6, start - 1);
        append_entry(stale, first, second, start - 1);
        EXPECT_EQ(outcome(dirty, {{"LOG1", stale}}), "refused");
        for (const size_t at : {sector + 8, sector + 24, sector + 32, sector + 60, one.size() - 1}) {
            Bytes spoiled = one;
            spoiled[at] ^= 1;
            EXPECT_EQ(outcome(dirty, {{"LOG1", spoiled}}), "refused") << at;
        }
        Bytes half = both;
        half[one.size() + 60] ^= 1;
        EXPECT_EQ(outcome(dirty, {{"LOG1", half}}), "AB") << "what came before the spoiled entry counts";
        Bytes empty = log_head(first, 6, start);
        Bytes skipping = log_head(first, 6, start + 1);
        append_entry(skipping, first, third, start + 1);
        EXPECT_EQ(outcome(dirty, {{"LOG1", empty}, {"LOG2", skipping}}), "refused")
            << "what lies between cannot be known";
    }
}

TEST_F(Recovery, DoesNotMakeAHiveOfALaterVersionWritable) {
    for (Bytes* image : {&first, &second}) {
        put32(*image, base_block::minor, 6);
        repair(*image);
    }
    Bytes dirty = first;
    set_sequences(dirty, 8, 7);
    const auto hive = Hive::open(dirty, {{"LOG", old_log(first, second, 7)}});
    ASSERT_TRUE(hive) << hive.error().message;
    EXPECT_TRUE(hive->recovered());
    const auto sealed = hive->sealed_image(10);
    ASSERT_FALSE(sealed);
    EXPECT_EQ(sealed.error().kind, ErrorKind::unsupported);
}

TEST_F(Recovery, OfAFileIsWrittenWithItsFirstChange) {
    TemporaryFolder folder;
    const HostPlace place = *hostfile::place_of(folder / "SYSTEM");
    Bytes dirty = first;
    set_sequences(dirty, 8, 7);
    write_file(place.path(), dirty);
    write_file(folder / "system.Log1", old_log(first, second, 7));
    auto lock = FileLock::acquire(place);
    ASSERT_TRUE(lock);
    auto file = read_hive(place, *lock);
    ASSERT_TRUE(file) << file.error().message;
    EXPECT_TRUE(file->hive.recovered());
    ASSERT_TRUE(commit(place, file->hive, file->identity, 10));
    EXPECT_TRUE(read_file(place.path()) == dirty) << "who only looks changes nothing";
    auto wanted = Hive::open(second);
    for (Hive* hive : {&file->hive, &*wanted})
        ASSERT_TRUE(hive->create(u"New", 9));
    ASSERT_TRUE(commit(place, file->hive, file->identity, 10));
    const auto clean = Hive::open(read_file(place.path()));
    ASSERT_TRUE(clean);
    EXPECT_FALSE(clean->recovered());
    EXPECT_EQ(full_dump(*clean), full_dump(*wanted));
}

}  // namespace
}  // namespace regf
