#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "regf/bytes.h"
#include "regf/dump.h"
#include "regf/examine.h"
#include "regf/layout.h"

namespace regf {
namespace {

using testing::HasSubstr;

void repair_checksum(Bytes& image) {
    if (image.size() >= base_block_size) put32(image, base_block::checksum, base_block_checksum(image));
}

/// Whatever the bytes are: an answer or a clean refusal; what may be edited can be sealed afterwards.
void exercise(const Bytes& image) {
    auto opened = Hive::open(image);
    if (!opened) {
        EXPECT_FALSE(opened.error().message.empty());
        return;
    }
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
    const auto sealed = sealed_image(hive, 7);
    ASSERT_TRUE(sealed) << sealed.error().message;
    const auto again = Hive::open(*sealed);
    ASSERT_TRUE(again) << again.error().message;
    EXPECT_EQ(full_dump(*again), full_dump(hive));
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

/// A hive to be broken at will.
struct Victim {
    explicit Victim(Hive from) : hive(std::move(from)), bytes(*sealed_image(hive, 4)) {}
    Key key(std::u16string_view path) const { return *hive.find(path); }
    uint32_t get(uint32_t cell, size_t field) const {
        return get32(bytes, base_block_size + cell + 4 + field);
    }
    uint32_t get(std::u16string_view path, size_t field) const {
        return get(number_of(key(path).cell), field);
    }
    void put(uint32_t cell, size_t field, uint32_t value) {
        put32(bytes, base_block_size + cell + 4 + field, value);
    }
    void put(std::u16string_view path, size_t field, uint32_t value) {
        put(number_of(key(path).cell), field, value);
    }
    /// Of the n-th value of a key.
    uint32_t value(std::u16string_view path, size_t n) const { return get(get(path, nk::value_list), 4 * n); }
    uint32_t root_list() const { return get(u"", nk::subkey_list); }
    uint32_t security() const { return get(u"", nk::security); }

    Hive hive;
    Bytes bytes;
};

TEST(DamagedHives, OfEveryKnownShapeAreFoundOut) {
    struct Shape {
        const char* what;
        std::function<void(Victim&)> damage;
        bool readable;
    };
    const Shape shapes[] = {
        {"a subkey is reached twice",  // a ring: Deep has the root below it
         [](Victim& v) { v.put(v.get(u"Alpha\\Inner", nk::subkey_list), 4, number_of(v.hive.root().cell)); },
         false},
        {"a list of subkeys is reached twice",
         [](Victim& v) { v.put(u"Gamma", nk::subkey_list, v.get(u"Alpha", nk::subkey_list)); }, false},
        {"the value list is reached twice",
         [](Victim& v) { v.put(u"Beta", nk::value_list, v.get(u"Alpha", nk::value_list)); }, false},
        {"a value is reached twice",
         [](Victim& v) { v.put(v.get(u"Alpha", nk::value_list), 4, v.value(u"Alpha", 0)); }, false},
        {"a cell with data is reached twice",
         [](Victim& v) {
             v.put(v.value(u"Beta", 0), vk::data, v.get(v.value(u"Alpha", 2), vk::data));
             v.put(v.value(u"Beta", 0), vk::data_size, 20);
         },
         false},
        {"the list of subkeys is damaged", [](Victim& v) { v.put(v.root_list(), 0, 0xFFFF'666C); }, true},
        {"the list of subkeys is damaged", [](Victim& v) { v.put(v.root_list(), 0, 0x0000'666C); }, true},
        {"the list of subkeys is damaged",  // an index that holds itself
         [](Victim& v) {
             v.put(v.root_list(), 0, 0x0001'6972);
             v.put(v.root_list(), 4, v.root_list());
         },
         true},
        {"a list of subkeys is reached twice",  // an index of one leaf, over and over
         [](Victim& v) {
             const uint32_t leaf = v.get(u"Alpha", nk::subkey_list);
             v.put(v.root_list(), 0, 0x0003'6972);
             for (size_t i = 0; i < 3; ++i)
                 v.put(v.root_list(), 4 + 4 * i, leaf);
         },
         false},
        {"another length than the key tells", [](Victim& v) { v.put(u"", nk::subkey_count, 0xFFFFFFFF); },
         true},
        {"the value list is shorter", [](Victim& v) { v.put(u"Alpha", nk::value_count, 0xFFFFFFFF); }, true},
        {"cannot be read", [](Victim& v) { v.put(v.value(u"Alpha", 1), vk::data_size, 0x80000005); }, true},
        {"cannot be read", [](Victim& v) { v.put(v.value(u"Alpha", 2), vk::data_size, 0x7FFFFFFF); }, true},
        {"cannot be read", [](Victim& v) { v.put(v.value(u"Alpha", 2), vk::data, 0x24); }, true},
        {"a value cannot be read", [](Victim& v) { v.put(v.value(u"Alpha", 2), 0, 0xFFFF'6B76); }, true},
        {"a subkey cannot be read", [](Victim& v) { v.put(u"Beta", nk::name_length, 0x0000'FFFF); }, true},
        {"a key tells another parent", [](Victim& v) { v.put(u"Beta", nk::parent, v.security()); }, true},
        {"the class name cannot be read",
         [](Victim& v) { v.put(u"Beta", nk::name_length, v.get(u"Beta", nk::name_length) | 0x00080000); },
         true},
        {"without a security descriptor", [](Victim& v) { v.put(u"Beta", nk::security, number_of(nil)); },
         true},
        {"counts too few keys", [](Victim& v) { v.put(v.security(), sk::reference_count, 1); }, true},
        {"the ring of security records", [](Victim& v) { v.put(v.security(), sk::next, number_of(nil)); },
         true},
        {"an invalid security descriptor", [](Victim& v) { v.put(v.security(), sk::descriptor, 2); }, true},
        {"subkeys out of order",
         [](Victim& v) {
             const uint32_t first = v.get(v.root_list(), 4);
             v.put(v.root_list(), 4, v.get(v.root_list(), 12));
             v.put(v.root_list(), 12, first);
         },
         true},
        {"a cell of impossible size",
         [](Victim& v) { put32(v.bytes, base_block_size + number_of(v.key(u"Gamma").cell), 0x80000000); },
         true},
        {"the root key cannot be read", [](Victim& v) { put32(v.bytes, base_block::root, 0x28); }, false},
        {"no multiple of 4096", [](Victim& v) { put32(v.bytes, base_block::bins_size, 0x1FFF); }, true},
        {"the file ends before", [](Victim& v) { put32(v.bytes, base_block::bins_size, 0xFFFFF000); }, true},
        {"another place than its own",
         [](Victim& v) { put32(v.bytes, base_block_size + bin_unit + bin::offset, 0); }, true},
    };
    for (const Shape& shape : shapes) {
        SCOPED_TRACE(shape.what + (" (row " + std::to_string(&shape - shapes) + ")"));
        Victim victim(small_hive(3));
        shape.damage(victim);
        repair_checksum(victim.bytes);
        std::string found;
        for (const Finding& finding : validate(victim.bytes))
            found += (finding.level == Finding::Level::error ? finding.text : "") + "\n";
        EXPECT_THAT(found, HasSubstr(shape.what));
        const auto opened = Hive::open(victim.bytes);
        EXPECT_EQ(opened.ok(), shape.readable) << (opened ? "" : opened.error().message);
        if (opened) {
            EXPECT_NE(opened->read_only_reason(), "");
        }
        exercise(victim.bytes);
    }
}

TEST(DamagedHives, WithAWrongCountOfSharedDescriptorsAreEditedSafely) {
    for (const uint32_t count : {0x7FFFFFFFu, 0xFFFFFFECu, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        SCOPED_TRACE(count);
        Victim victim(small_hive(3));
        victim.put(victim.security(), sk::reference_count, count);
        repair_checksum(victim.bytes);
        auto hive = Hive::open(victim.bytes);
        ASSERT_TRUE(hive);
        ASSERT_EQ(hive->read_only_reason(), "");
        for (char16_t letter = u'a'; letter <= u'z'; ++letter) {  // the count wraps on the way
            const auto key = hive->create_subkey(hive->root(), {&letter, 1}, 5);
            ASSERT_TRUE(key && hive->set_value(*key, u"v", {REG_BINARY, Bytes(9)}, 5));
        }
        for (const Key key : hive->subkeys(hive->root()))
            ASSERT_TRUE(hive->delete_key(key, 5));
        ASSERT_TRUE(hive->create(u"a\\b", 5));
        const auto sealed = sealed_image(*hive, 6);
        ASSERT_TRUE(sealed) << sealed.error().message;
        EXPECT_TRUE(validate(*sealed).empty());
    }
}

}  // namespace
}  // namespace regf
