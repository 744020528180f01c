#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <map>

#include "regf/dump.h"
#include "regf_file/hive_file.h"

namespace regf {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const fs::path samples = SAMPLE_HIVES;

struct Samples : testing::Test {
    void SetUp() override {
        if (!fs::exists(samples)) GTEST_SKIP() << "the sample hives are not there";
    }
};

Result<HiveFile> open_file(const fs::path& file) {
    const HostPlace place = *hostfile::place_of(file);
    auto lock = FileLock::acquire(place);
    if (!lock) return lock.error();
    return read_hive(place, *lock);
}

TEST_F(Samples, AreReadAsAnotherReaderReadsThemOrRefused) {
    if (!foreign_reader_is_there()) GTEST_SKIP() << "the other reader (python3-hivex) is not installed";
    std::map<std::string, std::string> verdicts;
    int same = 0;
    for (const auto& entry : fs::recursive_directory_iterator(samples)) {
        const std::string name = entry.path().filename().string();
        if (!entry.is_regular_file() || name == "README.md" || name.find(".LOG") != std::string::npos)
            continue;
        const auto ours = open_file(entry.path());
        if (!ours) {
            EXPECT_THAT(ours.error().message, HasSubstr(name));
            verdicts[name] = "refused: " + ours.error().message;
            continue;
        }
        if (ours->hive.recovered()) continue;  // another reader sees the unfinished state
        const std::string theirs = foreign_dump(entry.path());
        if (theirs.empty()) {
            verdicts[name] = "read by us alone";
            continue;
        }
        expect_same(dump(ours->hive), theirs, name);
        verdicts[name] =
            "same" + (ours->hive.read_only_reason().empty() ? "" : ", " + ours->hive.read_only_reason());
        ++same;
    }
    for (const auto& [name, verdict] : verdicts)
        std::cout << "  " << name << ": " << verdict << "\n";
    EXPECT_GE(same, 8);
}

TEST_F(Samples, OfDirtyHivesAreRecoveredAsWindowsDoes) {
    struct Dirty {
        const char* hive;
        const char* recovered;
    };
    for (const Dirty& d : {Dirty{"dirty/old-log/OldDirtyHive", "dirty/old-log/RecoveredHive_Windows7"},
                           Dirty{"dirty/new-log/NewDirtyHive", "dirty/new-log/RecoveredHive_Windows10"}}) {
        const auto ours = open_file(samples / d.hive);
        ASSERT_TRUE(ours) << ours.error().message;
        EXPECT_TRUE(ours->hive.recovered());
        EXPECT_EQ(ours->hive.read_only_reason(), "");
        const auto windows = open_file(samples / d.recovered);
        ASSERT_TRUE(windows);
        expect_same(dump(ours->hive), dump(windows->hive), d.hive);
    }
    const auto bad = open_file(samples / "dirty/bad-log/BadLogHive");
    ASSERT_FALSE(bad);
    EXPECT_EQ(bad.error().kind, ErrorKind::dirty);
    const auto without_log = Hive::open(read_file(samples / "dirty/new-log/NewDirtyHive"));
    ASSERT_FALSE(without_log);
    EXPECT_EQ(without_log.error().kind, ErrorKind::dirty);
}

TEST_F(Samples, WithRulesBrokenAreNeverWritten) {
    for (const char* name : {"BadListHive", "BadSubkeyHive", "GarbageHive", "InvalidParentHive",
                             "TruncatedHive", "WrongOrderHive"}) {
        SCOPED_TRACE(name);
        auto opened = open_file(samples / "odd" / name);
        if (!opened) continue;
        Hive& hive = opened->hive;
        EXPECT_NE(hive.read_only_reason(), "");
        const std::string before = full_dump(hive);
        const auto refused = hive.create_subkey(hive.root(), u"New", 1);
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.error().kind, ErrorKind::unsupported);
        EXPECT_FALSE(hive.set_value(hive.root(), u"x", {REG_DWORD, {1, 0, 0, 0}}, 1));
        EXPECT_FALSE(hive.delete_key(hive.root(), 1));
        EXPECT_EQ(full_dump(hive), before);
    }
}

}  // namespace
}  // namespace regf
