#include "regf/commit_check.h"
#include "regf/dump.h"
#include "regf/recovery.h"
#include "regf/whole_check.h"

namespace regf {
namespace {

const fs::path made = MADE_HIVES;
const fs::path real = REAL_HIVES;

/// The hives made for the tests that lie in one of their folders, and those of the real ones that are there.
std::vector<fs::path> hives(const char* folder, std::initializer_list<const char*> real_ones) {
    std::vector<fs::path> out;
    for (const auto& entry : fs::directory_iterator(made / folder)) {
        if (entry.path().extension() != ".txt") out.push_back(entry.path());
    }
    EXPECT_THAT(out, Not(IsEmpty()));
    for (const char* name : real_ones) {
        if (fs::exists(real / name)) out.push_back(real / name);
    }
    std::sort(out.begin(), out.end());
    return out;
}

Result<HiveFile> open_file(const fs::path& file) {
    const HostPlace place = *hostfile::place_of(file);
    auto lock = FileLock::acquire(place);
    if (!lock) return lock.error();
    return read_hive(place, *lock);
}

/// Against what was put into the hive, where that is known.
void expect_contents(const Hive& hive, const fs::path& file) {
    const Bytes text = read_file(file.string() + ".txt");
    if (!text.empty()) expect_same(full_dump(hive), std::string(text.begin(), text.end()), file);
}

void expect_as_another_reader_reads(const Hive& hive, const fs::path& file) {
    if (file.filename() == "halves-of-pairs") return;  // the other reader cannot tell such names
    expect_same(dump(hive), foreign_dump(file), file);
}

/// The head of a file after a commit at a time, when it was this before.
void expect_new_head(const Bytes& before, const Bytes& after, FileTime now) {
    for (const size_t sequence : {base_block::primary_sequence, base_block::secondary_sequence})
        EXPECT_EQ(get32(after, sequence), get32(before, base_block::primary_sequence) + 1);
    for (const size_t time : {base_block::last_written, base_block_size + bin::timestamp})
        EXPECT_EQ(get64(after, time), get64(before, time) == 0 ? 0 : now);
}

/// Is there the hash or hint that the makers of the hives have put instead of another?
bool has_odd_hash(const Bytes& image) {
    return std::string_view(reinterpret_cast<const char*>(image.data()), image.size()).find("XXXX") <
           image.size();
}

/// Some of everything, and all of it undone. Windows finds a key by the hash it stored, and its capitals are
/// not ours in every version: those of other keys stay as they were.
void edit_and_undo(Hive& hive, const fs::path& file) {
    const std::string before = dump(hive);
    const size_t faults = validate(read_file(file)).size();
    const Key key = must(hive.create(u"Zebra\\Inner", 5));
    for (const size_t size : {0, 4, 5, 600, 16344, 16345, 40000})
        ASSERT_TRUE(
            hive.set_value(key, u"v" + std::u16string(size % 7, u'x'), {REG_BINARY, Bytes(size, 7)}, 6));
    const Bytes edited = *sealed_image(hive, 7);
    EXPECT_LE(validate(edited).size(), faults);
    expect_new_head(read_file(file), edited, 7);
    EXPECT_EQ(has_odd_hash(edited), has_odd_hash(read_file(file)));
    TemporaryFolder folder;
    const fs::path copy = folder / file.filename().string();
    write_file(copy, edited);
    expect_as_another_reader_reads(hive, copy);
    ASSERT_TRUE(hive.delete_key(*hive.find(u"Zebra"), 8));
    expect_same(dump(*Hive::open(*sealed_image(hive, 9))), before, file);
}

TEST(Samples, GiveNewKeysTheSecurityOfThoseAround) {
    Hive hive = must(open_file(made / "sound/xp-user.NTUSER.DAT")).hive;
    const std::u16string current = u"Software\\Microsoft\\Windows\\CurrentVersion\\";
    const std::u16string storage = u"Software\\Microsoft\\Protected Storage System Provider";
    const std::u16string users = storage + u"\\S-1-5-21-1417001333-854245398-1801674531-1004";
    const auto security = [&](const std::u16string& path) { return hex(hive.security(*hive.find(path))); };
    const std::string own = security(u""), policies = security(current + u"Policies"),
                      secret = security(users);
    ASSERT_TRUE(own != policies && policies != secret && secret != own);
    for (const auto& [path, expected] :
         {std::pair(current + u"Policies\\Explorer\\New\\Newer", policies),
          {current + u"Policies\\New", policies},
          {u"Software\\Policies\\New", policies},
          {u"Software\\New", own},
          {storage + u"\\New", secret},  // as its one sibling, not as its parent
          {users + u"\\New", secret}}) {
        ASSERT_TRUE(hive.create(path, 5));
        EXPECT_EQ(security(path), expected) << fs::path(path);
    }
}

/// The judge of commits looks at what the changes could reach alone: whatever the new image holds that it
/// should not, it passes nothing that a reader or the slow judge would see.
TEST(Samples, WithAnythingElseInThemArePassedByNoJudge) {
    Hive hive = std::move(*Hive::open(read_file(made / "tolerated/orphan")));
    const Key key = *hive.create(u"New\\Inner", 5);
    ASSERT_TRUE(hive.set_value(key, u"v", {REG_BINARY, Bytes(600, 7)}, 6));
    for (const Key old : hive.subkeys(hive.root())) {
        (void)hive.set_value(old, u"v", {REG_DWORD, {1, 2, 3, 4}}, 6);  // may be refused for the key's flags
        if (const auto below = hive.subkeys(old); !below.empty()) (void)hive.delete_key(below.front(), 6);
    }
    ASSERT_GT(hive.changes().size(), 4u);
    const auto sealed = must(hive.seal(7));
    const std::string text = full_dump(*Hive::open(sealed.image));
    const Image opened = image_of(sealed.opened);
    int differing = 0;
    const auto is_passed = [&](size_t at, uint32_t word) {
        Bytes wrong(sealed.image.begin(), sealed.image.end());
        put32(wrong, at, word);
        std::set<uint32_t> pages(sealed.changed_pages.begin(), sealed.changed_pages.end());
        pages.insert(static_cast<uint32_t>(at / bin_unit));
        const std::vector<uint32_t> changed_pages(pages.begin(), pages.end());
        const bool passed = judge({opened, image_of(wrong), changed_pages, hive.changes(), {}}).fault.empty();
        const auto read = Hive::open(wrong);
        const bool differs = !read || !read->read_only_reason().empty() || full_dump(*read) != text;
        differing += differs;
        EXPECT_FALSE(passed && differs) << at << ", " << word;
        EXPECT_EQ(passed ? whole_check(sealed.opened, wrong, hive.changes()) : "", "") << at << ", " << word;
        return passed;
    };
    const Image image = image_of(sealed.image);
    const uint32_t end = image.bins_size();
    std::vector<uint32_t> used, holes;
    for (uint32_t cell = image.cells().first_from(0, end); cell < end;
         cell = image.cells().first_from(cell + 8, end))
        (image.size_field(cell) < 0 ? used : holes).push_back(cell);
    for (size_t at = base_block_size; at + 4 <= sealed.image.size(); at += 4) {
        const uint32_t word = get32(sealed.image, at);
        for (const int bit : {0, 8, 16, 24})
            (void)is_passed(at, word ^ 1u << bit);
        if (!image.cell_at(CellOffset{word})) continue;  // else it leads to a cell: let it lead to others
        for (const uint32_t cell : used)
            if (cell != word) (void)is_passed(at, cell);
    }
    EXPECT_GT(differing, 200);
    ASSERT_FALSE(holes.empty());
    for (const uint32_t cell : holes)
        EXPECT_FALSE(is_passed(in_file(cell), static_cast<uint32_t>(-image.size_field(cell)))) << "a leak";
}

TEST(Samples, AreReadAsAnotherReaderReadsThemAndCanBeEdited) {
    for (const bool sound : {true, false}) {
        const std::initializer_list<const char*> real_ones = {"xp-user.NTUSER.DAT",    "win7-user.NTUSER.DAT",
                                                              "odd/BigDataHive",       "odd/DupNameHive",
                                                              "odd/ExtendedASCIIHive", "odd/UnicodeHive"};
        for (const fs::path& file : sound ? hives("sound", real_ones) : hives("tolerated", {})) {
            SCOPED_TRACE(file);
            Hive hive = must(open_file(file)).hive;
            EXPECT_FALSE(hive.recovered());
            EXPECT_EQ(hive.read_only_reason(), "");
            expect_contents(hive, file);
            expect_as_another_reader_reads(hive, file);
            const auto findings = validate(read_file(file));
            EXPECT_EQ(findings.empty(), sound || file.parent_path() != made / "tolerated");
            edit_and_undo(hive, file);
        }
    }
}

TEST(Samples, WithRulesBrokenAreNeverWritten) {
    for (const fs::path& file :
         hives("read-only", {"odd/InvalidParentHive", "odd/TruncatedHive", "odd/WrongOrderHive"})) {
        SCOPED_TRACE(file);
        Hive hive = must(open_file(file)).hive;
        expect_contents(hive, file);
        EXPECT_NE(hive.read_only_reason(), "");
        EXPECT_EQ(failure(hive.create_subkey(hive.root(), u"New", 1)), ErrorKind::unsupported);
        EXPECT_FALSE(hive.set_value(hive.root(), u"x", {REG_DWORD, {1, 0, 0, 0}}, 1));
    }
    for (const fs::path& file : hives("refused", {"odd/BadListHive", "odd/BadSubkeyHive"})) {
        SCOPED_TRACE(file);
        const auto opened = open_file(file);
        ASSERT_EQ(failure(opened), ErrorKind::damaged);
        EXPECT_THAT(opened.error().message, HasSubstr(file.filename().string()));
    }
}

std::vector<Log> logs_beside(const fs::path& file) {
    std::vector<Log> logs;
    for (const char* ending : {".LOG", ".LOG1", ".LOG2"}) {
        if (fs::exists(file.string() + ending)) logs.push_back({ending, read_file(file.string() + ending)});
    }
    return logs;
}

TEST(Samples, OfUnfinishedWritesAreRecoveredAsWindowsDoes) {
    for (const fs::path& folder : hives("recoverable", {})) {
        SCOPED_TRACE(folder);
        const fs::path file = folder / "hive";
        const Hive ours = must(open_file(file)).hive;
        EXPECT_TRUE(ours.recovered());
        EXPECT_EQ(ours.read_only_reason(), "");
        expect_contents(ours, file);
        const auto recovered = recover(read_file(file), logs_beside(file));
        EXPECT_TRUE(recovered && *recovered == read_file(folder / "hive.recovered")) << "byte for byte";
    }
    for (const auto& [dirty, by_windows] :
         {std::pair("old-log/OldDirtyHive", "old-log/RecoveredHive_Windows7"),
          {"new-log/NewDirtyHive", "new-log/RecoveredHive_Windows10"}}) {
        if (!fs::exists(real / "dirty" / dirty)) continue;
        const Hive ours = must(open_file(real / "dirty" / dirty)).hive;
        EXPECT_TRUE(ours.recovered());
        expect_same(dump(ours), dump(open_file(real / "dirty" / by_windows)->hive), dirty);
    }
}

TEST(Samples, OfUnfinishedWritesThatNothingCompletesAreRefused) {
    for (const fs::path& file : hives("unrecoverable", {"odd/GarbageHive", "dirty/bad-log/BadLogHive"})) {
        SCOPED_TRACE(file);
        EXPECT_EQ(failure(open_file(fs::is_directory(file) ? file / "hive" : file)), ErrorKind::dirty);
    }
}

const std::string unfinished = MADE_HIVES "/recoverable/xp/hive";

Bytes of_a_later_version(Bytes image) {
    put32(image, base_block::minor, 6);
    repair_checksum(image);
    return image;
}

TEST(Recovery, DoesNotMakeAHiveOfALaterVersionWritable) {
    Hive hive = must(Hive::open(of_a_later_version(read_file(unfinished)),
                                {{"LOG", of_a_later_version(read_file(unfinished + ".LOG"))}}));
    EXPECT_TRUE(hive.recovered());
    EXPECT_EQ(failure(sealed_image(hive, 10)), ErrorKind::unsupported);
}

TEST(Recovery, OfAFileIsWrittenWithItsFirstChange) {
    TemporaryFolder folder;
    const HostPlace place = *hostfile::place_of(folder / "SYSTEM");
    const Bytes dirty = read_file(unfinished);
    write_file(place.path(), dirty);
    write_file(folder / "system.Log1", read_file(unfinished + ".LOG"));
    const FileLock lock = must(FileLock::acquire(place));
    HiveFile file = must(read_hive(place, lock));
    EXPECT_TRUE(file.hive.recovered());
    ASSERT_TRUE(commit(place, file.hive, file.identity, 10));
    EXPECT_TRUE(read_file(place.path()) == dirty) << "who only looks changes nothing";
    auto wanted = Hive::open(read_file(unfinished + ".recovered"));
    for (Hive* hive : {&file.hive, &*wanted})
        ASSERT_TRUE(hive->create(u"New", 9));
    ASSERT_TRUE(commit(place, file.hive, file.identity, 10));
    const Hive clean = *Hive::open(read_file(place.path()));
    EXPECT_FALSE(clean.recovered());
    EXPECT_EQ(full_dump(clean), full_dump(*wanted));
}

}  // namespace
}  // namespace regf
