// The hive tool as a program of its own: each of its messages, and what is left of a hive after each fault.

#include <grp.h>
#include <linux/fs.h>
#include <sys/ioctl.h>

#include "machine/hive_editing.h"
#include "regg/hive_tool.h"

namespace {

constexpr auto key = "Anna\\Software\\Lock";

/// Runs the tool by hand, as an administrator would in a shell; `environment` stands before the command.
Ran run_tool(const std::string& arguments, const std::string& environment) {
    return run_in_shell(environment + " '" + PROGRAM_FOLDER + "/regg.exe' " + arguments);
}

/// Writes the record of a mount, as private as it must be.
void write_record(const fs::path& file, std::string_view bytes) {
    write_bytes(file, bytes);
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
}

/// A file system of its own on a folder, of a size that fills soon. Not ready where this process may not
/// mount.
struct SmallDisk {
    SmallDisk(const fs::path& place, const std::string& size) : folder(place) {
        fs::create_directories(folder);
        ready = mount("none", folder.c_str(), "tmpfs", 0, ("mode=0700,size=" + size).c_str()) == 0;
    }
    ~SmallDisk() {
        if (ready) (void)umount2(folder.c_str(), MNT_DETACH);
    }
    void fill() const { write_bytes(folder / "filler", std::string(1 << 20, 'x')); }
    void make_room() const { fs::remove(folder / "filler"); }

    const fs::path folder;
    bool ready = false;
};

/// An installation, its hive tool and the hive of Anna.
class HiveTool : public Test, public OfflineFixture {
  protected:
    Registry& registry() { return machine().registry; }
    Registry::Disposition make_lock_key() { return registry().create_key(Root::users, key); }
    WinCode set(int32_t number) { return registry().set(Root::users, key, "a", dword_value(number)).action; }
    /// Anna is mounted, and a number is written.
    void mount_with(int32_t number) {
        ASSERT_EQ(load("Anna"), 0u);
        ASSERT_NE(make_lock_key(), Registry::Disposition::failed);
        ASSERT_EQ(set(number), success);
    }
    /// What was written is complete, and the program lets go of all hives.
    void let_go() { ASSERT_EQ(offline().release(), success); }
    bool nothing_is_mounted() { return offline().mounts().mounts()->empty(); }
    /// The tool has failed just now, for this reason and with these words.
    void expect_failed(uint32_t code, regf::ErrorKind why, const char* words = "") const {
        EXPECT_EQ(code, 1u);
        EXPECT_EQ(reports.back().why, why);
        EXPECT_THAT(reports.back().detail, HasSubstr(words));
    }
    /// The number that stands in Anna's file; -1 where there is none.
    int stored() const {
        EXPECT_EQ(findings(anna), "");
        const auto value = read_value(anna, u"Software\\Lock", u"a");
        return value ? value->data.at(0) : -1;
    }
    /// The only record of a mount.
    fs::path record() const { return fs::directory_iterator(mounts_folder())->path(); }
    /// Runs the tool in this process.
    ToolReport run_here(const std::string& mounts, const std::vector<std::string>& words) const {
        regg::Setting setting{DriveMap(), MountTable(mounts)};
        EXPECT_TRUE(setting.drives.add_drive('C', disk().string()));
        return regg::run(std::move(setting), words).report;
    }

    const fs::path anna = hive_of("Anna");
    const std::string before = bytes_of(anna);
};

}  // namespace

TEST_F(HiveTool, WritesChangesOnceAndOnlyWhenItUnloads) {
    mount_with(1);
    ASSERT_EQ(load("Ben"), 0u) << "the tool works for another user meanwhile";
    EXPECT_EQ(set(2), success);
    const ToolReport refused = run_here(mounts_folder(), {"unload", "HKU\\Anna"});
    EXPECT_EQ(refused.why, regf::ErrorKind::in_use) << "this instance works on it";
    EXPECT_THAT(refused.detail, HasSubstr("in use by another program"));
    EXPECT_EQ(bytes_of(anna), before);
    ASSERT_EQ(unload("Anna"), 0u);
    EXPECT_EQ(stored(), 2);
    EXPECT_EQ(make_lock_key(), Registry::Disposition::failed);
    ASSERT_EQ(unload("Ben"), 0u);
    EXPECT_EQ(troubles(), "");
}

