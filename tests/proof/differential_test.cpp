#include <array>
#include <cstdlib>
#include <random>

#include "regf/dump.h"
#include "regf/random_edits.h"

namespace regf {
namespace {

/// A sequence of edits and its commit; then both readers read the file.
void edit_and_compare(const fs::path& file, std::mt19937& random) {
    const HostPlace place = *hostfile::place_of(file);
    auto lock = FileLock::acquire(place);
    ASSERT_TRUE(lock);
    auto opened = read_hive(place, *lock);
    ASSERT_TRUE(opened) << opened.error().message;
    RandomEdits editing(opened->hive, random);
    for (uint32_t edits = 1 + static_cast<uint32_t>(random() % 40); edits > 0; --edits)
        editing.edit();
    const auto written = commit(place, opened->hive, opened->identity, 6);
    ASSERT_TRUE(written) << written.error().message;
    const std::string wanted = dump(opened->hive);
    expect_same(wanted, dump(*Hive::open(read_file(file))), "what was edited, and what our reader finds");
    expect_same(wanted, foreign_dump(file), "what was edited, and what another reader finds");
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
