// What only the machine on disk must withstand: a disk that its users have written to.

#include <thread>

#include "machine/hive_editing.h"
#include "platform/product_setup.h"

namespace {

/// Every file below a folder with its content, links with their targets.
std::string snapshot(const fs::path& folder) {
    return run_in_shell("tar --sort=name --mtime=@0 --mode=0 -c -C '" + folder.string() + "' .").output;
}

/// An installation on a disk.
class Disk : public Test, public OfflineFixture {
  protected:
    Files& files() { return machine().files; }
    Registry& registry() { return machine().registry; }
    /// In the folder "tools".
    void make_program(const std::string& name, const std::string& script) {
        fs::create_directory(scratch() / "tools");
        write_bytes(scratch() / "tools" / name, "#!/bin/sh\n" + script + "\n");
        fs::permissions(scratch() / "tools" / name, fs::perms::owner_all);
    }

    const fs::path software = disk() / "WINDOWS/system32/config/software";
};

/// A text value as it stands in a hive file, UTF-8.
std::string stored_text(const fs::path& hive, std::u16string_view key, std::u16string_view name) {
    const auto value = read_value(hive, key, name);
    return value ? text::utf8_from_utf16(regf::units_of(value->data)).c_str()
                 : "(missing)";  // without its NUL
}

}  // namespace

