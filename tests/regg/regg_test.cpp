// The hive tool as a program of its own: each of its messages, and what is left of a hive after each fault.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <grp.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>

#include "base/text.h"
#include "machine/hive_editing.h"
#include "machine/memory/memory_registry.h"
#include "machine/offline_fixture.h"
#include "regg/hive_tool.h"

using namespace machine;
namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

constexpr auto key = "Anna\\Software\\Lock";

struct Ran {
    int code;
    std::string line;
};

/// Runs the tool by hand, as an administrator would in a shell; `environment` stands before the command.
Ran run_tool(const std::string& arguments, const std::string& environment) {
    const std::string line = environment + " '" + PROGRAM_FOLDER + "/regg.exe' " + arguments + " 2>&1";
    FILE* pipe = popen(line.c_str(), "r");
    std::string output;
    for (int c = 0; (c = std::fgetc(pipe)) != EOF;)
        output += static_cast<char>(c);
    return {WEXITSTATUS(pclose(pipe)), output};
}

/// Runs the tool in this process, where calls of the system can be made to fail.
ToolReport run_here(const OfflineFixture& fixture, const std::string& key_to_unload) {
    regg::Setting setting{DriveMap(), MountTable(fixture.mounts_folder())};
    EXPECT_TRUE(setting.drives.add_drive('C', fixture.disk().string()));
    return regg::run(std::move(setting), {"unload", key_to_unload}).report;
}

Registry::Disposition make_lock_key(OfflineFixture& fixture) {
    return fixture.machine().registry.create_key(Root::users, key);
}

WinCode set(OfflineFixture& fixture, int32_t number) {
    return fixture.machine().registry.set(Root::users, key, "a", dword_value(number)).action;
}

/// The number that stands in Anna's file; -1 where there is none.
int stored(const OfflineFixture& fixture) {
    EXPECT_EQ(findings(fixture.hive_of("Anna")), "");
    const auto value = read_value(fixture.hive_of("Anna"), u"Software\\Lock", u"a");
    return value ? value->data.at(0) : -1;
}

/// Writes the record of a mount, as private as it must be.
void write_record(const fs::path& file, std::string_view bytes) {
    write_bytes(file, bytes);
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
}

regf::Bytes bytes_as_vector(const fs::path& file) {
    const std::string bytes = bytes_of(file);
    return {bytes.begin(), bytes.end()};
}

/// The only record of a mount.
fs::path record_of(OfflineFixture& fixture) {
    return fs::directory_iterator(fixture.offline().mounts().folder())->path();
}

/// Does something in a process that then dies at once, with no destructor run.
void in_dying_process(const std::function<void()>& work) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        work();
        (void)raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
}

