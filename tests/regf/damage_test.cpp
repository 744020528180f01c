#include "regf/dump.h"
#include "regf/whole_check.h"

namespace regf {
namespace {

/// Whatever the bytes are: an answer or a clean refusal; what may be edited can be sealed afterwards.
void exercise(const Bytes& image) {
    auto opened = Hive::open(image);
    EXPECT_TRUE(opened || !opened.error().message.empty());
    if (!opened) return;
    Hive& hive = *opened;
    (void)full_dump(hive);
    const bool writable = hive.read_only_reason().empty();
    const auto made = hive.create(u"Alpha\\New", 7);
    const Key key = made ? *made : hive.root();
    const bool set = hive.set_value(key, u"big", {REG_BINARY, Bytes(3000, 1)}, 7).ok();
    EXPECT_TRUE(writable || (!made && !set));
    if (!writable) return;
    for (Key child : hive.subkeys(hive.root())) {
        for (const auto& value : hive.values(child)) {
            EXPECT_TRUE(value.readable);
            (void)hive.delete_value(child, value.name, 7);  // may be refused for the key's flags
        }
        (void)hive.delete_key(child, 7);
    }
    EXPECT_EQ(full_dump(*Hive::open(must(sealed_image(hive, 7)))), full_dump(hive));
}

Hive small_hive(uint32_t minor) {
    Hive hive = Hive::create({.minor_version = minor, .file_name = u"small", .now = 1});
    for (const char16_t* path : {u"Alpha\\Inner\\Deep", u"Beta", u"Gamma\\\u0416"})
        EXPECT_TRUE(hive.create(path, 2));
    const Key alpha = *hive.find(u"Alpha");
    EXPECT_TRUE(hive.set_value(alpha, u"", {REG_SZ, {'h', 0, 'i', 0, 0, 0}}, 3));
    EXPECT_TRUE(hive.set_value(alpha, u"dword", {REG_DWORD, {1, 2, 3, 4}}, 3));
    EXPECT_TRUE(hive.set_value(alpha, u"other", {REG_BINARY, Bytes(20, 5)}, 3));
    EXPECT_TRUE(hive.set_value(*hive.find(u"Beta"), u"\u0416", {REG_BINARY, Bytes(3200, 9)}, 3));
    return hive;
}

TEST(DamagedHives, AreReadOrRefusedWhicheverByteIsWrong) {
    Hive hive = small_hive(3);
    const Bytes image = *sealed_image(hive, 4);
    ASSERT_EQ(image.size(), base_block_size + 2 * bin_unit);
    for (size_t at = 0; at < image.size(); ++at) {
        if (at == 512) at = base_block_size;  // nothing between has a meaning
        const auto run = image.begin() + static_cast<std::ptrdiff_t>(at);
        if (image.end() - run > 24 && std::all_of(run, run + 24, [&](uint8_t b) { return b == *run; }))
            continue;  // within free space or a long value
        for (const int pattern : {0xFF, 0x01}) {
            SCOPED_TRACE("byte " + std::to_string(at) + " ^ " + std::to_string(pattern));
            Bytes damaged = image;
            damaged[at] = static_cast<uint8_t>(damaged[at] ^ pattern);
            repair_checksum(damaged);
            exercise(damaged);
        }
    }
    for (size_t length = 0; length < image.size(); length += 8) {
        SCOPED_TRACE("cut at " + std::to_string(length));
        exercise(Bytes(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(length)));
    }
}

}  // namespace
}  // namespace regf
