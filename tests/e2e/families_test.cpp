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

#include "e2e/installed.h"
#include "program/random_marks.h"

namespace britlock {
namespace {

namespace fs = std::filesystem;
using machine::SampleFamily;
using testing::HasSubstr;

/// Holds a file as another program does: a lock of this very process on another opening of the file.
class OtherProgram {
  public:
    explicit OtherProgram(const fs::path& file) : held_(open(file.c_str(), O_RDWR | O_CLOEXEC)) {
        EXPECT_EQ(flock(held_, LOCK_EX), 0);
    }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;
    ~OtherProgram() { close(held_); }

  private:
    int held_;
};

TEST(RealHives, EveryFaultHasItsBoxAndLeavesTheFileWhole) {
    struct Fault {
        const char* what;
        const char* box;
        std::function<void(Installed&)> cause;
    };
    const char* const missing = "Could not find path/file...";
    const char* const in_use = "File in use...";
    const char* const no_access = "Problems while writing to registry...";
    std::unique_ptr<OtherProgram> other;
    const auto changed = [](const std::function<void(regf::Bytes&)>& change) {
        return [change](Installed& w) {
            regf::Bytes bytes = regf::read_file(w.hive());
            change(bytes);
            regf::write_file(w.hive(), bytes);
        };
    };
    const Fault faults[] = {
        {"missing", missing, [](Installed& w) { fs::remove(w.hive()); }},
        {"empty", missing, changed([](auto& b) { b.clear(); })},
        {"held", in_use, [&](Installed& w) { other = std::make_unique<OtherProgram>(w.hive()); }},
        {"a folder", in_use, [](Installed& w) { fs::remove(w.hive()), fs::create_directory(w.hive()); }},
        {"folder gone", "Path not found...", [](Installed& w) { fs::remove_all(w.hive().parent_path()); }},
        {"no hive", no_access, changed([](auto& b) { b.assign(9000, 'x'); })},
        {"cut off", no_access, changed([](auto& b) { b.resize(b.size() - 4096); })},
        {"damaged", no_access, changed([](auto& b) { std::fill_n(b.begin() + 4096, 4, uint8_t{0}); })},
        {"dirty", no_access, changed([](auto& b) { b[4] ^= 1; })},
        {"a link", in_use,
         [](Installed& w) {
             fs::rename(w.hive(), w.hive().parent_path() / "elsewhere");
             fs::create_symlink("elsewhere", w.hive());
         }},
    };
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.what);
        Installed w;
        w.enter();
        w.person.choose("Ben");
        w.person.click(w.person.window().c12);
        fault.cause(w);
        const bool readable = fs::is_regular_file(fs::symlink_status(w.hive()));
        const regf::Bytes before = readable ? regf::read_file(w.hive()) : regf::Bytes{};
        w.person.expecting(fault.box).choose("Anna");
        w.person.expecting(fault.box).apply();
        EXPECT_TRUE(w.person.window().c12.ticked()) << "the marks stay";
        other.reset();
        EXPECT_TRUE(!readable || before.empty() || regf::read_file(w.hive()) == before);
        w.person.choose("Ben");
        w.person.apply();
        EXPECT_THAT(w.dump("Ben"), HasSubstr("NoLogOff 4 00000000")) << "and the next user is served";
    }
}

TEST(RealHives, ARunTimeErrorAmidTheWritesLeavesThoseBeforeItOnTheDisk) {
    Installed w;
    w.enter();
    w.person.choose("Anna");
    w.person.click(w.person.window().c11);
    w.person.screen.act([&] { w.person.window().t81.set_text("5000000000 AG"); });
    EXPECT_FALSE(w.person.expecting("Brightlock Suite").apply()) << "the process has ended";
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
    for (const SampleFamily family : {SampleFamily::winnt, SampleFamily::win2k, SampleFamily::winxp}) {
        Installed w(family);
        w.enter();
        w.person.choose("Anna");
        for (int i = 0; i < cases; ++i, ++seed) {
            SCOPED_TRACE(seed);
            const Marks before = Marks::of(w.person.window());
            RandomPerson(w.person, seed).mark();
            const Marks marked = Marks::of(w.person.window());
            w.person.apply();
            ASSERT_EQ(Marks::of(w.enter_again("Anna")).lines, after_a_round_trip(marked, before).lines);
        }
        EXPECT_TRUE(regf::validate(regf::read_file(w.hive())).empty());
    }
    std::cout << "  seeds 5000 to " << seed - 1 << "\n";
}

/// Two instances that look at the hive tool or at a hive at the same moment, or that run the tool, must not
/// take each other for somebody who writes it.
TEST(RealHives, OnlyAFileThatSomebodyHoldsIsInUse) {
    Installed w;
    w.enter();
    const auto status = [&](const std::string& file) {
        return w.person.program->hiver.hive_file_status(file);
    };
    const auto look =
        hostfile::FileLock::acquire(*hostfile::place_of(w.hive()), hostfile::FileLock::Purpose::look);
    ASSERT_TRUE(look);
    EXPECT_EQ(status(w.windows.windows_hive_of("Anna")), HIVER_MOD::usable);
    const OtherProgram other(w.hive("Ben"));
    EXPECT_EQ(status(w.windows.windows_hive_of("Ben")), HIVER_MOD::in_use);

    const fs::path program = w.windows.disk() / "Busy.exe";
    fs::copy_file("/bin/sleep", program);
    pid_t process = 0;
    std::string words[] = {program.string(), "60"};
    char* const arguments[] = {words[0].data(), words[1].data(), nullptr};
    ASSERT_EQ(posix_spawn(&process, arguments[0], nullptr, nullptr, arguments, environ), 0);
    EXPECT_EQ(status("C:\\Busy.exe"), HIVER_MOD::usable);
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

}  // namespace
}  // namespace britlock
