#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>

#include "engine/keys.h"
#include "machine/offline_fixture.h"
#include "platform/product_setup.h"
#include "program/person.h"
#include "program/random_marks.h"
#include "regf/dump.h"
#include "regf_file/hive_file.h"

namespace britlock {
namespace {

namespace fs = std::filesystem;
using machine::SampleFamily;
using testing::HasSubstr;

constexpr SampleFamily all_families[] = {SampleFamily::winnt, SampleFamily::win2k, SampleFamily::winxp};

/// A sample installation of one family with a password set, and a person in front of the program.
struct Installed {
    explicit Installed(SampleFamily family = SampleFamily::winxp) : windows(family) {
        fs::create_directories(windows.scratch() / "D");
        windows.options.drives['D'] = (windows.scratch() / "D").string();
        windows.open();
        britlock::prepare_installation(windows.machine().registry);
        person.screen.expect_box("Set a Password !");
        person.start(windows.machine());
        person.screen.expect_box("Password...");
        person.set_password("secret");
    }
    ~Installed() { person.program.reset(); }

    void enter() {
        person.program.reset();
        windows.open();
        person.start(windows.machine());
        person.give_password("secret");
    }

    fs::path profile(const std::string& user) {
        const std::string folder = windows.offline().installation().profiles_directory;  // C:\...
        std::string host = windows.disk().string() + folder.substr(2);
        std::replace(host.begin(), host.end(), '\\', '/');
        return fs::path(host) / user;
    }
    fs::path hive(const std::string& user = "Anna") { return profile(user) / "NTUSER.DAT"; }
    std::string dump(const std::string& user = "Anna") {
        const auto opened = regf::Hive::open(regf::read_file(hive(user)));
        return opened ? regf::dump(*opened) : opened.error().message;
    }

    OfflineFixture windows;
    Person person;
};

/// Holds a file as another program does.
class OtherProgram {
  public:
    explicit OtherProgram(const fs::path& file) {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        process_ = fork();
        if (process_ == 0) {
            const int held = open(file.c_str(), O_RDWR);
            (void)!write(ends[1], flock(held, LOCK_EX) == 0 ? "y" : "n", 1);
            pause();
            _exit(0);
        }
        char answer = 0;
        EXPECT_EQ(read(ends[0], &answer, 1), 1);
        EXPECT_EQ(answer, 'y');
        close(ends[0]);
        close(ends[1]);
    }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;
    ~OtherProgram() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }

  private:
    pid_t process_;
};

struct Fault {
    const char* what;
    std::function<void(Installed&)> cause;
    const char* box;
};

TEST(RealHives, EveryFaultHasItsBoxAndLeavesTheFileWhole) {
    const char* const no_access = "Problems while writing to registry...";
    std::unique_ptr<OtherProgram> other;
    auto rewrite = [](Installed& w, const std::function<void(regf::Bytes&)>& change) {
        regf::Bytes bytes = regf::read_file(w.hive());
        change(bytes);
        regf::write_file(w.hive(), bytes);
    };
    const Fault faults[] = {
        {"missing", [](Installed& w) { fs::remove(w.hive()); }, "Could not find path/file..."},
        {"empty", [&](Installed& w) { rewrite(w, [](auto& b) { b.clear(); }); },
         "Could not find path/file..."},
        {"held", [&](Installed& w) { other = std::make_unique<OtherProgram>(w.hive()); }, "File in use..."},
        {"a folder", [](Installed& w) { fs::remove(w.hive()), fs::create_directory(w.hive()); },
         "File in use..."},
        {"folder gone", [](Installed& w) { fs::remove_all(w.profile("Anna")); }, "Path not found..."},
        {"no hive", [&](Installed& w) { rewrite(w, [](auto& b) { b.assign(9000, 'x'); }); }, no_access},
        {"cut off", [&](Installed& w) { rewrite(w, [](auto& b) { b.resize(b.size() - 4096); }); }, no_access},
        {"damaged",
         [&](Installed& w) { rewrite(w, [](auto& b) { std::fill_n(b.begin() + 4096, 4, uint8_t{0}); }); },
         no_access},
        {"dirty", [&](Installed& w) { rewrite(w, [](auto& b) { b[4] ^= 1; }); }, no_access},
        {"a link",
         [](Installed& w) {
             fs::rename(w.hive(), w.hive().parent_path() / "elsewhere");
             fs::create_symlink("elsewhere", w.hive());
         },
         "File in use..."},
    };
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.what);
        Installed w;
        w.person.choose("Ben");
        w.person.click(w.person.window().c12);
        fault.cause(w);
        const bool readable = fs::is_regular_file(fs::symlink_status(w.hive()));
        const regf::Bytes before = readable ? regf::read_file(w.hive()) : regf::Bytes{};
        w.person.screen.expect_box(fault.box);
        w.person.choose("Anna");
        w.person.screen.expect_box(fault.box);
        w.person.apply();
        EXPECT_TRUE(w.person.window().c12.ticked()) << "the marks stay";
        other.reset();
        if (readable && !before.empty()) {
            EXPECT_EQ(regf::read_file(w.hive()), before);
        }
        w.person.choose("Ben");
        w.person.apply();
        EXPECT_THAT(w.dump("Ben"), HasSubstr("NoLogOff 4 00000000")) << "and the next user is served";
    }
}