/// What must hold in a process of another user.
void in_process_of(uid_t user, const std::function<bool()>& holds) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const bool changed = setgroups(0, nullptr) == 0 && setgid(user) == 0 && setuid(user) == 0;
        _exit(changed && holds() ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

/// A file system of its own on a folder, of a size that fills soon. Not ready where this process may not
/// mount.
class SmallDisk {
  public:
    SmallDisk(const fs::path& folder, const std::string& size) : folder_(folder) {
        fs::create_directories(folder);
        ready_ = mount("none", folder.c_str(), "tmpfs", 0, ("mode=0700,size=" + size).c_str()) == 0;
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk() {
        if (ready_) (void)umount2(folder_.c_str(), MNT_DETACH);
    }
    bool ready() const { return ready_; }
    void fill() {
        std::ofstream file(folder_ / "filler", std::ios::binary);
        const std::string block(4096, 'x');
        while (file.write(block.data(), static_cast<std::streamsize>(block.size())).flush())
            continue;
    }
    void make_room() { fs::remove(folder_ / "filler"); }

  private:
    fs::path folder_;
    bool ready_ = false;
};

}  // namespace

TEST(HiveTool, LeavesAHiveThatNobodyChangedByteForByte) {
    OfflineFixture fixture;
    const std::string before = bytes_of(fixture.hive_of("Anna"));
    ASSERT_EQ(fixture.load("Anna"), 0u);
    Registry& registry = fixture.machine().registry;
    EXPECT_EQ(registry.create_key(Root::users, "Anna\\Software"), Registry::Disposition::opened);
    EXPECT_EQ(registry.set(Root::users, "Anna\\Control Panel\\Sound", "Beep", text_value("yes")).action,
              success);
    EXPECT_EQ(registry.delete_value(Root::users, "Anna\\Software", "none").action, file_not_found);
    ASSERT_EQ(fixture.unload("Anna"), 0u);
    EXPECT_EQ(bytes_of(fixture.hive_of("Anna")), before);
    EXPECT_TRUE(fixture.offline().mounts().mounts()->empty());
}

TEST(HiveTool, WritesChangesOnceAndOnlyWhenItUnloads) {
    OfflineFixture fixture;
    const std::string before = bytes_of(fixture.hive_of("Anna"));
    ASSERT_EQ(fixture.load("Anna"), 0u);
    EXPECT_EQ(make_lock_key(fixture), Registry::Disposition::created);
    EXPECT_EQ(set(fixture, 1), success);
    ASSERT_EQ(fixture.load("Ben"), 0u) << "the tool works for another user meanwhile";
    EXPECT_EQ(set(fixture, 2), success);
    EXPECT_EQ(bytes_of(fixture.hive_of("Anna")), before);
    ASSERT_EQ(fixture.unload("Anna"), 0u);
    EXPECT_EQ(stored(fixture), 2);
    EXPECT_EQ(make_lock_key(fixture), Registry::Disposition::failed);
    ASSERT_EQ(fixture.unload("Ben"), 0u);
    EXPECT_EQ(fixture.troubles(), "");
}

TEST(HiveTool, SaysInOneLineWhyItRefuses) {
    OfflineFixture fixture;
    const fs::path disk = fixture.disk();
    const std::string hive = fixture.hive_of("Anna").string();
    const std::string drives = "BRIGHTLOCK_DRIVES='C=" + disk.string() + "' ";
    const std::string mounts = "BRIGHTLOCK_MOUNTS='" + (fixture.scratch() / "by-hand").string() + "' ";
    const auto quoted = [](const std::string& text) { return "'" + text + "' "; };
    write_bytes(disk / "text.dat", "not a hive at all");
    write_bytes(disk / "empty.dat", "");
    std::string damaged = bytes_of(hive);
    damaged.resize(damaged.size() / 2);
    write_bytes(disk / "damaged.dat", damaged);
    std::string dirty = bytes_of(hive);
    dirty[4] = static_cast<char>(dirty[4] + 1);  // a write was begun and never ended
    write_bytes(disk / "dirty.dat", dirty);
    write_bytes(disk / "readonly.dat", bytes_of(hive));
    fs::permissions(disk / "readonly.dat", fs::perms::owner_read);
    write_bytes(disk / "locked.dat", bytes_of(hive));
    const Descriptor other(open((disk / "locked.dat").c_str(), O_RDONLY));
    ASSERT_EQ(flock(other.number(), LOCK_EX), 0);
    ASSERT_EQ(run_tool("load " + quoted(hive) + "'HKU\\Anna'", mounts).code, 0);

    const struct {
        std::string arguments;
        const char* message;
        bool with_drives = true;
    } rows[] = {
        {"", "the command is"},
        {"load", "the command is"},
        {"load " + quoted(hive) + "'HKU\\Ben' more", "the command is"},
        {"unload 'HKU\\two' words", "the command is"},
        {"save 'HKU\\Anna'", "the command is"},
        {"load " + quoted(hive) + "'HKLM\\Ben'", "not a key directly below HKU"},
        {"load " + quoted(hive) + "'HKU\\Ben\\Software'", "not a key directly below HKU"},
        {"load " + quoted(hive) + "'HKU\\'", "not a key directly below HKU"},
        {"load " + quoted(hive) + "'HKU\\Жанна'", "cannot spell"},
        {"unload 'HKU\\Nobody'", "HKU\\Nobody: no hive is mounted there"},
        {"load " + quoted(hive) + "'HKU\\Ben'", "mounted already", false},
        {"load " + quoted(hive) + "'HKU\\Ben'", "on no drive of this installation"},
        {"load 'C:\\Documents and Settings\\Ben\\NTUSER.DAT' 'HKU\\anna'", "another hive is mounted there"},
        {"load 'C:\\Documents and Settings\\Ben\\NTUSER.DAT' 'HKU\\Ben'", "no folder is known", false},
        {"load 'NTUSER.DAT' 'HKU\\Ben'", "not the full path"},
        {"load 'C:\\none.dat' 'HKU\\Ben'", "is not there"},
        {"load 'Z:\\none.dat' 'HKU\\Ben'", "is not there"},
        {"load 'C:\\WINDOWS' 'HKU\\Ben'", "not a regular file"},
        {"load 'C:\\text.dat' 'HKU\\Ben'", "text.dat: not a registry hive"},
        {"load 'C:\\empty.dat' 'HKU\\Ben'", "empty.dat: not a registry hive"},
        {"load 'C:\\damaged.dat' 'HKU\\Ben'", "damaged at 0x"},
        {"load 'C:\\dirty.dat' 'HKU\\Ben'", "not finished"},
        {"load 'C:\\readonly.dat' 'HKU\\Ben'", "no permission to write"},
        {"load 'C:\\locked.dat' 'HKU\\Ben'", "in use by another program"},
        {"load 'C:\\Documents and Settings\\Ben\\NTUSER.DAT' 'HKU\\" + std::string(121, 'x') + "'",
         "too long"},
    };
    for (const auto& row : rows) {
        const Ran ran = run_tool(row.arguments, mounts + (row.with_drives ? drives : ""));
        EXPECT_EQ(ran.code, 1) << row.arguments;
        EXPECT_TRUE(ran.line.starts_with("regg: ")) << row.arguments << "\n" << ran.line;
        EXPECT_EQ(ran.line.find('\n'), ran.line.size() - 1) << row.arguments << "\n" << ran.line;
        EXPECT_THAT(ran.line, HasSubstr(row.message)) << row.arguments;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(fixture.scratch() / "by-hand"), {}), 1)
        << "nothing is half mounted";
    write_bytes(disk / "hiberfil.sys", "hibr");
    EXPECT_THAT(
        run_tool("load 'C:\\Documents and Settings\\Ben\\NTUSER.DAT' 'HKU\\Ben'", mounts + drives).line,
        HasSubstr("this Windows hibernates"));
    EXPECT_EQ(run_tool("unload 'HKU\\ANNA'", mounts).code, 0);
}

