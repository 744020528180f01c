#include "regf/dump.h"
#include "regf/names.h"

namespace regf {
namespace {

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

const std::string unfinished = MADE_HIVES "/recoverable/xp/hive";

Bytes of_a_later_version(Bytes image) {
    put32(image, base_block::minor, 6);
    put32(image, base_block::checksum, base_block_checksum(image));
    return image;
}

TEST(Recovery, DoesNotMakeAHiveOfALaterVersionWritable) {
    auto hive = Hive::open(of_a_later_version(read_file(unfinished)),
                           {{"LOG", of_a_later_version(read_file(unfinished + ".LOG"))}});
    ASSERT_TRUE(hive) << hive.error().message;
    EXPECT_TRUE(hive->recovered());
    EXPECT_EQ(failure(sealed_image(*hive, 10)), ErrorKind::unsupported);
}

TEST(Recovery, OfAFileIsWrittenWithItsFirstChange) {
    TemporaryFolder folder;
    const HostPlace place = *hostfile::place_of(folder / "SYSTEM");
    const Bytes dirty = read_file(unfinished);
    write_file(place.path(), dirty);
    write_file(folder / "system.Log1", read_file(unfinished + ".LOG"));
    auto lock = FileLock::acquire(place);
    ASSERT_TRUE(lock);
    auto file = read_hive(place, *lock);
    ASSERT_TRUE(file) << file.error().message;
    EXPECT_TRUE(file->hive.recovered());
    ASSERT_TRUE(commit(place, file->hive, file->identity, 10));
    EXPECT_TRUE(read_file(place.path()) == dirty) << "who only looks changes nothing";
    auto wanted = Hive::open(read_file(unfinished + ".recovered"));
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