TEST_F(HiveTool, SaysInOneLineWhyItRefuses) {
    const std::string hive = "load '" + anna.string() + "' ";
    const std::string drives = "BRIGHTLOCK_DRIVES='C=" + disk().string() + "' ";
    const std::string mounts = "BRIGHTLOCK_MOUNTS='" + (scratch() / "by-hand").string() + "' ";
    std::string dirty = before;
    dirty[4] = static_cast<char>(dirty[4] + 1);  // a write was begun and never ended
    for (const auto& [name, bytes] : {std::pair("text", std::string("not a hive at all")),
                                      {"empty", ""},
                                      {"damaged", before.substr(0, before.size() / 2)},
                                      {"dirty", dirty},
                                      {"readonly", before},
                                      {"locked", before}})
        write_bytes(disk() / (std::string(name) + ".dat"), bytes);
    fs::permissions(disk() / "readonly.dat", fs::perms::owner_read);
    const auto other = must(hostfile::FileLock::acquire(*hostfile::place_of(disk() / "locked.dat")));
    ASSERT_EQ(run_tool(hive + "'HKU\\Anna'", mounts).code, 0);

    const auto refuses = [](const std::string& arguments, const char* message,
                            const std::string& environment) {
        const Ran ran = run_tool(arguments, environment);
        EXPECT_EQ(ran.code, 1) << arguments;
        EXPECT_THAT(ran.output, AllOf(StartsWith("regg: "), HasSubstr(message))) << arguments;
        EXPECT_EQ(ran.output.find('\n'), ran.output.size() - 1) << arguments;
    };
    const std::string bens = "load 'C:\\Documents and Settings\\Ben\\NTUSER.DAT' ";
    // clang-format off
    const std::pair<std::string, const char*> calls[] = {
        {"", "the command is"}, {"load", "the command is"}, {hive + "'HKU\\Ben' more", "the command is"},
        {"unload 'HKU\\two' words", "the command is"}, {"save 'HKU\\Anna'", "the command is"},
        {hive + "'HKLM\\Ben'", "not a key directly below HKU"}, {hive + "'HKU\\Ben\\Software'", "not a key directly below HKU"},
        {hive + "'HKU\\'", "not a key directly below HKU"}, {hive + "'HKU\\Жанна'", "cannot spell"},
        {"unload 'HKU\\Nobody'", "HKU\\Nobody: no hive is mounted there"}, {hive + "'HKU\\Ben'", "on no drive of this installation"},
        {bens + "'HKU\\anna'", "another hive is mounted there"}, {bens + "'HKU\\" + std::string(121, 'x') + "'", "too long"},
        {"load 'NTUSER.DAT' 'HKU\\Ben'", "not the full path"}, {"load 'C:\\none.dat' 'HKU\\Ben'", "is not there"},
        {"load 'Z:\\none.dat' 'HKU\\Ben'", "is not there"}, {"load 'C:\\WINDOWS' 'HKU\\Ben'", "not a regular file"},
        {"load 'C:\\text.dat' 'HKU\\Ben'", "text.dat: not a registry hive"},
        {"load 'C:\\empty.dat' 'HKU\\Ben'", "empty.dat: not a registry hive"}, {"load 'C:\\damaged.dat' 'HKU\\Ben'", "damaged at 0x"},
        {"load 'C:\\dirty.dat' 'HKU\\Ben'", "not finished"}, {"load 'C:\\readonly.dat' 'HKU\\Ben'", "no permission to write"},
        {"load 'C:\\locked.dat' 'HKU\\Ben'", "in use by another program"}};
    // clang-format on
    for (const auto& [arguments, message] : calls)
        refuses(arguments, message, mounts + drives);
    refuses(hive + "'HKU\\Ben'", "mounted already", mounts);
    refuses(bens + "'HKU\\Ben'", "no folder is known", mounts);
    EXPECT_EQ(std::distance(fs::directory_iterator(scratch() / "by-hand"), {}), 1)
        << "nothing is half mounted";
    write_bytes(disk() / "hiberfil.sys", "hibr");
    refuses(bens + "'HKU\\Ben'", "this Windows hibernates", mounts + drives);
    EXPECT_EQ(run_tool("unload 'HKU\\ANNA'", mounts).code, 0);
}