TEST(HiveTool, KeepsAwayFromAHiveThatAnotherRunWorksOn) {
    OfflineFixture fixture;
    ASSERT_EQ(fixture.load("Anna"), 0u);
    const ToolReport refused = run_here(fixture, "HKU\\Anna");
    EXPECT_EQ(refused.why, regf::ErrorKind::in_use);
    EXPECT_THAT(refused.detail, HasSubstr("in use by another program"));
    EXPECT_EQ(make_lock_key(fixture), Registry::Disposition::created);
    EXPECT_EQ(set(fixture, 3), success);
    EXPECT_EQ(fixture.unload("Anna"), 0u);
    EXPECT_EQ(stored(fixture), 3);
}

TEST(HiveTool, TwoInstancesOnOneUserLoseNothing) {
    OfflineFixture fixture;
    constexpr int rounds = 12;
    const auto work = [&](const std::string& name) {
        fixture.open();
        Registry& registry = fixture.machine().registry;
        int written = 0;
        for (int32_t number = 1; number <= rounds; ++number) {
            (void)fixture.unload("Anna");  // as the program does, to be on the safe side
            if (fixture.load("Anna") != 0) continue;
            ++written;
            if (registry.create_key(Root::users, key) == Registry::Disposition::failed ||
                registry.set(Root::users, key, name, dword_value(number)).action != success)
                return 2;
            fixture.reports.clear();
            (void)fixture.unload("Anna");  // fails where the other's unload came first
            if (!fixture.troubles().empty()) return 4;
            std::optional<regf::Value> value;  // the other may be at it this moment
            for (int look = 0; !value && look < 100; ++look) {
                const auto file = regf::Hive::open(bytes_as_vector(fixture.hive_of("Anna")));
                const auto at = file ? file->find(u"Software\\Lock") : std::nullopt;
                value = at ? file->value(*at, text::to_utf16(name)) : std::nullopt;
            }
            if (!value || value->data.at(0) != number) return 3;
        }
        return written > 0 ? 0 : 6;
    };
    std::array<pid_t, 2> instances{};
    for (size_t i = 0; i < instances.size(); ++i) {
        instances[i] = fork();
        if (instances[i] == 0) _exit(work(i == 0 ? "first" : "second"));
    }
    for (const pid_t instance : instances) {
        int status = 0;
        ASSERT_EQ(waitpid(instance, &status, 0), instance);
        EXPECT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 0);
    }
    EXPECT_EQ(findings(fixture.hive_of("Anna")), "");
}

