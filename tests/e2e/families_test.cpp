#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "e2e/installed.h"
#include "hostfile/file_lock.h"
#include "program/random_marks.h"

namespace britlock {
namespace {

namespace fs = std::filesystem;
using hostfile::FileLock;
using machine::SampleFamily;
using testing::HasSubstr;

FileLock lock_of(const fs::path& file, FileLock::Purpose purpose = FileLock::Purpose::work) {
    return std::move(*FileLock::acquire(*hostfile::place_of(file), purpose));
}

TEST(RealHives, EveryFaultHasItsBoxAndLeavesTheFileWhole) {
    struct Fault {
        const char* box;
        std::function<void(const fs::path& hive)> cause;
    };
    const char* const missing = "Could not find path/file...";
    const char* const in_use = "File in use...";
    const char* const no_access = "Problems while writing to registry...";
    std::optional<FileLock> other;
    const auto changed = [](const std::function<void(std::string&)>& change) {
        return [change](const fs::path& hive) {
            std::string bytes = bytes_of(hive);
            change(bytes);
            write_bytes(hive, bytes);
        };
    };
    const Fault faults[] = {
        {missing, [](auto& hive) { fs::remove(hive); }},
        {missing, changed([](auto& bytes) { bytes.clear(); })},
        {in_use, [&](auto& hive) { other = lock_of(hive); }},
        {in_use, [](auto& hive) { fs::remove(hive), fs::create_directory(hive); }},
        {in_use,
         [](auto& hive) { fs::rename(hive, hive.string() + "2"), fs::create_symlink("NTUSER.DAT2", hive); }},
        {"Path not found...", [](auto& hive) { fs::remove_all(hive.parent_path()); }},
        {no_access, changed([](auto& bytes) { bytes.assign(9000, 'x'); })},
        {no_access, changed([](auto& bytes) { bytes.resize(bytes.size() - 4096); })},  // cut off
        {no_access, changed([](auto& bytes) { bytes.replace(4096, 4, 4, '\0'); })},    // damaged
        {no_access, changed([](auto& bytes) { bytes[4] ^= 1; })},                      // dirty
    };
    for (const Fault& fault : faults) {
        SCOPED_TRACE(&fault - faults);
        Installed w;
        w.enter();
        w.choose("Ben");
        w.click(w.window().c12);
        fault.cause(w.hive());
        const std::string before = fs::is_regular_file(w.hive()) ? bytes_of(w.hive()) : "";
        w.expecting(fault.box).choose("Anna");
        w.expecting(fault.box).apply();
        EXPECT_EQ(w.ticked(), " c12") << "the marks stay";
        other.reset();
        EXPECT_TRUE(before.empty() || bytes_of(w.hive()) == before);
        w.choose("Ben");
        w.apply();
        EXPECT_THAT(w.dump("Ben"), HasSubstr("NoLogOff 4 00000000")) << "and the next user is served";
    }
}

TEST(RealHives, ARunTimeErrorAmidTheWritesLeavesThoseBeforeItOnTheDisk) {
    Installed w;
    w.enter();
    w.choose("Anna");
    w.click(w.window().c11);
    w.type(w.window().t81, "5000000000 AG");
    EXPECT_FALSE(w.expecting("Brightlock Suite").apply()) << "the process has ended";
    w.windows.offline().write_pending();
    EXPECT_TRUE(regf::validate(regf::read_file(w.hive())).empty());
    EXPECT_THAT(w.dump(), HasSubstr("NoClose 4 01000000"));
    EXPECT_TRUE(w.windows.offline().mounts().mounts()->empty());
    EXPECT_EQ(w.windows.troubles(), "");
}

/// BRITLOCK_CASES sets how many sets of marks each family gets.
TEST(RealHives, WhatWasMarkedComesBack) {
    const char* wanted = std::getenv("BRITLOCK_CASES");
    uint32_t seed = 5000;
    for (const SampleFamily family : {SampleFamily::winnt, SampleFamily::win2k, SampleFamily::winxp}) {
        Installed w(family);
        w.enter();
        w.choose("Anna");
        for (const uint32_t end = seed + (wanted ? std::atoi(wanted) : 340); seed < end; ++seed) {
            const RestrictionSet before = w.window().marks();
            mark_at_random(w, seed);
            const RestrictionSet marked = w.window().marks();
            w.apply();
            ASSERT_EQ(w.enter_again("Anna").marks(), after_a_round_trip(marked, before)) << seed;
        }
        EXPECT_TRUE(regf::validate(regf::read_file(w.hive())).empty());
    }
}

/// Two instances that look at the hive tool or at a hive at the same moment, or that run the tool, must not
/// take each other for somebody who writes it.
TEST(RealHives, OnlyAFileThatSomebodyHoldsIsInUse) {
    Installed w;
    w.enter();
    const auto status = [&](const std::string& file) { return w.program->hiver.hive_file_status(file); };
    const FileLock look = lock_of(w.hive(), FileLock::Purpose::look), other = lock_of(w.hive("Ben"));
    EXPECT_EQ(status(w.windows.windows_hive_of("Anna")), HIVER_MOD::usable);
    EXPECT_EQ(status(w.windows.windows_hive_of("Ben")), HIVER_MOD::in_use);

    std::string words[] = {w.windows.disk() / "Busy.exe", "60"};
    fs::copy_file("/bin/sleep", words[0]);
    char* const arguments[] = {words[0].data(), words[1].data(), nullptr};
    pid_t process = 0;
    ASSERT_EQ(posix_spawn(&process, arguments[0], nullptr, nullptr, arguments, environ), 0);
    EXPECT_EQ(status("C:\\Busy.exe"), HIVER_MOD::usable);
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

}  // namespace
}  // namespace britlock
