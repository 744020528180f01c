#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "machine/offline_fixture.h"
#include "platform/product_setup.h"
#include "program/person.h"
#include "regf/dump.h"

namespace britlock {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// An Apply in a process of its own, with the hive tool in its process group, so that both die at once.
class Applying {
  public:
    explicit Applying(OfflineFixture& windows) {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        EXPECT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1),
                  0);  // the hive tool becomes our child when its parent dies
        process_ = fork();
        if (process_ == 0) {
            setpgid(0, 0);
            close(ends[0]);
            act(windows, ends[1]);
            _exit(0);
        }
        close(ends[1]);
        pipe_ = ends[0];
        wait_for_letter();
    }
    Applying(const Applying&) = delete;
    Applying& operator=(const Applying&) = delete;
    ~Applying() {
        close(pipe_);
        if (process_ > 0) end();
    }

    /// The child tells one letter before and one behind the Apply. False where it died first.
    bool wait_for_letter() {
        char letter = 0;
        return read(pipe_, &letter, 1) == 1;
    }

    void end() {
        kill(-process_, SIGKILL);
        while (waitpid(-process_, nullptr, 0) > 0) {
        }
        process_ = -1;
    }

  private:
    static void act(OfflineFixture& windows, int pipe_end) {
        close(STDERR_FILENO);
        windows.open();
        Person person;
        person.start(windows.machine());
        person.give_password("secret");
        person.choose("Anna");
        for (auto* box : {&person.window().c11, &person.window().c16, &person.window().c90})
            person.click(*box);
        person.click_applet(1);
        (void)!write(pipe_end, "b", 1);
        person.apply();
        (void)!write(pipe_end, "e", 1);
    }

    pid_t process_ = -1;
    int pipe_ = -1;
};

std::string state_of(const fs::path& hive) {
    const std::string bytes = bytes_of(hive);
    const regf::ByteView view(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    if (!regf::validate(view).empty()) return "damaged";
    const auto opened = regf::Hive::open(regf::Bytes(view.begin(), view.end()));
    if (!opened) return "unreadable: " + opened.error().message;
    return regf::dump(*opened);  // time stamps differ from run to run; keys and values must not
}

TEST(Crash, AKillAtAnyMomentOfAnApplyLeavesTheOldHiveOrTheNewOne) {
    constexpr int points = 240;
    OfflineFixture windows;
    britlock::prepare_installation(windows.machine().registry);
    {
        Person person;
        person.screen.expect_box("Set a Password !");
        person.start(windows.machine());
        person.screen.expect_box("Password...");
        person.set_password("secret");
    }
    const fs::path hive = windows.hive_of("Anna");
    fs::copy_file(fs::path(MADE_HIVES) / "sound/xp-user.NTUSER.DAT", hive,
                  fs::copy_options::overwrite_existing);
    const std::string old_bytes = bytes_of(hive);
    const std::string old_state = state_of(hive);

    Clock::duration longest{};
    for (int run = 0; run < 3; ++run) {
        write_bytes(hive, old_bytes);
        Applying whole(windows);
        const auto begin = Clock::now();
        ASSERT_TRUE(whole.wait_for_letter());
        longest = std::max(longest, Clock::now() - begin);
    }
    const std::string new_state = state_of(hive);
    ASSERT_NE(new_state, old_state);

    int old_found = 0, new_found = 0, finished = 0;
    for (int point = 0; point < points; ++point) {
        SCOPED_TRACE(point);
        write_bytes(hive, old_bytes);
        Applying apply(windows);
        std::this_thread::sleep_for(longest * point / points);
        apply.end();
        finished += apply.wait_for_letter();
        const std::string state = state_of(hive);
        ASSERT_TRUE(state == old_state || state == new_state) << state.substr(0, 60);
        (state == old_state ? old_found : new_found) += 1;
        if (state == old_state) {
            ASSERT_EQ(bytes_of(hive), old_bytes) << "byte for byte";
        }
        // What the dead left mounted, the next one clears away first; the hive is whole after that as well.
        // What died while it tried whether the file could be replaced is cleared away by the next who tries.
        (void)windows.unload("Anna");
        ASSERT_EQ(windows.load("Anna"), 0u);
        ASSERT_EQ(windows.unload("Anna"), 0u);
        const std::string later = state_of(hive);
        ASSERT_TRUE(later == old_state || later == new_state);
        ASSERT_EQ(std::distance(fs::directory_iterator(hive.parent_path()), {}),
                  std::distance(fs::directory_iterator(windows.hive_of("Ben").parent_path()), {}))
            << "no file is left beside it";
    }
    std::cout << "  " << points << " kills over "
              << std::chrono::duration<double, std::milli>(longest).count() << " ms: " << old_found
              << " old, " << new_found << " new, " << finished << " after the end\n";
    EXPECT_GT(old_found, points / 10) << "the kills came too late to tell anything";
}

}  // namespace
}  // namespace britlock