TEST(HiveTool, DropsTheUnfinishedChangesOfARunThatDied) {
    OfflineFixture fixture;
    const std::string before = bytes_of(fixture.hive_of("Anna"));
    ASSERT_EQ(fixture.load("Anna"), 0u);
    in_dying_process([&] {
        (void)make_lock_key(fixture);
        (void)set(fixture, 4);
    });
    fixture.open();
    RawValue value;
    EXPECT_EQ(fixture.machine().registry.query(Root::users, key, "a", value).open, file_not_found);
    EXPECT_EQ(fixture.unload("Anna"), 0u);
    EXPECT_EQ(bytes_of(fixture.hive_of("Anna")), before);
}

TEST(HiveTool, WritesWhatARunHadFinishedBeforeItDied) {
    OfflineFixture fixture;
    ASSERT_EQ(fixture.load("Anna"), 0u);
    in_dying_process([&] {
        (void)make_lock_key(fixture);
        (void)set(fixture, 5);
        (void)fixture.load("Ben");  // before a program starts, the changes so far are complete
        (void)set(fixture, 6);
    });
    fixture.open();
    EXPECT_EQ(set(fixture, 7), success) << "the tail of the dead run must not come back behind this";
    EXPECT_EQ(fixture.machine().registry.delete_value(Root::users, key, "a").action, success);
    ASSERT_EQ(fixture.load("Administrator"), 0u);
    EXPECT_EQ(set(fixture, 8), success);
    EXPECT_EQ(fixture.unload("Anna"), 0u);
    EXPECT_EQ(stored(fixture), 8);
}

/// Apply can be pressed again while the program waits, and another instance may unload the same user.
TEST(HiveTool, UnmountsThatMeetLoseNothingAndSaySo) {
    OfflineFixture fixture;
    auto& processes = fixture.machine().processes;
    const std::string command = "\"C:\\Program Files\\Brightlock Suite\\regg.exe\" unload HKU\\Anna";
    for (int number = 1; number <= 15; ++number) {
        ASSERT_EQ(fixture.load("Anna"), 0u);
        (void)make_lock_key(fixture);
        ASSERT_EQ(set(fixture, number), success);
        std::array<uint32_t, 3> ids{};
        for (uint32_t& id : ids)
            id = processes.start(command, WindowStyle::hidden).id;
        for (const uint32_t id : ids) {
            while (processes.exit_code(id) == still_active) {
            }
        }
        ASSERT_EQ(fixture.troubles(), "") << number;
        ASSERT_EQ(stored(fixture), number);
    }
}

TEST(HiveTool, DoesNotWriteOverWhatSomebodyElseHasWritten) {
    OfflineFixture fixture;
    ASSERT_EQ(fixture.load("Anna"), 0u);
    EXPECT_EQ(make_lock_key(fixture), Registry::Disposition::created);
    fixture.open();  // seals the change and lets go of the file
    set_text(fixture.hive_of("Anna"), u"Software\\Other", u"x", u"y");
    std::string theirs = bytes_of(fixture.hive_of("Anna"));
    EXPECT_EQ(make_lock_key(fixture), Registry::Disposition::failed);
    EXPECT_EQ(fixture.unload("Anna"), 1u);
    EXPECT_EQ(bytes_of(fixture.hive_of("Anna")), theirs);
    EXPECT_THAT(fixture.troubles(), HasSubstr("lost: HKU\\Anna: "));
    ASSERT_EQ(fixture.reports.size(), 2u);
    EXPECT_EQ(fixture.reports[1].why, regf::ErrorKind::changed);
    EXPECT_EQ(fixture.load("Anna"), 0u) << "the name is free again";
    ASSERT_EQ(fixture.offline().release(), success);
    write_bytes(fixture.hive_of("Anna"), "not a hive any more");
    EXPECT_EQ(fixture.unload("Anna"), 0u) << "there was nothing to write";
    write_bytes(fixture.hive_of("Anna"), theirs);
    EXPECT_EQ(fixture.load("Anna"), 0u) << "and so after a file that cannot be read";
    write_record(record_of(fixture), "damaged");
    EXPECT_EQ(fixture.unload("Anna"), 1u);
    EXPECT_EQ(fixture.load("Anna"), 0u) << "and after a record that cannot be read";
    ASSERT_EQ(fixture.offline().release(), success);
    write_record(record_of(fixture), std::string(40, '\0'));
    const size_t told = fixture.reports.size();
    EXPECT_EQ(fixture.unload("Anna"), 1u);
    EXPECT_EQ(fixture.reports.size(), told) << "a power cut took a record with nothing in it: no loss";
    EXPECT_EQ(fixture.load("Anna"), 0u);
    EXPECT_EQ(make_lock_key(fixture), Registry::Disposition::created);
    theirs[theirs.size() / 2] ^= 1;  // in spite of the lock, and the head of the file does not show it
    std::fstream(fixture.hive_of("Anna"), std::ios::in | std::ios::out | std::ios::binary) << theirs;
    EXPECT_EQ(fixture.unload("Anna"), 1u);
    EXPECT_EQ(fixture.reports.back().why, regf::ErrorKind::changed);
    EXPECT_EQ(bytes_of(fixture.hive_of("Anna")), theirs);
}