TEST(RealHives, EachNtFamilyStoresItsOwnForm) {
    for (const SampleFamily family : all_families) {
        Installed w(family);
        SCOPED_TRACE(w.person.program->reg.get_os_name());
        const bool xp = family == SampleFamily::winxp;
        w.person.choose("Anna");
        w.person.click_applet(1);
        w.person.click(w.person.window().c96);
        w.person.click(w.person.window().drive_boxes[3]);
        w.person.apply();
        const std::string dump = w.dump();
        EXPECT_THAT(dump, HasSubstr("don't\\u0020load APPWIZ.CPL 1 4e006f000000"));
        EXPECT_EQ(dump.find("load DESK.CPL 1 0000") == std::string::npos, xp) << "what stays unmarked";
        EXPECT_THAT(dump, HasSubstr("Explorer ForceClassicControlPanel 4 0" + std::string(xp ? "1" : "0")));
        EXPECT_THAT(dump, HasSubstr("Policies/Microsoft/Windows/System DisableCMD 4 01000000"));
        EXPECT_THAT(dump, HasSubstr("Explorer NoDrives 4 08000000"));
        w.enter();
        w.person.choose("Anna");
        EXPECT_TRUE(w.person.window().lv1.rows()[0].checked);
        EXPECT_TRUE(w.person.window().c96.ticked());
    }
}

TEST(RealHives, ARunTimeErrorAmidTheWritesLeavesThoseBeforeItOnTheDisk) {
    Installed w;
    w.person.choose("Anna");
    w.person.click(w.person.window().c11);
    w.person.screen.act([&] { w.person.window().t81.set_text("5000000000 AG"); });
    w.person.screen.expect_box("Brightlock Suite");
    EXPECT_FALSE(w.person.apply()) << "the process has ended";
    w.windows.offline().write_pending();
    EXPECT_TRUE(regf::validate(regf::read_file(w.hive())).empty());
    EXPECT_THAT(w.dump(), HasSubstr("NoClose 4 01000000"));
    EXPECT_TRUE(w.windows.offline().mounts().mounts()->empty());
    EXPECT_EQ(w.windows.troubles(), "");
}

/// BRITLOCK_CASES sets how many sets of marks each family gets.
TEST(RealHives, WhatWasMarkedComesBack) {
    const char* wanted = std::getenv("BRITLOCK_CASES");
    const int cases = wanted ? std::atoi(wanted) : 340;
    uint32_t seed = 5000;
    for (const SampleFamily family : all_families) {
        Installed w(family);
        auto reread = [&] {
            w.enter();
            w.person.choose("Anna");
        };
        reread();
        for (int i = 0; i < cases; ++i, ++seed) {
            SCOPED_TRACE(seed);
            const Marks before = Marks::of(w.person.window());
            RandomPerson(w.person, seed).mark();
            const Marks marked = Marks::of(w.person.window());
            w.person.apply();
            reread();
            ASSERT_EQ(Marks::of(w.person.window()).lines, after_a_round_trip(marked, before).lines);
        }
        EXPECT_TRUE(regf::validate(regf::read_file(w.hive())).empty());
    }
    std::cout << "  seeds 5000 to " << seed - 1 << "\n";
}

