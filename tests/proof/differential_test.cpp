#include <gtest/gtest.h>
#include <hivex.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <random>

#include "regf/dump.h"
#include "regf_file/hive_file.h"

namespace regf {
namespace {

namespace fs = std::filesystem;

// What libhivex reads, in the form of dump().

template <class Pointer>
auto owned(Pointer* pointer) {
    return std::unique_ptr<Pointer, decltype(&std::free)>(pointer, &std::free);
}

/// libhivex tells names in UTF-8.
std::u16string utf16(std::string_view name) {
    std::u16string out;
    for (const char *next = name.begin(), *end = name.end(); next != end;) {
        uint32_t letter = static_cast<uint8_t>(*next++);
        const int more = letter < 0x80 ? 0 : letter < 0xE0 ? 1 : letter < 0xF0 ? 2 : 3;
        if (more > 0) letter &= 0x3Fu >> more;
        for (int i = 0; i < more && next != end; ++i)
            letter = letter << 6 | (static_cast<uint8_t>(*next++) & 0x3Fu);
        if (letter > 0xFFFF) out += static_cast<char16_t>(0xD7C0 + (letter >> 10));
        out += static_cast<char16_t>(letter > 0xFFFF ? 0xDC00 + (letter & 0x3FF) : letter);
    }
    return out;
}

void dump_node(hive_h* hive, hive_node_h node, const std::string& path, std::string& out) {
    out += "K " + path + "\n";
    const auto values = owned(hivex_node_values(hive, node));
    for (const auto* value = values.get(); value && *value != 0; ++value) {
        hive_type type{};
        size_t size = 0;
        const auto data = owned(hivex_value_value(hive, *value, &type, &size));
        const auto* bytes = reinterpret_cast<const uint8_t*>(data.get());
        out +=
            "V " + path + " " +
            escaped(utf16({owned(hivex_value_key(hive, *value)).get(), hivex_value_key_len(hive, *value)})) +
            " " + std::to_string(static_cast<uint32_t>(type)) + " " +
            (data ? hex({bytes, size}) : "unreadable") + "\n";
    }
    const auto children = owned(hivex_node_children(hive, node));
    for (const auto* child = children.get(); child && *child != 0; ++child)
        dump_node(hive, *child,
                  path + "/" +
                      escaped(utf16(
                          {owned(hivex_node_name(hive, *child)).get(), hivex_node_name_len(hive, *child)})),
                  out);
}

std::string dump_by_libhivex(const fs::path& file) {
    const std::unique_ptr<hive_h, decltype(&hivex_close)> hive(hivex_open(file.c_str(), 0), &hivex_close);
    std::string out;
    if (hive) dump_node(hive.get(), hivex_root(hive.get()), "", out);
    return out;
}

/// Edits of one hive, drawn at random; each is looked up at once.
class Editing {
  public:
    Editing(Hive& hive, std::mt19937& random) : hive_(hive), random_(random) {}

    void edit() {
        const Key key = any_key();
        const uint32_t choice = draw(100);
        if (choice < 30) {
            create(key, any_name());
        } else if (choice < 33) {
            for (uint32_t i = draw(600); i > 0; --i)
                create(key, any_name() + static_cast<char16_t>(0x100 + i));
        } else if (choice < 75) {
            set(key, any_value_name(key));
        } else if (choice < 88) {
            const std::u16string name = any_value_name(key);
            const bool there = hive_.value(key, name).has_value();
            EXPECT_EQ(hive_.delete_value(key, name, now_).ok(), there);
            EXPECT_FALSE(hive_.value(key, name));
        } else if (key != hive_.root()) {
            ASSERT_TRUE(hive_.delete_key(key, now_));
        }
    }

  private:
    uint32_t draw(uint32_t count) { return static_cast<uint32_t>(random_() % count); }