TEST_F(Disk, NoLinkLeadsOut) {
    const fs::path outside = scratch() / "outside";
    fs::create_directories(outside / "folder");
    write_bytes(outside / "secret.txt", "secret");
    write_bytes(outside / "folder/deep.txt", "deep");
    write_bytes(outside / "NTUSER.DAT", bytes_of(hive_of("Anna")));
    const fs::path profile = disk() / "Documents and Settings/Anna";
    fs::create_symlink(outside, disk() / "Escape");
    fs::create_symlink("../../outside", disk() / "WINDOWS/up");
    fs::create_symlink("/", disk() / "School/root");
    fs::create_symlink(outside / "secret.txt", profile / "secret.txt");
    fs::create_symlink(outside / "not there", profile / "dangling.txt");
    fs::create_symlink(profile / "Desktop", disk() / "School/inside");
    fs::create_symlink("self", disk() / "School/self");
    fs::remove(hive_of("Ben"));
    fs::create_symlink(outside / "NTUSER.DAT", hive_of("Ben"));
    const std::string before = snapshot(outside);

    for (const std::string path :
         {"C:\\Escape", "C:\\escape\\secret.txt", "C:\\Escape\\new.txt", "C:\\Escape\\folder\\deep.txt",
          "C:\\WINDOWS\\up\\secret.txt", "C:\\School\\root\\etc\\passwd", "C:\\School\\inside\\x.txt",
          "C:\\School\\self\\x", "C:\\Documents and Settings\\Anna\\secret.txt",
          "C:\\Documents and Settings\\Anna\\dangling.txt", "C:\\Documents and Settings\\Ben\\NTUSER.DAT"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(files().open_binary(path).error, path_access) << "in nobody's use";
        EXPECT_EQ(content(files(), path), "error 70");
        EXPECT_EQ(files().write(path, "mine"), permission_denied);
        EXPECT_EQ(files().remove(path), permission_denied);
        EXPECT_NE(files().set_attributes(path, attribute_read_only), no_error);
        EXPECT_FALSE(files().find(path + "\\*"));
        EXPECT_NE(files().delete_folder(path), no_error);
        EXPECT_NE(files().copy_folder(path, "C:\\School\\copy"), no_error);
        EXPECT_NE(files().copy_folder("C:\\School\\Icons", path), no_error);
    }
    EXPECT_EQ(load("Ben"), 1u);
    EXPECT_EQ(files().attributes("C:\\Escape"), attribute_reparse_point);

    // Links in a folder are not copied, and removed without what they lead to.
    EXPECT_EQ(files().copy_folder("C:\\School", "C:\\Copied"), no_error);
    EXPECT_EQ(names(files(), "C:\\Copied\\*"), "Icons ");
    EXPECT_EQ(files().delete_folder("C:\\School"), no_error);
    EXPECT_TRUE(fs::exists(profile / "Desktop"));
    EXPECT_TRUE(snapshot(outside) == before);
}

TEST_F(Disk, NoOtherNameOfAProtectedFolderDeletesIt) {
    const fs::path alias = disk() / "School/Icons";  // stands for the short names of FAT
    const std::string before = snapshot(disk());
    for (const auto& [kept, below] : {std::pair("WINDOWS", ""),
                                      {"WINDOWS/system32", "\\config"},
                                      {"Documents and Settings", "\\Anna"},
                                      {"Program Files", ""}}) {
        SCOPED_TRACE(kept);
        if (mount((disk() / kept).c_str(), alias.c_str(), nullptr, MS_BIND, nullptr) != 0)
            GTEST_SKIP() << "this process may not mount a folder";
        EXPECT_EQ(files().delete_folder(std::string("C:\\School\\Icons") + below), permission_denied);
        ASSERT_EQ(umount(alias.c_str()), 0);
        ASSERT_TRUE(snapshot(disk()) == before);
    }
    EXPECT_EQ(files().delete_folder("C:\\School\\Icons"), no_error);
}

TEST_F(Disk, NothingButFilesAndFoldersIsOpened) {
    ASSERT_EQ(mkfifo((disk() / "pipe").c_str(), 0666), 0);
    EXPECT_EQ(files().open_binary("C:\\pipe").error, path_access) << "and that without waiting for a writer";
    EXPECT_EQ(content(files(), "C:\\pipe"), "error 70");
    EXPECT_EQ(files().remove("C:\\pipe"), permission_denied);
    EXPECT_EQ(files().attributes("C:\\pipe"), no_attributes);
    EXPECT_EQ(names(files(), "C:\\p*"), "Program Files ");
}

TEST_F(Disk, NamesThatWindowsCannotSpellAreLeftAlone) {
    const fs::path folder = disk() / "School/Icons";
    for (const char* name :
         {"кириллица.lnk", "bad\xff.lnk", "a:b.lnk", "a\\b.lnk", "nul.lnk", "dot.lnk.", "Ü.lnk"})
        write_bytes(folder / name, name);
    EXPECT_EQ(names(files(), "C:\\School\\Icons\\*.lnk"),
              std::string("Calculator.LNK Notepad.lnk ") + U"Ü.lnk "_ansi);
    EXPECT_EQ(files().copy_folder("C:\\School\\Icons", "C:\\Copy"), no_error);
    EXPECT_TRUE(snapshot(disk() / "Copy") == snapshot(folder)) << "a copy holds them all the same";

    write_bytes(folder / "SAME.lnk", "upper");
    write_bytes(folder / "same.lnk", "lower");
    EXPECT_EQ(content(files(), "C:\\School\\Icons\\same.lnk"), "lower") << "the exact spelling comes first";
    EXPECT_EQ(content(files(), "C:\\School\\Icons\\SaMe.lnk"), "upper") << "else always the same one";
}

TEST(Installation, TellsWhatItIs) {
    for (const auto& [family, name, major, minor, windows, profiles] :
         {std::tuple{SampleFamily::winnt, "Windows NT 4", 4u, 0u, "C:\\WINNT", "C:\\WINNT\\Profiles"},
          {SampleFamily::win2k, "Windows 2000", 5, 0, "C:\\WINNT", "C:\\Documents and Settings"},
          {SampleFamily::winxp, "Windows XP", 5, 1, "C:\\WINDOWS", "C:\\Documents and Settings"}}) {
        OfflineFixture fixture(family);
        const Installation& found = fixture.offline().installation();
        System& system = fixture.machine().system;
        EXPECT_EQ(found.family, name);
        EXPECT_EQ(std::pair(found.version.major, found.version.minor), std::pair(major, minor));
        EXPECT_EQ(system.windows_directory(), windows);
        EXPECT_EQ(system.profiles_directory(), profiles);
        EXPECT_EQ(system.logical_drives(), 1u << 2 | 1u << 4) << "C of the map, E of its disks";
        EXPECT_EQ(system.token_groups(), std::vector<std::string>{"S-1-5-32-544"});
    }
}

TEST_F(Disk, IsNotServedWhereItHoldsNoWindowsOfOurs) {
    const auto why_not = [&] {
        DriveMap drives;
        EXPECT_TRUE(drives.add_drive('C', disk()));
        const auto found = describe_installation(drives);
        return found ? "" : found.error().message;
    };
    write_bytes(disk() / "HIBERFIL.SYS", "hibr" + std::string(5000, '\0'));
    EXPECT_THAT(why_not(), HasSubstr("hibernates"));
    fs::remove(disk() / "HIBERFIL.SYS");
    for (const auto& [version, told] : {std::pair(u"6.1", "version 6.1"), {u"5.2", "version 5.2"}}) {
        set_text(software, u"Microsoft\\Windows NT\\CurrentVersion", u"CurrentVersion", version);
        EXPECT_THAT(why_not(), HasSubstr(told));
    }
    write_bytes(software, "junk");
    EXPECT_THAT(why_not(), HasSubstr("hive"));
    fs::remove_all(disk() / "WINDOWS/system32");
    write_bytes(disk() / "WINDOWS/USER.DAT", "CREG");
    EXPECT_THAT(why_not(), HasSubstr("95, 98 and ME"));
    fs::remove_all(disk() / "WINDOWS");
    EXPECT_THAT(why_not(), HasSubstr("there is no Windows"));
}

TEST_F(Disk, IsPreparedOnceAndNotTouchedAgain) {
    britlock::prepare_installation(registry());
    EXPECT_EQ(stored_text(software, u"Microsoft\\Windows\\CurrentVersion\\Uninstall\\Brightlock Suite",
                          u"DisplayName"),
              "Brightlock Suite");
    EXPECT_EQ(findings(software), "");
    const std::string once = bytes_of(software);
    open();
    britlock::prepare_installation(registry());
    EXPECT_EQ(registry().create_key(Root::local_machine, "SOFTWARE\\Morvane\\BRLCK"),
              Registry::Disposition::opened);
    EXPECT_EQ(bytes_of(software), once);
}

TEST_F(Disk, KeepsThePersonsOwnSettingsAndReadsAgainWhatOthersChange) {
    EXPECT_EQ(registry().create_key(Root::current_user, "Software\\Lock"), Registry::Disposition::created);
    EXPECT_EQ(registry().set(Root::current_user, "Software\\Lock", "a", dword_value(3)).action, success);
    open();
    EXPECT_EQ(ask(registry(), Root::current_user, "Software\\Lock", "A"), "dword 3");
    EXPECT_EQ(findings(scratch() / "state/user.hive"), "");

    const std::string key = "Software\\Microsoft\\Windows NT\\CurrentVersion";
    EXPECT_EQ(ask(registry(), Root::local_machine, key, "Theirs"), "action 2");
    set_text(software, u"Microsoft\\Windows NT\\CurrentVersion", u"Theirs", u"49");
    EXPECT_EQ(ask(registry(), Root::local_machine, key, "Theirs"), "\"49\"");
}

TEST_F(Disk, WritesBehindAnInstanceThatCommitsThisMoment) {
    britlock::prepare_installation(registry());
    const std::string key = "Software\\Morvane\\BRLCK";
    EXPECT_EQ(ask(registry(), Root::local_machine, key, "mine"), "action 2");
    const auto place = *hostfile::place_of(software);
    std::thread other([&, lock = must(hostfile::FileLock::acquire(place))] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        auto [hive, identity] = must(regf::read_hive(place, lock));
        EXPECT_TRUE(
            hive.set_value(*hive.find(u"Morvane\\BRLCK"), u"theirs", {regf::REG_DWORD, {1, 0, 0, 0}}, 1));
        EXPECT_TRUE(regf::commit(place, hive, identity, 1));
    });
    EXPECT_EQ(registry().set(Root::local_machine, key, "mine", dword_value(1)).action, success);
    other.join();
    for (const char* name : {"mine", "theirs"})
        EXPECT_EQ(ask(registry(), Root::local_machine, key, name), "dword 1") << name;
}

