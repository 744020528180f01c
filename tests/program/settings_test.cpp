#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "program/world.h"

namespace britlock {
namespace {

using namespace machine;
using testing::HasSubstr;
using testing::SizeIs;
using toolkit::Answer;

TEST(SettingsPage, ToolsOfWindowsAreStartedOrMissed) {
    World w;
    MainForm& window = w.enter();
    w.click(window.mm39);
    w.windows.files.add_file("C:\\WINDOWS\\system32\\control.exe", "MZ");
    w.screen.act([&] { window.syslist.click_item(0); });
    EXPECT_EQ(w.windows.processes.started.back().command_line, "control desk.cpl,,1");
    EXPECT_EQ(w.windows.processes.started.back().style, WindowStyle::minimized_focus);
    w.screen.expect_box("Error...");
    w.screen.act([&] { window.syslist.click_item(5); });
    EXPECT_FALSE(w.screen.ended);
}

TEST(SettingsPage, TheProfileFolderIsGuardedByTwoQuestions) {
    constexpr Answer yes = Answer::yes, no = Answer::no;
    for (const auto& [first, second] :
         {std::pair(no, no), std::pair(no, yes), std::pair(yes, no), std::pair(yes, yes)}) {
        World w;
        MainForm& window = w.enter();
        w.click(window.mm39);
        EXPECT_THAT(w.screen.boxes, SizeIs(0)) << "the page alone asks nothing";
        w.screen.expect_box("Attention !!!!", first);
        w.screen.expect_box("Sure ?", second);
        w.screen.expect_box(second == Answer::yes ? "Program terminated..." : "Info");
        if (first == Answer::yes) {
            w.screen.act([&] { window.t810.type("P:\\"); });
            EXPECT_THAT(w.screen.boxes, SizeIs(1)) << "a box is no loss of the focus";
            // Any way out of the field asks, a turn of the page among them.
            w.click(window.mm31);
        } else {
            w.click(window.t810);
        }
        EXPECT_TRUE(w.screen.ended);
        EXPECT_THAT(w.screen.boxes[1].text,
                    HasSubstr(first == Answer::yes ? "Use directory P:\\for user profiles ?"
                                                   : "Documents and Settings\\for user profiles ?"));
        EXPECT_EQ(w.screen.boxes[0].default_answer, Answer::no);
        const auto& stored = w.windows.registry.at(HKEY_LOCAL_MACHINE, product::key).values;
        EXPECT_EQ(stored.contains("ProfileMainPath"), second == Answer::yes);
    }
    World old(versions::win98);
    MainForm& window = old.enter();
    old.click(window.mm39);
    old.screen.act([&] { window.t810.click(); });
    EXPECT_THAT(old.screen.boxes, SizeIs(0)) << "on Windows 9X the field is closed";
}

TEST(HelpMenu, TellsOfTheProgram) {
    World w(versions::win2k);
    MainForm& window = w.enter();
    w.expecting("Brightlock Suite").click(window.mm54);
    EXPECT_EQ(w.told(), "Brightlock Suite\nbritlock\n\nVersion: 1.0.0\nWinVersion: Win2K");
    w.click(window.mm53);
    EXPECT_EQ(w.windows.processes.addresses.back(), "http://" + window.StatusBar.panel_text(1));
}

}  // namespace
}  // namespace britlock
