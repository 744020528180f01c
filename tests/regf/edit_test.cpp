#include <random>

#include "regf/dump.h"
#include "regf/names.h"
#include "regf/random_edits.h"

namespace regf {
namespace {

/// The image as it would be written, held against every rule.
Bytes sealed(Hive& hive) {
    Bytes image = *sealed_image(hive, 5000);
    for (const Finding& finding : validate(image))
        ADD_FAILURE() << finding.text;
    return image;
}

size_t count_lists(const Bytes& image, const char* kind) {
    size_t count = 0;
    for (size_t at = base_block_size; at + 8 < image.size(); at += 8)
        count += (image[at + 3] & 0x80) && has_signature(ByteView(image).subspan(at + 4), kind);
    return count;
}

std::u16string numbered(const char16_t* stem, size_t number) {
    const std::string digits = std::to_string(number);
    return std::u16string(stem).append(digits.begin(), digits.end());
}

struct OfVersion : TestWithParam<uint32_t> {
    Hive hive = Hive::create({.minor_version = GetParam(), .file_name = u"x", .now = 1000});
};
INSTANTIATE_TEST_SUITE_P(Hives, OfVersion, Values(3u, 5u), PrintToStringParamName());

TEST_P(OfVersion, SplitsAndShrinksListsOfThousandsOfKeys) {
    std::vector<std::u16string> names;
    for (size_t i = 0; i < 1600; ++i)
        names.push_back(numbered(i < 200 ? u"\u0416" : u"Key ", 10000 + i));
    const bool old = GetParam() == 3;
    const Key parent = *hive.create(u"Parent", 1);
    for (size_t i = 0; i < names.size(); ++i) {
        ASSERT_TRUE(hive.create_subkey(parent, names[i], 2));
        if (i != 400 && i != 800 && i + 1 != names.size()) continue;
        const Bytes image = sealed(hive);
        EXPECT_EQ(count_lists(image, "ri"), i > 1012);
        EXPECT_GE(count_lists(image, old ? "li" : "lh"), i > 1012 ? 3 : 0);
        EXPECT_EQ(count_lists(image, "li") > 0, old && i > 507);
        EXPECT_EQ(count_lists(image, "lf") > 0, old);  // the root's own at least
        EXPECT_EQ(count_lists(image, "lh") > 0, !old);
    }
    TemporaryFolder folder;
    write_file(folder / "hive", sealed(hive));
    expect_same(dump(hive), foreign_dump(folder / "hive"), "another reader");
    std::shuffle(names.begin(), names.end(), std::mt19937(1));
    for (size_t i = 0; i < names.size(); ++i) {
        const auto key = hive.find_subkey(parent, names[i]);
        ASSERT_TRUE(key);
        ASSERT_TRUE(hive.delete_key(*key, 3));
        if (i % 500 == 0) sealed(hive);
    }
    EXPECT_TRUE(hive.subkeys(parent).empty());
    EXPECT_EQ(count_lists(sealed(hive), "ri"), 0u);
}

TEST_P(OfVersion, GrowsNoMoreHoweverOftenEverythingIsDeletedAndWrittenAgain) {
    std::mt19937 random(77);
    RandomEdits edits(hive, random, true);
    for (int i = 0; i < 400; ++i)
        edits.edit();
    const std::string content = dump(hive);
    const std::vector<Change> changes = hive.changes();
    std::vector<size_t> sizes{sealed(hive).size()};
    for (int round = 0; round < 4; ++round) {
        for (Key key : hive.subkeys(hive.root()))
            ASSERT_TRUE(hive.delete_key(key, 1));
        for (const auto& value : hive.values(hive.root()))
            ASSERT_TRUE(hive.delete_value(hive.root(), value.name, 1));
        EXPECT_EQ(dump(hive), "K \n");
        for (const Change& change : changes)
            ASSERT_TRUE(hive.apply(change));
        EXPECT_EQ(dump(hive), content);
        sizes.push_back(sealed(hive).size());
    }
    EXPECT_LE(sizes[1], sizes[0] * 6 / 5) << "large cells may find small ones in their place, once";
    EXPECT_EQ(sizes.back(), sizes[1]);
}

TEST_P(OfVersion, StaysAsItIsWhereAnEditAsksForWhatIsThereOrIsRefused) {
    ASSERT_TRUE(hive.create(u"A\\B", 1));
    const Key key = *hive.find(u"a\\b");
    for (const size_t size : {0, 3, 5, 16344, 16345})
        ASSERT_TRUE(hive.set_value(key, numbered(u"v", size), {REG_BINARY, Bytes(size, 7)}, 1));
    std::u16string deepest = u"d";
    for (int level = 3; level <= 512; ++level)
        deepest += u"\\d";
    const Key bottom = *hive.create(deepest, 1);
    const Bytes before = sealed(hive);
    const std::string dump_before = full_dump(hive);
    const size_t changes = hive.changes().size();

    bool created = true;
    EXPECT_EQ(*hive.create(u"\\a\\\\B\\", 9, &created), key);
    EXPECT_FALSE(created);
    for (const auto& value : hive.values(key))
        EXPECT_TRUE(hive.set_value(key, value.name, {value.type, value.data}, 9));
    EXPECT_TRUE(hive.set_value(key, u"V3", {REG_BINARY, Bytes(3, 7)}, 9)) << "in another case";

    EXPECT_EQ(failure(hive.create_subkey(key, u"", 9)), ErrorKind::invalid);
    EXPECT_EQ(failure(hive.create_subkey(key, u"a\\b", 9)), ErrorKind::invalid);
    EXPECT_EQ(failure(hive.create(u"New\\Newer\\" + std::u16string(256, u'x'), 9)), ErrorKind::invalid);
    EXPECT_EQ(failure(hive.create_subkey(bottom, u"x", 9)), ErrorKind::invalid);
    EXPECT_EQ(failure(hive.create(u"e" + deepest + u"\\x", 9)), ErrorKind::invalid);
    EXPECT_EQ(failure(hive.set_value(key, std::u16string(16384, u'x'), {}, 9)), ErrorKind::invalid);
    EXPECT_EQ(failure(hive.set_value({CellOffset{0x28}}, u"x", {}, 9)), ErrorKind::missing);
    EXPECT_EQ(failure(hive.delete_value(key, u"none", 9)), ErrorKind::missing);
    EXPECT_EQ(failure(hive.delete_key({CellOffset{0x28}}, 9)), ErrorKind::missing);
    EXPECT_EQ(failure(hive.apply({Change::Kind::delete_key, u"A\\None", {}, {}, 9})), ErrorKind::missing);
    EXPECT_EQ(failure(hive.delete_key(hive.root(), 9)), ErrorKind::refused);

    EXPECT_EQ(hive.changes().size(), changes);
    EXPECT_EQ(full_dump(hive), dump_before);
    EXPECT_TRUE(sealed(hive) == before);
}

/// A key with a descriptor of its own goes, and the room of the descriptor's record is used again.
TEST(Edits, MayPutAnythingWhereASecurityRecordLay) {
    const Bytes image = read_file(MADE_HIVES "/sound/owners");
    for (uint32_t size = 8; size < 600; size += 4) {
        Hive hive = *Hive::open(image);
        for (const Key key : hive.subkeys(hive.root()))
            ASSERT_TRUE(hive.delete_key(key, 2));
        for (char16_t name = u'a'; name <= u'z'; ++name)
            ASSERT_TRUE(
                hive.set_value(hive.root(), std::u16string(1, name), {REG_BINARY, Bytes(size, 0xFF)}, 3));
        ASSERT_TRUE(sealed_image(hive, 4)) << size;
    }
}

TEST(Figures, AreThoseOfWindows) {
    const auto of_stored = [](auto number, std::u16string_view name) {
        const StoredName stored = store_name(name);
        return number(NameView{stored.bytes, stored.compressed});
    };
    EXPECT_EQ(of_stored(name_hash, u"Control Panel"), 0xBD9CD7B9u);
    EXPECT_EQ(of_stored(name_hash, u"\u00EBigenaardig"), 0x4B098ECEu);
    EXPECT_EQ(of_stored(name_hash, u"\u041F\u0440\u0438\u0432\u0435\u0442"), 0x81C3D610u);
    EXPECT_EQ(of_stored(name_hint, u"\u00EBigenaardig"), 0x656769EBu);
    EXPECT_EQ(of_stored(name_hint, u"key\xD81D"), 0u);
    const std::u16string ascending[] = {u"2",      u"3",       u"ss1",    u"SS3",
                                        u"\u009F", u"\u00DF2", u"\u0178", u"\u0430"};
    for (size_t i = 1; i < std::size(ascending); ++i)
        EXPECT_LT(compare_names(ascending[i - 1], ascending[i]), 0) << i;
    EXPECT_TRUE(same_name(u"\u00FF", u"\u0178"));
    constexpr FileTime now = 130000000000000000;
    Hive hive =
        Hive::create({.minor_version = 3, .root_name = u"ROOT", .file_name = u"mini.dat", .now = now});
    const Bytes smallest = *sealed_image(hive, now);
    EXPECT_EQ(smallest.size(), 8192u);
    EXPECT_EQ(get32(smallest, base_block::checksum), 0xCB77AF53u);
}

/// A sequence of edits, the same again from what was noted, and its commit; then both readers read the file.
void edit_and_compare(const fs::path& file, std::mt19937& random) {
    const HostPlace place = *hostfile::place_of(file);
    const FileLock lock = must(FileLock::acquire(place));
    HiveFile opened = must(read_hive(place, lock));
    RandomEdits editing(opened.hive, random);
    for (uint32_t edits = 1 + static_cast<uint32_t>(random() % 40); edits > 0; --edits)
        editing.edit();
    const Bytes before = read_file(file);
    Hive replayed = std::move(*Hive::open(before));
    for (const Change& change : opened.hive.changes())
        ASSERT_TRUE(replayed.apply(change));
    EXPECT_EQ(replayed.changes(), opened.hive.changes());
    must(commit(place, opened.hive, opened.identity, 6));
    const Bytes image = read_file(file);
    EXPECT_TRUE(validate(image).empty());
    // Edits that undo each other are not written, and so neither are their time stamps.
    const auto shown = image == before ? dump : full_dump;
    expect_same(shown(replayed), shown(*Hive::open(image)), "what was edited, and what our reader finds");
    expect_same(dump(replayed), foreign_dump(file), "what was edited, and what another reader finds");
}

#ifdef NDEBUG
constexpr int slowness = 1;
#else
constexpr int slowness = 25;
#endif

/// BRITLOCK_CASES sets how many sequences are drawn, BRITLOCK_SEED where they begin.
TEST(Differential, EverySequenceOfEditsIsReadAlikeByAnotherReader) {
    const auto number = [](const char* name, int otherwise) {
        const char* text = std::getenv(name);
        return text ? std::atoi(text) : otherwise;
    };
    const int cases = std::max(5, number("BRITLOCK_CASES", 1000) / slowness);
    const int sequences_of_one_hive = std::min(cases / 5, 25);  // there are five kinds of hives
    TemporaryFolder folder;
    const fs::path file = folder / "NTUSER.DAT";
    auto seed = static_cast<uint32_t>(number("BRITLOCK_SEED", 7000));
    std::mt19937 random;
    for (int i = 0; i < cases && !Test::HasFailure(); ++i) {
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
