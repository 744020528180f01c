#include <sys/xattr.h>

#include "regf/dump.h"

namespace regf {
namespace {

using hostfile::fail_system_call;

struct HiveFiles : Test {
    HiveFiles() {
        Hive hive = Hive::create({.file_name = u"user", .now = 1});
        EXPECT_TRUE(hive.create(u"Software\\Policies", 2));
        EXPECT_TRUE(write_new(place, hive, 3));
        old_image = read_file(place.path());
    }
    ~HiveFiles() override { fail_system_call = nullptr; }

    static void edit(Hive& hive) {
        EXPECT_TRUE(hive.set_value(*hive.create(u"Software\\New", 4), u"v", {REG_BINARY, Bytes(9000, 1)}, 4));
    }
    /// Reads, edits and commits.
    Result<Committed> change_file() const {
        auto lock = FileLock::acquire(place);
        if (!lock) return lock.error();
        auto file = read_hive(place, *lock);
        if (!file) return file.error();
        edit(file->hive);
        return commit(place, file->hive, file->identity, 5);
    }
    std::set<std::string> files() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder.path()))
            names.insert(entry.path().filename());
        return names;
    }
    void expect_the_old_one_alone() const {
        EXPECT_TRUE(read_file(place.path()) == old_image);
        EXPECT_EQ(files(), alone);
    }

    TemporaryFolder folder;
    HostPlace place = *hostfile::place_of(folder / "user.dat");
    const std::set<std::string> alone = {"user.dat"};
    Bytes old_image;
};

TEST_F(HiveFiles, AreOldOrNewWhicheverCallFails) {
    ASSERT_TRUE(change_file());
    const Bytes new_image = read_file(place.path());
    ASSERT_TRUE(validate(new_image).empty());
    for (const int error : {EIO, ENOSPC, EACCES, EINTR}) {
        for (const bool lasting : {false, true}) {
            int calls = 0;
            for (int n = 1; n == 1 || calls >= n - 1; ++n) {
                write_file(place.path(), old_image);
                calls = 0;
                std::string failed;
                fail_system_call = [&](const char* call) {
                    if (++calls != n && !(lasting && calls > n)) return 0;
                    failed = call;
                    return error;
                };
                const auto result = change_file();
                fail_system_call = nullptr;
                SCOPED_TRACE(Message() << "call " << n << ", " << failed << ", error " << error);
                EXPECT_TRUE(read_file(place.path()) == (result ? new_image : old_image));
                EXPECT_EQ(files(), alone);
                EXPECT_FALSE(failed == "fsync" && result && result->durability == Durability::flushed);
                EXPECT_THAT(result ? "user.dat" : result.error().message, HasSubstr("user.dat"));
                if (failed.empty()) {
                    EXPECT_TRUE(result);
                    EXPECT_GT(n, 15) << "so many calls at least can fail";
                    break;
                }
            }
        }
    }
}

TEST_F(HiveFiles, AreOnTheDiskBeforeTheyTakeTheNameAndTheFolderAfterwards) {
    std::string order;
    fail_system_call = [&](const std::string& call) {
        if (call == "fsync" || call == "rename") order += call + " ";
        return 0;
    };
    ASSERT_TRUE(change_file());
    EXPECT_EQ(order, "fsync rename fsync ");
}

TEST_F(HiveFiles, ChangedMeanwhileAreLeftAlone) {
    const FileLock lock = must(FileLock::acquire(place));
    HiveFile file = must(read_hive(place, lock));
    EXPECT_TRUE(commit(place, file.hive, file.identity, 5)) << "nothing to write";
    EXPECT_TRUE(read_file(place.path()) == old_image);
    edit(file.hive);
    Hive other = Hive::create({.file_name = u"another", .now = 9});
    write_file(place.path(), *sealed_image(other, 9));
    const Bytes theirs = read_file(place.path());
    EXPECT_EQ(failure(commit(place, file.hive, file.identity, 5)), ErrorKind::changed);
    EXPECT_EQ(failure(write_new(place, file.hive, 5)), ErrorKind::refused);
    EXPECT_TRUE(read_file(place.path()) == theirs);
    fs::remove(place.path());
    fail_system_call = [&](const std::string& call) {
        if (call == "rename") write_file(place.path(), theirs);
        return 0;
    };
    EXPECT_FALSE(write_new(place, file.hive, 5)) << "there since the last moment";
    EXPECT_TRUE(read_file(place.path()) == theirs);
    EXPECT_EQ(files(), alone);
}