TEST_F(Disk, AReadOnlyHiveIsOpenForReadersOnly) {
    ASSERT_EQ(chmod(software.c_str(), 0444), 0);
    const std::string key = "Software\\Microsoft\\Windows NT\\CurrentVersion";
    EXPECT_EQ(ask(registry(), Root::local_machine, key, "CurrentVersion"), "\"5.1\"");
    EXPECT_EQ(registry().set(Root::local_machine, key, "a", dword_value(1)).open, access_denied);
    EXPECT_EQ(registry().create_key(Root::local_machine, key), Registry::Disposition::failed);
    EXPECT_EQ(machine().system.token_groups(), std::vector<std::string>{"S-1-5-32-545"});
}

TEST_F(Disk, ATextBeyondTheCodePageSurvivesItsOwnRoundTrip) {
    const std::u16string list = u"Software\\List";
    const std::u16string names[] = {u" 0", u" 1", u" 2", u" 3", u" 4"};
    for (const auto& [user, texts] :
         {std::pair{"Anna", std::vector{u"ШКОЛ.EXE", u"calc.exe", u"Ω.exe", u"Ψ.exe"}},
          {"Ben", {u"УРОК.EXE", u"calc.exe", u"Łódź.exe", u"really?"}}}) {
        for (size_t i = 0; i < texts.size(); ++i)
            set_text(hive_of(user), list, names[i], texts[i]);
        set_text(hive_of(user), list, u"Ж", u"a name that nobody here can spell");
    }
    const auto read = [&](const std::string& user) {
        std::vector<std::string> texts;
        EXPECT_EQ(load(user), 0u);
        for (const char* name : {" 0", " 1", " 2", " 3"}) {
            const std::string quoted = ask(registry(), Root::users, user + "\\Software\\List", name);
            texts.push_back(quoted.substr(1, quoted.size() - 2));
        }
        EXPECT_EQ(unload(user), 0u);
        return texts;
    };
    /// Deletes the list and writes it anew, as Apply does; then it stands so in the hive.
    const auto write = [&](const std::string& user, const std::vector<std::string>& texts) {
        const std::string key = user + "\\Software\\List";
        EXPECT_EQ(load(user), 0u);
        EXPECT_EQ(registry().delete_key(Root::users, key), success);
        EXPECT_EQ(registry().create_key(Root::users, key), Registry::Disposition::created);
        for (size_t i = 0; i < texts.size(); ++i)
            (void)registry().set(Root::users, key, " " + std::to_string(i), text_value(texts[i]));
        EXPECT_EQ(unload(user), 0u);
        std::string all;
        for (const std::u16string& name : names)
            all += stored_text(hive_of(user), list, name) + " ";
        return all;
    };
    const auto annas = read("Anna");
    EXPECT_THAT(annas, ElementsAre("????.EXE", "calc.exe", "?.exe", "?.exe"));
    const auto bens = read("Ben");
    (void)read("Anna");  // only looked at
    EXPECT_EQ(write("Ben", bens), "УРОК.EXE calc.exe Łódź.exe really? (missing) ");
    EXPECT_EQ(write("Anna", annas), "ШКОЛ.EXE calc.exe Ω.exe Ψ.exe (missing) ");
    // Other numbers, other blanks.
    EXPECT_EQ(write("Anna", {"?.exe", "new?", " ????.EXE ", "????.exe", "?.exe"}),
              "Ω.exe new?  ШКОЛ.EXE  ????.exe Ψ.exe ");
    (void)write("Anna", {});
    EXPECT_EQ(write("Anna", annas), "ШКОЛ.EXE calc.exe Ω.exe Ψ.exe (missing) ")
        << "they are in the window still";
    EXPECT_EQ(write("Ben", {"????.EXE", "?.exe"}), "УРОК.EXE ?.exe (missing) (missing) (missing) ")
        << "Anna's stay hers";
}