TEST(HiveTool, KeepsTheChangesUntilTheDiskIsThereAgain) {
    OfflineFixture fixture;
    const fs::path profile = fixture.hive_of("Anna").parent_path();
    const fs::path away = fixture.scratch() / "away";
    ASSERT_EQ(fixture.load("Anna"), 0u);
    EXPECT_EQ(make_lock_key(fixture), Registry::Disposition::created);
    EXPECT_EQ(set(fixture, 5), success);
    ASSERT_EQ(fixture.offline().release(), success);
    fs::rename(profile, away);
    EXPECT_EQ(fixture.unload("Anna"), 1u);
    fs::copy(away, profile, fs::copy_options::recursive);  // other inodes and times, as after a new start
    EXPECT_EQ(fixture.unload("Anna"), 0u);
    EXPECT_EQ(stored(fixture), 5);

    ASSERT_EQ(fixture.load("Anna"), 0u);
    EXPECT_EQ(set(fixture, 6), success);
    ASSERT_EQ(fixture.offline().release(), success);
    fs::remove(fixture.hive_of("Anna"));
    EXPECT_EQ(fixture.unload("Anna"), 1u) << "nothing is left to write to";
    EXPECT_TRUE(fixture.offline().mounts().mounts()->empty());
}

TEST(HiveTool, KnowsWhatARunHadWrittenBeforeItDied) {
    OfflineFixture fixture;
    const fs::path hive = fixture.hive_of("Anna");
    ASSERT_EQ(fixture.load("Anna"), 0u);
    EXPECT_EQ(make_lock_key(fixture), Registry::Disposition::created);
    EXPECT_EQ(set(fixture, 5), success);
    ASSERT_EQ(fixture.offline().release(), success);
    const std::string record = bytes_of(record_of(fixture));
    const fs::path path = record_of(fixture);
    ASSERT_EQ(fixture.unload("Anna"), 0u);
    const std::string written = bytes_of(hive);
    write_record(path, record);
    EXPECT_EQ(fixture.unload("Anna"), 0u) << "it is done already";
    EXPECT_EQ(bytes_of(hive), written);
    write_record(path, record);
    EXPECT_EQ(fixture.load("Anna"), 0u) << "by another unload, which is about to remove its record";
    ASSERT_EQ(fixture.offline().release(), success);
    set_text(hive, u"Software\\Lock", u"a", u"theirs");
    write_record(path, record);
    EXPECT_EQ(fixture.unload("Anna"), 1u) << "somebody else was it";
}