/// Two instances that only look at the hive tool, or at a hive, at the same moment must not take each other
/// for a user of it.
TEST(RealHives, LookingAtAFileIsNotUsingIt) {
    Installed w;
    const auto look =
        hostfile::FileLock::acquire(*hostfile::place_of(w.hive()), hostfile::FileLock::Purpose::look);
    ASSERT_TRUE(look);
    EXPECT_EQ(w.person.program->hiver.hive_file_status(w.windows.windows_hive_of("Anna")), HIVER_MOD::usable);
    const OtherProgram other(w.hive("Ben"));
    EXPECT_EQ(w.person.program->hiver.hive_file_status(w.windows.windows_hive_of("Ben")), HIVER_MOD::in_use);
}

/// Another instance may be waiting for the hive tool at this very moment.
TEST(RealHives, AProgramThatRunsIsThereAndCanBeStarted) {
    Installed w;
    const fs::path program = w.windows.disk() / "Busy.exe";
    fs::copy_file("/bin/sleep", program);
    pid_t process = 0;
    std::string words[] = {program.string(), "60"};
    char* const arguments[] = {words[0].data(), words[1].data(), nullptr};
    ASSERT_EQ(posix_spawn(&process, arguments[0], nullptr, nullptr, arguments, environ), 0);
    EXPECT_EQ(w.person.program->hiver.hive_file_status("C:\\Busy.exe"), HIVER_MOD::usable);
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

/// 2,500 folders, 50,000 files, 10,000 of them programs under 5,000 names.
TEST(RealHives, AScanOfALargeTreeEnds) {
    Installed w;
    const fs::path tree = w.windows.disk() / "Tree";
    for (int folder = 0; folder < 2500; ++folder) {
        const fs::path path = tree / std::to_string(folder / 50) / std::to_string(folder % 50);
        fs::create_directories(path);
        for (int file = 0; file < 20; ++file) {
            const bool program = file < 4;
            const int number = program ? (folder * 4 + file) % 5000 : file;
            write_bytes(path / ("f" + std::to_string(number) + (program ? ".ExE" : ".txt")), "");
        }
    }
    fs::create_directory_symlink(tree, tree / "0" / "loop");
    MainForm& window = w.person.window();
    w.person.screen.expect_input("C:\\Tree");
    w.person.click(window.cm45);
    EXPECT_EQ(window.List1.count(), 5000);
    EXPECT_EQ(window.gesamtfiles.text(), "Total: 5000");
}

TEST(RealHives, TheRunAtLogonActsInsideTheDrivesOnly) {
    Installed w;
    const fs::path outside = w.windows.scratch() / "outside";
    fs::create_directories(outside);
    write_bytes(outside / "kept.lnk", "x");
    fs::create_directories(w.windows.disk() / "Icons");
    write_bytes(w.windows.disk() / "Icons" / "one.lnk", "new");
    fs::create_directory_symlink(outside, w.windows.disk() / "Icons" / "link");
    fs::create_directory_symlink(outside, w.windows.disk() / "Trap");
    auto& registry = w.windows.machine().registry;
    const std::string shell_folders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
    for (const std::string& key : {std::string(key::explorer), shell_folders})
        registry.create_key(HKEY_CURRENT_USER, key);
    REGISTRY_MOD& reg = w.person.program->reg;
    (void)reg.reg_write_dword(HKEY_CURRENT_USER, key::explorer, "FixedLNK", "1");
    (void)reg.reg_write_string(HKEY_CURRENT_USER, shell_folders, "Desktop", "C:\\Desk");
    for (const char* source : {"C:\\Trap", "C:\\..\\outside", "C:\\", "C:\\WINDOWS", "", "C:\\Icons"}) {
        SCOPED_TRACE(source);
        machine::Machine machine = w.windows.machine();
        REGISTRY_MOD now(machine, english);
        (void)now.reg_write_string(HKEY_CURRENT_USER, key::explorer, "FixedLNKUrl", source);
        w.windows.options.command_line = "/icon";
        w.person.program.reset();
        w.windows.open();
        EXPECT_FALSE(w.person.start(w.windows.machine())) << "the process has ended without a window";
        EXPECT_EQ(bytes_of(outside / "kept.lnk"), "x");
        EXPECT_TRUE(fs::exists(w.windows.disk() / "WINDOWS" / "explorer.exe"));
    }
    EXPECT_FALSE(fs::exists(w.windows.disk() / "Icons")) << "who may delete the source has lost it";
}

}  // namespace
}  // namespace britlock