TEST_F(Disk, TellsAReasonHoweverTheHiveToolEnds) {
    (void)std::signal(SIGCHLD, SIG_IGN);
    EXPECT_EQ(unload("Nobody"), 1u) << "where nothing is known of its end it counts as failed";
    (void)std::signal(SIGCHLD, SIG_DFL);
    EXPECT_TRUE(reports.empty()) << "nothing was mounted, nothing is new";

    ASSERT_EQ(load("Anna"), 0u);
    std::ifstream children("/proc/self/task/" + std::to_string(gettid()) + "/children");
    for (id_t child = 0; children >> child;) {
        siginfo_t end;
        kill(static_cast<pid_t>(child), SIGKILL);
        EXPECT_EQ(waitid(P_PID, child, &end, WEXITED | WNOWAIT), 0);
    }
    EXPECT_EQ(unload("Anna"), 0u) << "the tool that had been waiting for this is gone, another does it";

    options.executables = (scratch() / "tools").string();
    for (const char* end : {"kill -9 $$", "exit 3", "printf '0 2 0' >&3; exit 1"}) {
        make_program("regg.exe", end);
        open();
        EXPECT_NE(load("Ben"), 0u) << end;
        const ToolReport& told = reports.back();
        EXPECT_THAT(told.detail, HasSubstr("regg.exe ")) << end;
        EXPECT_EQ(told, (ToolReport{ToolReport::Verb::load, "Ben", false, std::nullopt, told.detail})) << end;
    }
    EXPECT_EQ(reports.size(), 5u);
}

