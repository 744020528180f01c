#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "app/linux/exit_code.h"
#include "app/linux/options.h"
#include "app/linux/strip.h"
#include "temporary_folder.h"

using machine::ToolReport;
using testing::HasSubstr;

TEST(Strip, TellsOutcomesWithTheirReasons) {
    constexpr auto load = ToolReport::Verb::load;
    constexpr auto unload = ToolReport::Verb::unload;
    const auto german_and_english = [](const ToolReport& report) {
        return strip::outcome(report, "14:02", german).value_or("") + "|" +
               strip::outcome(report, "14:02", english).value_or("");
    };
    EXPECT_EQ(german_and_english({load, "Anna", true, {}, ""}), "|");
    EXPECT_EQ(german_and_english({unload, "Anna", true, {}, "", 5}),
              "Anna: 5 Werte geändert, gespeichert 14:02|Anna: 5 values changed, saved 14:02");
    EXPECT_EQ(german_and_english({unload, "Anna", true, {}, "", 1}),
              "Anna: 1 Wert geändert, gespeichert 14:02|Anna: 1 value changed, saved 14:02");
    EXPECT_EQ(german_and_english({unload, "J\xf6rg", true, {}, "", 0}),
              "Jörg: nichts geändert, 14:02|Jörg: nothing changed, 14:02");
    EXPECT_EQ(german_and_english({unload, "Ben", false, base::ErrorKind::no_space, "disk full", 0, true}),
              "Ben: der Datenträger ist voll (disk full), die Änderungen sind verloren|"
              "Ben: disk full, the changes are lost");
    EXPECT_EQ(german_and_english({load, "Ben", false, {}, "regg.exe was killed"}),
              "Ben: regg.exe was killed, nichts geschrieben|Ben: regg.exe was killed, nothing written");
    EXPECT_EQ(strip::open_windows("Windows XP", "/mnt", true, german), "Windows XP in /mnt, nur lesbar");
    for (int kind = 0; kind <= static_cast<int>(base::ErrorKind::invalid); ++kind) {
        EXPECT_THAT(strip::reason(static_cast<base::ErrorKind>(kind), "detail", german),
                    testing::EndsWith(" (detail)"));
    }
}

TEST(Options, TakeTheirValuesInEitherWayAndAnyOrder) {
    const char* const line[] = {"britlock", "/icon",    "--drive=d=/data", "--machine",
                                "/mnt",     "--page=3", "--user=A=B",      "/home/a/Room 1.BRL"};
    const auto parsed = parse_options(std::size(line), line);
    const auto* options = std::get_if<Options>(&parsed);
    ASSERT_TRUE(options) << std::get<std::string>(parsed);
    EXPECT_EQ(options->drives, (std::map<char, std::string>{{'C', "/mnt"}, {'D', "/data"}}));
    EXPECT_EQ(options->command_line, "/icon");
    EXPECT_EQ(options->page, 3);
    EXPECT_EQ(options->restriction_file, "/home/a/Room 1.BRL");
    EXPECT_EQ(options->user, "A=B");
}

/// The program itself, as a shell starts it.
class Start : public testing::Test {
  protected:
    struct Outcome {
        int code;
        std::string output;  ///< and standard error
    };
    /// `before`: what the shell does first, e.g. with the environment.
    Outcome start(const std::string& arguments,
                  const std::string& before = "unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM") {
        const std::string file = folder.path() / "output";
        const std::string command = before + "; cd '" + folder.path().string() + "'; '" PROGRAM_FOLDER +
                                    edition + "/britlock' " + arguments + " >output 2>&1";
        const int status = std::system(command.c_str());
        std::ifstream in(file);
        return {WEXITSTATUS(status), {std::istreambuf_iterator<char>(in), {}}};
    }
    void SetUp() override { ASSERT_EQ(start("--make-sample=xp").code, exit_done); }

    TemporaryFolder folder;
    std::string edition;  ///< its folder; empty: the one that is built here
};

TEST_F(Start, ExitCodesAreTrueAndEachFailureIsOneLine) {
    struct Row {
        const char* arguments;
        int code;
        const char* says;
    };
    const std::string xp = " --machine xp --state state ";
    for (const auto& [arguments, code, says] :
         std::initializer_list<Row>{{"--screenshot a.png", exit_done, ""},
                                    {"--screenshot=b.png --page=9 --user Anna", exit_done, ""},
                                    {"/icon", exit_done, ""},
                                    {"--screenshot c.png --user Nobody", exit_failed, "no user Nobody"},
                                    {"--screenshot none/d.png", exit_failed, "cannot write"},
                                    {"", exit_could_not_open, "no display"}}) {
        const auto [code_now, output] = start(xp + arguments);
        EXPECT_EQ(code_now, code) << arguments << ": " << output;
        EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), code == exit_done ? 0 : 1) << output;
        EXPECT_THAT(output, HasSubstr(says)) << arguments;
    }
    const auto dead = start(xp, "export DISPLAY=:4242; unset QT_QPA_PLATFORM");
    EXPECT_EQ(dead.code, exit_could_not_open);
    EXPECT_EQ(std::count(dead.output.begin(), dead.output.end(), '\n'), 1) << dead.output;
    EXPECT_EQ(start("--machine . --screenshot e.png").code, exit_could_not_open);
}

TEST_F(Start, BothLanguagesShowAUserAndARestrictionFile) {
    std::ofstream(folder.path() / "none.brl") << "\"BRLCK\",\"cut off\"";
    const std::pair<const char*, const char*> editions[] = {{"", "Input past end of file"},
                                                            {"/twin", "Ende der Datei"}};
    for (const auto& [folder_of_edition, error] : editions) {
        edition = folder_of_edition;
        EXPECT_EQ(start("--machine xp --state state --user Anna --screenshot a.png").code, exit_done);
        const auto cut_off = start("--machine xp --state state none.brl --screenshot b.png");
        EXPECT_EQ(cut_off.code, exit_failed);
        EXPECT_THAT(cut_off.output, HasSubstr(error));
    }
}

TEST_F(Start, WrongCallsAreRefusedWhereverTheyStand) {
    for (const char* arguments :
         {"--machine xp --bogus 1", "--machine xp /icon --bogus", "--machine xp /icon -x",
          "--machine xp word", "--machine xp --page 10", "--machine xp --user", "--screenshot f.png"}) {
        const auto [code, output] = start(arguments);
        EXPECT_EQ(code, exit_wrong_call) << arguments;
        EXPECT_THAT(output, HasSubstr("Usage: ")) << arguments;
    }
    EXPECT_EQ(start("--help").code, exit_done);
    EXPECT_THAT(start("/icon --version").output, testing::StartsWith("britlock "));
}
