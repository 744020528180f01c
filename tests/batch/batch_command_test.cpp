#include "app/linux/batch_command.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include "base/product.h"
#include "base/text.h"
#include "files/restriction_file.h"
#include "hostfile/file_lock.h"
#include "machine/offline_fixture.h"
#include "platform/product_setup.h"
#include "startup/password.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

struct Answer {
    int code;
    std::string out;
    std::string err;
};

/// A school's Windows: four more users, each with the hive of Anna.
struct BatchCommand : testing::Test {
    OfflineFixture windows;
    fs::path file = windows.scratch() / "set.brl";

    void SetUp() override {
        britlock::prepare_installation(windows.machine().registry);
        set_password("s\344cret");
        for (const char* user : {"pupil1", "pupil2", "pupil3", "pupil4"}) {
            fs::create_directories(windows.hive_of(user).parent_path());
            fs::copy_file(windows.hive_of("Anna"), windows.hive_of(user));
        }
        britlock::RestrictionSet set;
        for (const int box : {11, 90, 610})
            set.boxes.set(box, 1);
        set.programs = {"CALC.EXE"};
        set.drives[3] = 1;
        write_bytes(file, brl_text(set));
    }

    void set_password(const std::string& password) {
        const std::string stored = britlock::encode_password(password, britlock::password_key);
        (void)windows.machine().registry.set(machine::Root::local_machine, product::key, "UserPW",
                                             {machine::reg_sz, stored + '\0'});
    }
    /// Gives the password, in UTF-8, on a pipe.
    Answer run(std::vector<std::string> words, const std::string& password = "s\u00E4cret\n") const {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe(ends.data()), 0);
        EXPECT_EQ(write(ends[1], password.data(), password.size()), static_cast<ssize_t>(password.size()));
        close(ends[1]);
        words.push_back("--machine=" + windows.disk().string());
        words.push_back("--state=" + windows.options.state_folder);
        words.push_back("--password-fd=" + std::to_string(ends[0]));
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int code = run_batch(words, PROGRAM_FOLDER, english);
        close(ends[0]);
        const std::string out = testing::internal::GetCapturedStdout();
        return {code, out, testing::internal::GetCapturedStderr()};
    }
    std::map<std::string, std::string> hives() const {
        std::map<std::string, std::string> out;
        for (const auto& profile : fs::directory_iterator(windows.disk() / "Documents and Settings"))
            out[profile.path().filename()] = bytes_of(profile.path() / "NTUSER.DAT");
        return out;
    }
};

TEST_F(BatchCommand, RestrictsAllUsersButThoseItCannot) {
    std::string damaged = bytes_of(windows.hive_of("pupil3"));
    damaged.replace(0x1000, 4, "nope");
    write_bytes(windows.hive_of("pupil3"), damaged);
    const auto place = hostfile::place_of(windows.hive_of("pupil4").string());
    const auto lock = hostfile::FileLock::acquire(*place);
    ASSERT_TRUE(lock);
    const auto before = hives();

    const Answer first = run({"apply", file.string(), "--all-users"});
    EXPECT_EQ(first.code, 1);
    EXPECT_EQ(first.err, "");
    const auto after = hives();
    for (const auto& [name, bytes] : after)
        EXPECT_EQ(bytes != before.at(name), first.out.find(name + ": done\n") != std::string::npos) << name;
    EXPECT_EQ(std::count(first.out.begin(), first.out.end(), '\n'), 7) << first.out;
    EXPECT_THAT(first.out, HasSubstr("\npupil3: failed: the file NTUSER.DAT could not be loaded (HKU"));
    EXPECT_THAT(first.out, HasSubstr("\npupil4: failed: the file NTUSER.DAT "));
    EXPECT_EQ(run({"apply", file.string(), "--all-users"}).out, first.out);
    EXPECT_TRUE(hives() == after) << "a second run changes nothing";
    EXPECT_TRUE(windows.offline().mounts().mounts()->empty());

    const Answer shown = run({"show", "--user", "pupil2", "--user=nobody", "--user", "ANNA"});
    EXPECT_EQ(shown.code, 1);
    const std::string marks =
        "  Disable ShutDown\n  Disable Printer-Sharing Settings\n"
        "  No Windows Beep on Error\n  Hidden drives: D\n";
    EXPECT_EQ(shown.out, "pupil2:\n" + marks + "ANNA:\n" + marks);
    EXPECT_EQ(shown.err, "nobody: failed: there is no such user here\n");
    EXPECT_THAT(run({"show", "--json", "--user", "Ben"}).out,
                HasSubstr("\"ticked\": [\"c11\", \"c610\", \"c90\"]"));
    EXPECT_TRUE(hives() == after) << "nor does a look";
}