TEST_F(HiveTool, TwoInstancesOnOneUserLoseNothing) {
    const auto work = [&](const std::string& name) {
        open();
        int written = 0;
        for (int32_t number = 1; number <= 12; ++number) {
            (void)unload("Anna");  // as the program does, to be on the safe side
            if (load("Anna") != 0) continue;
            ++written;
            if (make_lock_key() == Registry::Disposition::failed ||
                registry().set(Root::users, key, name, dword_value(number)).action != success)
                return 2;
            reports.clear();
            (void)unload("Anna");  // fails where the other's unload came first
            if (!troubles().empty()) return 4;
            std::optional<regf::Value> value;  // the other may be at it this moment
            for (int look = 0; !value && look < 100; ++look) {
                const auto file = regf::Hive::open(bytes_of<regf::Bytes>(anna));
                const auto at = file ? file->find(u"Software\\Lock") : std::nullopt;
                value = at ? file->value(*at, text::to_utf16(name)) : std::nullopt;
            }
            if (!value || value->data.at(0) != number) return 3;
        }
        return written > 0 ? 0 : 6;
    };
    const pid_t other = fork();
    if (other == 0) _exit(work("second"));
    EXPECT_EQ(work("first"), 0);
    int status = -1;
    ASSERT_EQ(waitpid(other, &status, 0), other);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(findings(anna), "");
}

TEST_F(HiveTool, WritesOfARunThatDiedWhatWasComplete) {
    const auto die = [&](const std::function<void()>& work) {
        ASSERT_EQ(load("Anna"), 0u);
        const int end = end_of_process([&] {
            (void)make_lock_key();
            work();
            return raise(SIGKILL);
        });
        EXPECT_TRUE(WIFSIGNALED(end));
        open();
    };
    die([&] { (void)set(4); });
    EXPECT_EQ(registry().delete_value(Root::users, key, "a").open, file_not_found);
    EXPECT_EQ(unload("Anna"), 0u);
    EXPECT_EQ(bytes_of(anna), before);

    die([&] {
        (void)set(5);
        (void)load("Ben");  // before a program starts, the changes so far are complete
        (void)set(6);
    });
    EXPECT_EQ(set(7), success) << "the tail of the dead run must not come back behind this";
    EXPECT_EQ(registry().delete_value(Root::users, key, "a").action, success);
    ASSERT_EQ(load("Administrator"), 0u);
    EXPECT_EQ(set(8), success);
    EXPECT_EQ(unload("Anna"), 0u);
    EXPECT_EQ(stored(), 8);
}

/// Apply can be pressed again while the program waits, and another instance may unload the same user.
TEST_F(HiveTool, UnmountsThatMeetLoseNothingAndSaySo) {
    for (int number = 1; number <= 15; ++number) {
        mount_with(number);
        std::vector<uint32_t> ids(3);
        for (uint32_t& id : ids)
            id = machine()
                     .processes.start(hive_tool + std::string("unload HKU\\Anna"), WindowStyle::hidden)
                     .id;
        for (const uint32_t id : ids) {
            while (machine().processes.exit_code(id) == still_active) {
            }
        }
        ASSERT_EQ(troubles(), "") << number;
        ASSERT_EQ(stored(), number);
    }
}

TEST_F(HiveTool, DoesNotWriteOverWhatSomebodyElseHasWritten) {
    mount_with(1);
    open();  // seals the change and lets go of the file
    set_text(anna, u"Software\\Other", u"x", u"y");
    std::string theirs = bytes_of(anna);
    EXPECT_EQ(make_lock_key(), Registry::Disposition::failed);
    expect_failed(unload("Anna"), regf::ErrorKind::changed);
    EXPECT_EQ(bytes_of(anna), theirs);
    EXPECT_THAT(troubles(), HasSubstr("lost: HKU\\Anna: "));

    // A record with nothing in it is what a power cut leaves: no loss.
    for (const auto& [content, losses] :
         {std::pair{std::string("damaged"), 1u}, {std::string(40, '\0'), 0u}}) {
        EXPECT_EQ(load("Anna"), 0u);
        let_go();
        write_record(record(), content);
        reports.clear();
        EXPECT_EQ(unload("Anna"), 1u);
        EXPECT_EQ(reports.size(), losses);
    }
    EXPECT_EQ(load("Anna"), 0u);
    let_go();
    write_bytes(anna, "not a hive any more");
    EXPECT_EQ(unload("Anna"), 0u) << "there was nothing to write";
    write_bytes(anna, theirs);

    mount_with(1);
    theirs[theirs.size() / 2] ^= 1;  // in spite of the lock, and the head of the file does not show it
    std::fstream(anna, std::ios::in | std::ios::out | std::ios::binary) << theirs;
    expect_failed(unload("Anna"), regf::ErrorKind::changed);
    EXPECT_EQ(bytes_of(anna), theirs);
}