    Key any_key() {
        Key key = hive_.root();
        for (uint32_t depth = draw(7); depth > 0; --depth) {
            const auto children = hive_.subkeys(key);
            if (children.empty()) break;
            key = children[draw(static_cast<uint32_t>(children.size()))];
        }
        return key;
    }
    /// Often one that differs from another in its case only.
    std::u16string any_name() {
        static constexpr std::array<const char16_t*, 16> parts{u"a",
                                                               u"A",
                                                               u"Key ",
                                                               u"key ",
                                                               u"\u00e4\u00f6\u00fc",
                                                               u"\u00c4\u00d6\u00dc",
                                                               u"\u00df",
                                                               u"\u00ff",
                                                               u"\u0178",
                                                               u"\u03a9\u03c9",
                                                               u"\u0436",
                                                               u"\u6f22",
                                                               u"\U0001F511",
                                                               u"0",
                                                               u"/",
                                                               u"\u0131"};
        std::u16string name;
        for (uint32_t i = draw(3) + 1; i > 0; --i)
            name += parts[draw(parts.size())];
        return draw(50) == 0 ? name + std::u16string(200, u'l') : name;
    }
    std::u16string any_value_name(Key key) {
        const auto values = hive_.values(key);
        if (!values.empty() && draw(2) == 0) return values[draw(static_cast<uint32_t>(values.size()))].name;
        return draw(8) == 0 ? std::u16string() : any_name();
    }
    void create(Key parent, const std::u16string& name) {
        const auto made = hive_.create_subkey(parent, name, now_);
        ASSERT_TRUE(made) << made.error().message;
        EXPECT_EQ(hive_.find_subkey(parent, name), *made);
    }
    void set(Key key, const std::u16string& name) {
        static constexpr std::array<uint32_t, 9> sizes{0, 4, 5, 12, 100, 4090, 16344, 16345, 70000};
        const uint32_t size = draw(3) == 0 ? sizes[draw(sizes.size())] : draw(60);
        Value value{draw(12), Bytes(size)};
        for (uint8_t& byte : value.data)
            byte = static_cast<uint8_t>(random_());
        ASSERT_TRUE(hive_.set_value(key, name, value, now_));
        EXPECT_EQ(hive_.value(key, name), value);
    }

    Hive& hive_;
    std::mt19937& random_;
    FileTime now_ = 5;
};

/// A sequence of edits and its commit; then both readers read the file.
void edit_and_compare(const fs::path& file, std::mt19937& random) {
    const HostPlace place = *hostfile::place_of(file);
    auto lock = FileLock::acquire(place);
    ASSERT_TRUE(lock);
    auto opened = read_hive(place, *lock);
    ASSERT_TRUE(opened) << opened.error().message;
    Editing editing(opened->hive, random);
    for (uint32_t edits = 1 + static_cast<uint32_t>(random() % 40); edits > 0; --edits)
        editing.edit();
    const auto written = commit(place, opened->hive, opened->identity, 6);
    ASSERT_TRUE(written) << written.error().message;
    const std::string wanted = dump(opened->hive);
    expect_same(wanted, dump(*Hive::open(read_file(file))), "what was edited, and what our reader finds");
    expect_same(wanted, dump_by_libhivex(file), "what was edited, and what libhivex finds");
}

/// BRITLOCK_CASES sets how many sequences are drawn, BRITLOCK_SEED where they begin.
TEST(Differential, EverySequenceOfEditsIsReadAlikeByAnotherReader) {
    const auto number = [](const char* name, int otherwise) {
        const char* text = std::getenv(name);
        return text ? std::atoi(text) : otherwise;
    };
    const int cases = number("BRITLOCK_CASES", 1000);
    constexpr int sequences_of_one_hive = 25;
    TemporaryFolder folder;
    const fs::path file = folder / "NTUSER.DAT";
    auto seed = static_cast<uint32_t>(number("BRITLOCK_SEED", 7000));
    std::mt19937 random;
    for (int i = 0; i < cases && !testing::Test::HasFailure(); ++i) {
        if (i % sequences_of_one_hive == 0) {
            random.seed(++seed);
            fs::remove(file);
            const std::array made{"sound/xp-user.NTUSER.DAT", "sound/names-1.5", "sound/owners"};
            const size_t kind = seed % (made.size() + 2);
            if (kind < made.size()) {
                fs::copy_file(fs::path(MADE_HIVES) / made[kind], file);
            } else {
                Hive empty = Hive::create(
                    {.minor_version = kind == 3 ? 3u : 5u, .file_name = u"NTUSER.DAT", .now = 1});
                ASSERT_TRUE(write_new(*hostfile::place_of(file), empty, 1));
            }
        }
        SCOPED_TRACE("seed " + std::to_string(seed) + ", sequence " +
                     std::to_string(i % sequences_of_one_hive));
        edit_and_compare(file, random);
    }
}

}  // namespace
}  // namespace regf