TEST(HiveTool, AFullDiskUnderTheHiveKeepsTheChangesForOneMoreUnload) {
    OfflineFixture fixture;
    const fs::path profile = fixture.hive_of("Anna").parent_path();
    const std::string hive = bytes_of(fixture.hive_of("Anna"));
    SmallDisk disk(profile, "256k");
    if (!disk.ready()) GTEST_SKIP() << "this process may not mount a file system";
    write_bytes(fixture.hive_of("Anna"), hive);
    ASSERT_EQ(fixture.load("Anna"), 0u);
    EXPECT_EQ(make_lock_key(fixture), Registry::Disposition::created);
    EXPECT_EQ(set(fixture, 9), success);
    disk.fill();
    EXPECT_EQ(fixture.unload("Anna"), 1u);
    EXPECT_EQ(bytes_of(fixture.hive_of("Anna")), hive);
    EXPECT_THAT(fixture.troubles(), HasSubstr("No space left on device; it is kept for the next unload"));
    disk.make_room();
    EXPECT_EQ(fixture.unload("Anna"), 0u);
    EXPECT_EQ(stored(fixture), 9);

    ASSERT_EQ(fixture.load("Anna"), 0u);
    EXPECT_EQ(set(fixture, 10), success);
    disk.fill();
    EXPECT_EQ(fixture.unload("Anna"), 1u);
    EXPECT_EQ(fixture.unload("Anna"), 1u);
    EXPECT_TRUE(fixture.reports.back().changes_lost);
    EXPECT_EQ(fixture.reports.back().why, regf::ErrorKind::no_space);
    disk.make_room();
    EXPECT_EQ(stored(fixture), 9);
    EXPECT_EQ(fixture.load("Anna"), 0u) << "the user is free again";
}

TEST(HiveTool, DropsAtOnceWhatCanNeverBeWritten) {
    OfflineFixture fixture;
    const std::string before = bytes_of(fixture.hive_of("Anna"));
    const regf::Change impossible{regf::Change::Kind::delete_value, u"Software", u"none", {}, 1};
    ASSERT_EQ(fixture.load("Anna"), 0u);
    const fs::path record = record_of(fixture);
    write_record(record, bytes_of(record) + change_frame(impossible) + seal_frame());
    EXPECT_EQ(fixture.unload("Anna"), 1u);
    EXPECT_THAT(fixture.troubles(), HasSubstr("lost: HKU\\Anna: no value none; what was to be written"));
    EXPECT_EQ(fixture.load("Anna"), 0u) << "the user is free again";
    EXPECT_EQ(fixture.unload("Anna"), 0u);
    EXPECT_EQ(bytes_of(fixture.hive_of("Anna")), before);
}

TEST(HiveTool, RefusesAtLoadWhatItCouldNotReplace) {
    OfflineFixture fixture;
    const fs::path hive = fixture.hive_of("Anna");
    const auto refused = [&](const char* why) {
        EXPECT_EQ(fixture.load("Anna"), 1u);
        EXPECT_EQ(fixture.reports.back().why, regf::ErrorKind::refused);
        EXPECT_THAT(fixture.reports.back().detail, HasSubstr(why));
        EXPECT_TRUE(fixture.offline().mounts().mounts()->empty());
    };
    fs::create_hard_link(hive, fixture.scratch() / "other name");
    refused("has a second name");
    fs::remove(fixture.scratch() / "other name");

    const Descriptor folder(open(hive.parent_path().c_str(), O_RDONLY | O_DIRECTORY));
    int flags = 0;
    if (ioctl(folder.number(), FS_IOC_GETFLAGS, &flags) == 0) {
        const int marked = flags | FS_APPEND_FL;
        if (ioctl(folder.number(), FS_IOC_SETFLAGS, &marked) == 0) {
            const auto files = std::distance(fs::directory_iterator(hive.parent_path()), {});
            refused("takes new files and lets none go");
            EXPECT_EQ(std::distance(fs::directory_iterator(hive.parent_path()), {}), files);
            EXPECT_EQ(ioctl(folder.number(), FS_IOC_SETFLAGS, &flags), 0);
        }
    }
    if (geteuid() != 0) GTEST_SKIP() << "only root can become somebody else";
    for (fs::path up = hive; up != fixture.scratch().parent_path(); up = up.parent_path())
        fs::permissions(up, fs::perms::all);
    const fs::path state = fixture.scratch() / "theirs";
    fs::create_directory(state);
    fs::permissions(state, fs::perms::owner_all);
    ASSERT_EQ(chown(state.c_str(), 12345, 12345), 0);
    in_process_of(12345, [&] {
        regg::Setting setting{DriveMap(), MountTable((state / "mounts").string())};
        (void)setting.drives.add_drive('C', fixture.disk().string());
        const ToolReport report =
            regg::run(std::move(setting), {"load", OfflineFixture::windows_hive_of("Anna"), "HKU\\Anna"})
                .report;
        return !report.succeeded && report.detail.find("its owner cannot be kept") != std::string::npos;
    });
}