TEST_F(HiveTool, KeepsTheChangesUntilTheDiskIsThereAgain) {
    const fs::path profile = anna.parent_path();
    mount_with(5);
    let_go();
    fs::rename(profile, scratch() / "away");
    EXPECT_EQ(unload("Anna"), 1u);
    fs::copy(scratch() / "away", profile,
             fs::copy_options::recursive);  // other inodes and times, as after a new start
    EXPECT_EQ(unload("Anna"), 0u);
    EXPECT_EQ(stored(), 5);

    mount_with(6);
    let_go();
    fs::remove(anna);
    EXPECT_EQ(unload("Anna"), 1u) << "nothing is left to write to";
    EXPECT_TRUE(nothing_is_mounted());
}

TEST_F(HiveTool, KnowsWhatARunHadWrittenBeforeItDied) {
    mount_with(5);
    let_go();
    const fs::path path = record();
    const std::string noted = bytes_of(path);
    ASSERT_EQ(unload("Anna"), 0u);
    const std::string written = bytes_of(anna);
    write_record(path, noted);
    EXPECT_EQ(unload("Anna"), 0u) << "it is done already";
    EXPECT_EQ(bytes_of(anna), written);
    write_record(path, noted);
    EXPECT_EQ(load("Anna"), 0u) << "by another unload, which is about to remove its record";
    let_go();
    set_text(anna, u"Software\\Lock", u"a", u"theirs");
    write_record(path, noted);
    EXPECT_EQ(unload("Anna"), 1u) << "somebody else was it";
}

TEST_F(HiveTool, AFullDiskUnderTheHiveKeepsTheChangesForOneMoreUnload) {
    SmallDisk small(anna.parent_path(), "256k");
    if (!small.ready) GTEST_SKIP() << "this process may not mount a file system";
    write_bytes(anna, before);
    mount_with(9);
    small.fill();
    EXPECT_EQ(unload("Anna"), 1u);
    EXPECT_EQ(bytes_of(anna), before);
    EXPECT_THAT(troubles(), HasSubstr("No space left on device; it is kept for the next unload"));
    small.make_room();
    EXPECT_EQ(unload("Anna"), 0u);
    EXPECT_EQ(stored(), 9);

    open();  // the room of the old file is free by now
    mount_with(10);
    small.fill();
    EXPECT_EQ(unload("Anna"), 1u);
    expect_failed(unload("Anna"), regf::ErrorKind::no_space);
    EXPECT_TRUE(reports.back().changes_lost);
    small.make_room();
    EXPECT_EQ(stored(), 9);
    EXPECT_EQ(load("Anna"), 0u) << "the user is free again";
}

TEST_F(HiveTool, DropsAtOnceWhatCanNeverBeWritten) {
    const regf::Change impossible{regf::Change::Kind::delete_value, u"Software", u"none", {}, 1};
    ASSERT_EQ(load("Anna"), 0u);
    write_record(record(), bytes_of(record()) + change_frame(impossible) + seal_frame());
    EXPECT_EQ(unload("Anna"), 1u);
    EXPECT_THAT(troubles(), HasSubstr("lost: HKU\\Anna: no value none; what was to be written"));
    EXPECT_TRUE(nothing_is_mounted());
    EXPECT_EQ(bytes_of(anna), before);
}