TEST_F(HiveFiles, ThatReadBackOtherwiseThanTheyWereWrittenStayOld) {
    fail_system_call = [&](const std::string& call) {
        for (const auto& entry : fs::directory_iterator(folder.path())) {
            if (call != "sync_file_range" || entry.path() == place.path()) continue;
            Bytes written = read_file(entry.path());
            written[written.size() / 2] ^= 1;
            write_file(entry.path(), written);
        }
        return 0;
    };
    EXPECT_EQ(failure(change_file()), ErrorKind::io);
    expect_the_old_one_alone();
}

TEST_F(HiveFiles, AreReplacedInSpiteOfWhatLiesBeside) {
    const auto be_killed = [&] {
        (void)end_of_process([&] {
            fail_system_call = [](const std::string& call) { return call == "rename" ? raise(SIGKILL) : 0; };
            return change_file() ? 1 : 0;
        });
    };
    be_killed();
    const std::string left = *files().begin();
    ASSERT_NE(left, "user.dat");
    ASSERT_TRUE(change_file());
    EXPECT_EQ(files(), alone) << "what the killed run left";

    fs::create_directory(folder / left);
    be_killed();
    EXPECT_TRUE(read_file(place.path()) != old_image);
    ASSERT_TRUE(change_file());
    EXPECT_EQ(files(), (std::set<std::string>{left, "user.dat"})) << "a folder that somebody made";
}

TEST_F(HiveFiles, HeldByAnotherProgramAreInUse) {
    for (const bool by_record : {false, true}) {
        const int file = open(place.path().c_str(), O_RDWR);
        struct flock whole {};
        whole.l_type = F_WRLCK;
        ASSERT_EQ(by_record ? fcntl(file, F_SETLK, &whole) : flock(file, LOCK_SH), 0);
        const int end = end_of_process([&] {  // a process holds no record against itself
            const auto lock = FileLock::acquire(place);
            return lock ? 99 : static_cast<int>(lock.error().kind);
        });
        EXPECT_EQ(WEXITSTATUS(end), static_cast<int>(ErrorKind::in_use));
        (void)close(file);
        EXPECT_TRUE(FileLock::acquire(place)) << "once it is free again";
    }
}

TEST_F(HiveFiles, KeepModeOwnerAndAttributes) {
    const auto shown = [&](const char* format) {
        return run_in_shell(std::string("stat -c '") + format + "' '" + place.path() + "'").output;
    };
    // The usual mask takes a bit of this mode from a new file: it has to be given back.
    ASSERT_EQ(chmod(place.path().c_str(), 0646), 0);
    ASSERT_TRUE(geteuid() != 0 || chown(place.path().c_str(), 12, 34) == 0);
    const bool attributes = setxattr(place.path().c_str(), "user.mark", "kept", 4, 0) == 0;
    const std::string before = shown("%f %u %g"), file_before = shown("%i");
    ASSERT_TRUE(change_file());
    EXPECT_NE(shown("%i"), file_before);
    EXPECT_EQ(shown("%f %u %g"), before);
    EXPECT_EQ(files(), alone);
    if (!attributes) GTEST_SKIP() << "no extended attributes on this file system";
    char value[8] = {};
    EXPECT_EQ(getxattr(place.path().c_str(), "user.mark", value, sizeof value), 4);
    EXPECT_STREQ(value, "kept");
}

}  // namespace
}  // namespace regf