TEST_F(Disk, HandsFoldersAndWebAddressesToTheDesktopAndNothingElse) {
    const fs::path opened = scratch() / "opened";
    make_program("xdg-open", "echo \"$1\" >> '" + opened.string() + "'");
    const std::string path = std::getenv("PATH");
    setenv("PATH", ((scratch() / "tools").string() + ":" + path).c_str(), 1);
    Processes& processes = machine().processes;
    for (const char* ours : {"Explorer.exe c:\\school\\ICONS", "explorer.exe C:\\none", "explorer.exe C:\\"})
        EXPECT_EQ(run_command(processes, ours), 0u) << ours;
    for (const char* other : {"C:\\WINDOWS\\notepad.exe", "xdg-open x"})
        EXPECT_EQ(run_command(processes, other), 1000u + no_such_file) << other;
    for (const char* address : {"file:///etc/passwd", "javascript:1", "HTTP://update.invalid/?a=b c"})
        processes.open_address(address);
    setenv("PATH", "/none", 1);
    EXPECT_EQ(run_command(processes, "explorer.exe C:\\"), 0u) << "a system without a desktop";
    for (int wait = 0; wait < 200 && bytes_of(opened).find("update") == std::string::npos; ++wait)
        usleep(10000);
    setenv("PATH", path.c_str(), 1);
    EXPECT_EQ(bytes_of(opened), (disk() / "School/Icons").string() + "\n" + disk().string() +
                                    "\nHTTP://update.invalid/?a=b c\n");
}

TEST(DriveMap, TellsTheHiveToolOfFoldersWithAnyName) {
    TemporaryFolder folder;
    DriveMap drives;
    for (const auto& [letter, name] : {std::pair('C', "a;b"), {'D', "100%25"}, {'e', "c=d"}}) {
        fs::create_directory(folder.path() / name);
        write_bytes(folder.path() / name / "x", "x");
        ASSERT_TRUE(drives.add_drive(letter, folder.path() / name));
    }
    const DriveMap again = must(DriveMap::parse(drives.text()));
    EXPECT_EQ(again.letters(), 0b11100u);
    for (const char* path : {"C:\\x", "D:\\x", "E:\\x"})
        EXPECT_TRUE(again.resolve(path) && again.resolve(path)->exists) << path;
}

TEST(MountRecord, EndsAtTheFirstFrameThatIsNotWhole) {
    regf::Change change{regf::Change::Kind::set_value, u"Software\\Ж", u"", {4, {1, 0, 0, 0}}, 77};
    const std::string mount = mount_frame({"Anna", "C:\\x", {1, 2, 3, 4}});
    const std::string sealed = mount + change_frame(change) + seal_frame();
    const std::string whole = sealed + change_frame(change) + change_frame(change);
    // What is told where so many bytes are as they were written.
    const auto told_of = [&](const std::string& bytes, size_t sound) {
        const auto record = parse_record(bytes);
        EXPECT_EQ(record.has_value(), sound >= mount.size()) << sound;
        if (!record) return;
        const bool has_seal = sound >= sealed.size();
        EXPECT_EQ(record->mount.stamp, (regf::HiveStamp{1, 2, 3, 4}));
        EXPECT_EQ(record->sealed, std::vector<regf::Change>(has_seal ? 1 : 0, change)) << sound;
        EXPECT_EQ(record->sealed_bytes, has_seal ? sealed.size() : mount.size()) << sound;
        EXPECT_EQ(record->unsealed, bytes.size() != record->sealed_bytes) << sound;
    };
    for (size_t size = 0; size <= whole.size(); ++size) {
        told_of(whole.substr(0, size), size);
        if (size == whole.size()) continue;
        std::string flipped = whole;
        flipped[size] = static_cast<char>(flipped[size] ^ 0x40);
        told_of(flipped, size);
    }
}

TEST(MountTable, RemovesNoMountButTheOneItIsToldOf) {
    TemporaryFolder folder;
    const MountTable table((folder.path() / "mounts").string());
    const Mount ours{"Anna", "C:\\x", {1, 2, 3, 4}};
    const Mount theirs{"Anna", "C:\\x", {1, 5, 5, 6}};
    ASSERT_TRUE(table.add(theirs));
    EXPECT_TRUE(table.remove(ours)) << "it is gone";
    EXPECT_EQ(must(table.find("anna")).mount, theirs);
    EXPECT_TRUE(table.remove(theirs));
    EXPECT_FALSE(table.find("Anna"));
}
