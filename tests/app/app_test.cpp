#include <gmock/gmock.h>

#include "app/linux/exit_code.h"
#include "app/linux/options.h"
#include "app/linux/strip.h"
#include "host.h"

using machine::ToolReport;
using testing::HasSubstr;

TEST(Strip, TellsOutcomesWithTheirReasons) {
    constexpr auto load = ToolReport::Verb::load, unload = ToolReport::Verb::unload;
    for (const auto& [report, line] : std::initializer_list<std::pair<ToolReport, const char*>>{
             {{load, "Anna", true, {}, ""}, ""},
             {{unload, "Anna", true, {}, "", 5}, "Anna: 5 Werte geändert, gespeichert 14:02"},
             {{unload, "Anna", true, {}, "", 1}, "Anna: 1 Wert geändert, gespeichert 14:02"},
             {{unload, "J\xf6rg", true, {}, "", 0}, "Jörg: nichts geändert, 14:02"},
             {{unload, "Ben", false, base::ErrorKind::no_space, "disk full", 0, true},
              "Ben: der Datenträger ist voll (disk full), die Änderungen sind verloren"},
             {{load, "Ben", false, {}, "regg.exe was killed"},
              "Ben: regg.exe was killed, nichts geschrieben"}})
        EXPECT_EQ(strip::outcome(report, "14:02", german).value_or(""), line);
    EXPECT_EQ(
        strip::outcome({unload, "Ben", false, base::ErrorKind::no_space, "disk full", 0, true}, "", english),
        "Ben: disk full, the changes are lost");
    EXPECT_EQ(strip::open_windows("Windows XP", "/mnt", true, german), "Windows XP in /mnt, nur lesbar");
    for (int kind = 0; kind <= static_cast<int>(base::ErrorKind::invalid); ++kind)
        EXPECT_THAT(strip::reason(static_cast<base::ErrorKind>(kind), "detail", german),
                    HasSubstr(" (detail)"));
}

TEST(Options, TakeTheirValuesInEitherWayAndAnyOrder) {
    const char* const line[] = {"britlock", "/icon",    "--drive=d=/data", "--machine",
                                "/mnt",     "--page=3", "--user=A=B",      "/home/a/Room 1.BRL"};
    const Options options = std::get<Options>(parse_options(std::size(line), line));
    EXPECT_THAT((std::vector{options.drives.at('C'), options.drives.at('D'), options.command_line,
                             options.user, options.restriction_file, std::to_string(options.page)}),
                testing::ElementsAre("/mnt", "/data", "/icon", "A=B", "/home/a/Room 1.BRL", "3"));
}

/// The program itself, as a shell starts it.
struct Start : testing::Test {
    /// Expects this exit code, and these words among what is told, which it returns. `before`: what the shell
    /// does first, e.g. with the environment.
    std::string expect(int code, const std::string& words, const std::string& arguments,
                       const std::string& before = "unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM") {
        const auto [ended, output] =
            run_in_shell(before + "; cd '" + folder.path().string() + "'; '" PROGRAM_FOLDER + edition +
                         "/britlock' " + arguments);
        EXPECT_EQ(ended, code) << arguments << ": " << output;
        EXPECT_THAT(output, HasSubstr(words)) << arguments;
        return output;
    }
    void SetUp() override { expect(exit_done, "", "--make-sample=xp"); }

    TemporaryFolder folder;
    std::string edition;  ///< its folder; empty: the one that is built here
};

TEST_F(Start, ExitCodesAreTrueAndEachFailureIsOneLine) {
    const std::string xp = "--machine xp --state state ";
    for (const auto& [code, words, arguments] :
         {std::tuple{exit_done, "", xp + "--screenshot a.png"},
          {exit_done, "", xp + "--screenshot=b.png --page=9 --user Anna"},
          {exit_done, "", xp + "/icon"},
          {exit_failed, "no user Nobody", xp + "--screenshot c.png --user Nobody"},
          {exit_failed, "cannot write", xp + "--screenshot none/d.png"},
          {exit_could_not_open, "no display", xp},
          {exit_could_not_open, "", "--machine . --screenshot e.png"}}) {
        const std::string output = expect(code, words, arguments);
        EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), code == exit_done ? 0 : 1) << output;
    }
    const std::string dead =
        expect(exit_could_not_open, "", xp, "export DISPLAY=:4242; unset QT_QPA_PLATFORM");
    EXPECT_EQ(std::count(dead.begin(), dead.end(), '\n'), 1) << dead;
    for (const char* arguments :
         {"--machine xp --bogus 1", "--machine xp /icon --bogus", "--machine xp /icon -x",
          "--machine xp word", "--machine xp --page 10", "--machine xp --user", "--screenshot f.png"})
        expect(exit_wrong_call, "Usage: ", arguments);
    expect(exit_done, "Usage: ", "--help");
    expect(exit_done, "britlock ", "/icon --version");
}

TEST_F(Start, BothLanguagesShowAUserAndARestrictionFile) {
    std::ofstream(folder / "none.brl") << "\"BRLCK\",\"cut off\"";
    for (const auto& [its_folder, error] :
         {std::pair{"", "Input past end of file"}, {"/twin", "Ende der Datei"}}) {
        edition = its_folder;
        expect(exit_failed, error, "--machine xp --state state none.brl --screenshot b.png");
        expect(exit_done, "", "--machine xp --state state --user Anna --screenshot a.png");
    }
}