TEST_F(BatchCommand, SavesWhatItAppliesToOthers) {
    const std::string copy = (windows.scratch() / "copy.brl").string();
    ASSERT_EQ(run({"apply", file.string(), "--user", "Anna"}).code, 0);
    EXPECT_EQ(run({"save", copy, "--user", "Anna"}).out, "Anna: done\n");
    ASSERT_EQ(run({"apply", copy, "--user", "Ben", "--user", "pupil1"}).code, 0);
    const auto first = britlock::read_brl(bytes_of(file), {});
    auto second = britlock::read_brl(bytes_of(copy), {});
    ASSERT_TRUE(first && second);
    second->machine = first->machine;                  // those of the machine it was saved on
    second->programs.erase(second->programs.begin());  // a user's list always begins with the program itself
    second->wallpaper = first->wallpaper;              // the user's own picture, not fixed
    EXPECT_EQ(*first, *second);

    const std::string saved = bytes_of(copy);
    const Answer again = run({"save", copy, "--user", "Anna"});
    EXPECT_EQ(again.code, 3);
    EXPECT_EQ(again.err, "britlock: " + copy + " already exists\n");
    EXPECT_EQ(run({"save", copy, "--user", "pupil2", "--overwrite"}).code, 0);
    EXPECT_NE(bytes_of(copy), saved);
    EXPECT_THAT(run({"save", "/nowhere/x.brl", "--user", "Anna"}).out,
                HasSubstr("Anna: failed: /nowhere/x.brl cannot be written"));
}

TEST_F(BatchCommand, OpensNothingWithoutThePasswordOrTheFile) {
    const auto before = hives();
    const auto refusal = [&](const std::vector<std::string>& words, const std::string& password) {
        const Answer answer = run(words, password);
        EXPECT_EQ(answer.code, 3);
        EXPECT_EQ(answer.out, "");
        return answer.err;
    };
    const std::vector<std::string> apply = {"apply", file.string(), "--all-users"};
    for (const char* wrong : {"", "\n", "secret\n", "S\u00E4cret", "s\u00E4cret \u4E00\n"})
        EXPECT_EQ(refusal(apply, wrong), "britlock: the password is incorrect\n") << wrong;
    EXPECT_EQ(run({"show", "--user", "Anna"}, "s\u00E4cret").code, 0) << "the line may end with the input";

    const std::string bad = (windows.scratch() / "bad.brl").string();
    const std::pair<std::string, const char*> files[] = {
        {bytes_of(file).substr(0, 200), " cannot be read: Input past end of file\n"},
        {"PK,x", " is not a Brightlock Suite file\n"}};
    for (const auto& [bytes, why] : files) {
        write_bytes(bad, bytes);
        EXPECT_EQ(refusal({"apply", bad, "--all-users"}, "s\u00E4cret"), "britlock: " + bad + why);
    }
    EXPECT_THAT(refusal({"apply", "/nowhere.brl", "--all-users"}, "s\u00E4cret"),
                HasSubstr("File not found"));
    set_password("");
    EXPECT_THAT(refusal(apply, ""), HasSubstr("no password has been set yet"));
    fs::remove_all(windows.disk() / "WINDOWS");
    EXPECT_THAT(refusal(apply, "s\u00E4cret"), HasSubstr("britlock: "));
    EXPECT_TRUE(hives() == before);
}

TEST_F(BatchCommand, TellsAWrongCall) {
    // clang-format off
    const std::pair<std::vector<std::string>, const char*> calls[] = {
        {{"apply", "--all-users"}, "apply wants a file"}, {{"show", "x", "--all-users"}, "nothing is known of 'x'"},
        {{"apply", "x"}, "apply wants either --user or --all-users"}, {{"save", "x", "--all-users"}, "save wants one --user"},
        {{"show", "--user=A", "--all-users"}, "show wants either"}, {{"save", "x", "--user=A", "--user=B"}, "save wants one"},
        {{"apply", "x", "--all-users", "--json"}, "--json goes with show"}, {{"show", "--password=x"}, "unknown option"},
        {{"apply", "x", "--all-users", "--overwrite"}, "--overwrite goes with save"}, {{"show", "--user="}, "--user does not"},
        {{"show", "--all-users=yes"}, "--all-users takes no value"}, {{"show", "--drive", "C=/"}, "--machine does not take"},
        {{"show", "--password-fd", "3x"}, "--password-fd does not take the value '3x'"}};
    // clang-format on
    for (const auto& [words, text] : calls) {
        const Answer answer = run(words);
        EXPECT_EQ(answer.code, 2);
        EXPECT_THAT(answer.err, StartsWith(std::string("britlock: ") + text));
        EXPECT_THAT(answer.err, HasSubstr("Usage:"));
    }
    EXPECT_THAT(run({"show", "--help"}).out, StartsWith("Usage:"));
}

}  // namespace