TEST_F(HiveTool, RefusesAtLoadWhatItCouldNotReplace) {
    const auto refused = [&](const char* why) {
        expect_failed(load("Anna"), regf::ErrorKind::refused, why);
        EXPECT_TRUE(nothing_is_mounted());
    };
    fs::create_hard_link(anna, scratch() / "other name");
    refused("has a second name");
    fs::remove(scratch() / "other name");

    const Descriptor folder(::open(anna.parent_path().c_str(), O_RDONLY | O_DIRECTORY));
    const auto files = std::distance(fs::directory_iterator(anna.parent_path()), {});
    int flags = 0, marked = FS_APPEND_FL;
    if (ioctl(folder.number(), FS_IOC_GETFLAGS, &flags) == 0 &&
        ioctl(folder.number(), FS_IOC_SETFLAGS, &(marked |= flags)) == 0) {
        refused("takes new files and lets none go");
        EXPECT_EQ(std::distance(fs::directory_iterator(anna.parent_path()), {}), files);
        EXPECT_EQ(ioctl(folder.number(), FS_IOC_SETFLAGS, &flags), 0);
    }
    if (geteuid() != 0) GTEST_SKIP() << "only root can become somebody else";
    for (fs::path up = anna; up != scratch().parent_path(); up = up.parent_path())
        fs::permissions(up, fs::perms::all);
    const fs::path theirs = scratch() / "theirs";
    fs::create_directory(theirs);
    fs::permissions(theirs, fs::perms::owner_all);
    ASSERT_EQ(chown(theirs.c_str(), 12345, 12345), 0);
    const int end = end_of_process([&] {
        if (setgroups(0, nullptr) != 0 || setgid(12345) != 0 || setuid(12345) != 0) return 1;
        const ToolReport report = run_here(theirs / "mounts", {"load", windows_hive_of("Anna"), "HKU\\Anna"});
        return !report.succeeded && report.detail.find("its owner cannot be kept") < report.detail.size() ? 0
                                                                                                          : 2;
    });
    EXPECT_EQ(end, 0);
}

TEST_F(HiveTool, TrustsNoRecordThatAnotherCouldHaveWritten) {
    ASSERT_EQ(load("Anna"), 0u);
    const fs::path path = record();
    Mount planted = parse_record(bytes_of(path))->mount;
    const auto refused = [&](const char* why) {
        expect_failed(unload("Anna"), regf::ErrorKind::refused, why);
    };
    fs::permissions(path, fs::perms::others_write, fs::perm_options::add);
    refused("open to others");
    fs::permissions(path.parent_path(), fs::perms::others_read, fs::perm_options::add);
    refused("open to others");
    fs::permissions(path.parent_path(), fs::perms::owner_all);
    fs::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    refused("not a regular file");
    EXPECT_EQ(load("Anna"), 1u) << "and that without waiting for a writer";
    fs::remove(path);

    planted.file = (scratch() / "outside.dat").string();
    write_bytes(planted.file, before);
    const regf::Change change{regf::Change::Kind::create_key, u"Planted", u"", {}, 1};
    write_record(path, mount_frame(planted) + change_frame(change) + seal_frame());
    refused("on no drive of this installation");
    EXPECT_TRUE(bytes_of(planted.file) == before);
    EXPECT_TRUE(bytes_of(anna) == before);

    fs::permissions(options.state_folder, fs::perms::all);
    const auto opened = OfflineMachine::open(options);
    ASSERT_FALSE(opened);
    EXPECT_THAT(opened.error().message, HasSubstr("open to others"));
}

TEST(StateFolder, OfRootLiesInItsOwnHome) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can act for somebody else";
    TemporaryFolder theirs;
    ASSERT_EQ(chown(theirs.path().c_str(), 12345, 12345), 0);
    const std::string home = std::getenv("HOME");
    setenv("HOME", theirs.path().c_str(), 1);
    EXPECT_EQ(default_state_folder().find(theirs.path().string()), std::string::npos);
    ASSERT_EQ(chown(theirs.path().c_str(), 0, 0), 0);
    EXPECT_EQ(default_state_folder(), theirs.path().string() + "/.local/state/brightlock");
    setenv("HOME", home.c_str(), 1);
}

TEST_F(HiveTool, AFullDiskUnderTheRecordDropsTheRunAsAWhole) {
    SmallDisk small(options.state_folder, "64k");
    if (!small.ready) GTEST_SKIP() << "this process may not mount a file system";
    open();
    mount_with(1);
    small.fill();
    WinCode code = success;
    for (int32_t number = 2; code == success && number < 2000; ++number)
        code = set(number);
    EXPECT_EQ(code, disk_full);
    small.make_room();
    EXPECT_EQ(set(1), disk_full) << "a set of changes with a gap is never completed";
    EXPECT_EQ(unload("Anna"), 0u);
    EXPECT_EQ(bytes_of(anna), before);
    EXPECT_THAT(troubles(), HasSubstr("lost: the changes could not be noted down"));
}