TEST(HiveTool, TrustsNoRecordThatAnotherCouldHaveWritten) {
    OfflineFixture fixture;
    ASSERT_EQ(fixture.load("Anna"), 0u);
    const fs::path record = record_of(fixture);
    const std::string bytes = bytes_of(record);
    const std::string before = bytes_of(fixture.hive_of("Anna"));
    const auto refused = [&](const char* why) {
        EXPECT_EQ(fixture.unload("Anna"), 1u);
        EXPECT_THAT(fixture.reports.back().detail, HasSubstr(why));
        EXPECT_EQ(fixture.reports.back().why, regf::ErrorKind::refused);
    };
    fs::permissions(record, fs::perms::others_write, fs::perm_options::add);
    refused("open to others");
    fs::permissions(record.parent_path(), fs::perms::others_read, fs::perm_options::add);
    refused("open to others");
    fs::permissions(record.parent_path(), fs::perms::owner_all);
    fs::remove(record);
    ASSERT_EQ(mkfifo(record.c_str(), 0600), 0);
    refused("not a regular file");
    EXPECT_EQ(fixture.load("Anna"), 1u) << "and that without waiting for a writer";
    fs::remove(record);

    const fs::path outside = fixture.scratch() / "outside.dat";
    fs::copy_file(fixture.hive_of("Anna"), outside);
    Mount planted = parse_record(bytes)->mount;
    planted.file = outside.string();
    const regf::Change change{regf::Change::Kind::create_key, u"Planted", u"", {}, 1};
    write_record(record, mount_frame(planted) + change_frame(change) + seal_frame());
    refused("on no drive of this installation");
    EXPECT_TRUE(bytes_of(outside) == before);
    EXPECT_TRUE(bytes_of(fixture.hive_of("Anna")) == before);

    fs::permissions(fixture.options.state_folder, fs::perms::all);
    const auto opened = OfflineMachine::open(fixture.options);
    ASSERT_FALSE(opened);
    EXPECT_THAT(opened.error().message, HasSubstr("open to others"));
}

TEST(HiveTool, KeepsTheStateOfRootInItsOwnHome) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can act for somebody else";
    TemporaryFolder theirs;
    ASSERT_EQ(chown(theirs.path().c_str(), 12345, 12345), 0);
    const std::string home = std::getenv("HOME");
    const std::string usual = default_state_folder();
    setenv("HOME", theirs.path().c_str(), 1);
    EXPECT_EQ(default_state_folder().find(theirs.path().string()), std::string::npos);
    ASSERT_EQ(chown(theirs.path().c_str(), 0, 0), 0);
    EXPECT_EQ(default_state_folder(), theirs.path().string() + "/.local/state/brightlock");
    setenv("HOME", home.c_str(), 1);
    EXPECT_EQ(default_state_folder(), usual);
}

TEST(HiveTool, AFullDiskUnderTheRecordDropsTheRunAsAWhole) {
    OfflineFixture fixture;
    SmallDisk disk(fixture.options.state_folder, "64k");
    if (!disk.ready()) GTEST_SKIP() << "this process may not mount a file system";
    fixture.open();
    const std::string before = bytes_of(fixture.hive_of("Anna"));
    ASSERT_EQ(fixture.load("Anna"), 0u);
    EXPECT_EQ(make_lock_key(fixture), Registry::Disposition::created);
    EXPECT_EQ(set(fixture, 1), success);
    disk.fill();
    WinCode code = success;
    for (int32_t number = 2; code == success && number < 2000; ++number)
        code = set(fixture, number);
    EXPECT_EQ(code, disk_full);
    disk.make_room();
    EXPECT_EQ(set(fixture, 1), disk_full) << "a set of changes with a gap is never completed";
    EXPECT_EQ(fixture.unload("Anna"), 0u);
    EXPECT_EQ(bytes_of(fixture.hive_of("Anna")), before);
    EXPECT_THAT(fixture.troubles(), HasSubstr("lost: the changes could not be noted down"));
}
