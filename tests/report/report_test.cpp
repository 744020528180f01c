#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "program/world.h"

namespace britlock {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// What is printed from `begin` up to `end`.
std::string part(const std::string& printed, const std::string& begin, const std::string& end) {
    const size_t from = printed.find(begin);
    const size_t to = printed.find(end, from);
    EXPECT_TRUE(from != std::string::npos && to != std::string::npos) << begin << " to " << end;
    return printed.substr(from, to - from);
}

std::string row(const std::string& caption, const std::string& value) {
    return caption + ": [tab 50]" + value + "\n";
}

TEST(Report, PrintsWhatIsOnShow) {
    World w;
    MainForm& window = w.enter();
    for (auto* box : {&window.c11, &window.c18, &window.c41, &window.c65, &window.c95})
        box->set_value(1);
    window.c12.set_value(2);
    window.lv1.set_checked(0, true);
    window.lv1.set_checked(38, true);
    window.t31.set_text("C:\\B\xE4r.bmp");
    window.List1.clear();
    window.List1.add("BRITLOCK.EXE");
    window.List1.add("\xDC.EXE");
    for (const char drive : {'A', 'S', 'T', 'Z'})
        window.drive_boxes[drive - 'A'].set_value(1);
    window.drive_boxes[1].set_value(2);
    window.t81.set_text("The School");
    window.t82.set_text("");
    w.click(window.mm14);
    const std::string& printed = w.screen.printed;

    const std::string footer =
        "[at 1,15500]                                Brightlock Suite - restrictions for shared PCs\n";
    EXPECT_THAT(
        printed,
        StartsWith("[left -1000][Arial 14 bold]\nBrightlock Suite\n[Arial 10]\n"
                   "[Arial 12 bold]\nDisable some entries in your Startmenu...\n[Arial 10]\n" +
                   row("Disable ShutDown", "YES") + row("Disable LogOff", "No") + row("Disable Run", "No") +
                   row("Disable Find", "No") + row("Disable Help", "No") + row("Disable Settings", "No") +
                   row("Disable Documents", "No") + row("Disable Documents", "YES") +
                   row("Disable Documents", "No") + row("Disable Startmenu Settings", "No") +
                   "[Arial 12 bold]\nRestrict your Control Panel...\n[Arial 10]\n" +
                   row("Add/Remove Software", "YES") + row("Display", "No")));
    EXPECT_THAT(printed,
                HasSubstr(row("Administrative Tools", "No") + row("Network Connections (2000/XP)", "YES") +
                          footer + "[page]\n" + "[Arial 12 bold]\nRestrict your Desktop...\n[Arial 10]\n" +
                          row("No Change Taskbar-Settings", "No")));
    EXPECT_EQ(part(printed, "Fix your", "[page]"),
              row("Fix your Background-Picture:", "No") + row("No Registry / Regedit available", "No") +
                  row("Fix your Background-Picture:", "C:\\B\xE4r.bmp") +
                  "[Arial 12 bold]\nRestrict Apps, run these apps only:\n[Arial 10]\n" +
                  row("Allow only these EXE-Files:", "YES") + "\nFilelist:\nBRITLOCK.EXE\n\xDC.EXE\n" +
                  "[Arial 12 bold]\nHide the following drives...\n[Arial 10]\n\n" +
                  "The following drives are hidden:\n A:\\  S:\\  Z:\\  Z:\\ \n" + footer);
    EXPECT_EQ(part(printed, "Win 9X/ME Restrictions", "[Arial 10]\nDisable Downloads"),
              "Win 9X/ME Restrictions...\n[Arial 10]\n" + row("No Properties 'Network-Neighborhood'", "YES") +
                  row("No 'Network-Neighborhood'", "No") + row("No Workgroup Contents", "No") +
                  row("No Change Login Password", "No") + row("Disable File-Sharing Settings", "No") +
                  row("Disable Printer-Sharing Settings", "No") + row("No Add Printers", "No") +
                  row("No Delete Printers", "No") +
                  "[Arial 12 bold]\nIE Explorer (5.01 and higher) Restrictions ...\n");
    EXPECT_EQ(part(printed, "No Menu File/Exit", "[end]"),
              row("No Menu File/Exit", "No") + "[Arial 12 bold]\nGeneral Windows-Settings\n[Arial 10]\n" +
                  row("Never start 'Scandisk' at Startup...", "No") +
                  row("No Boot-Menu at Startup (No F8 available...)", "No") +
                  row("No ActiveDesktop (W98/ME)", "No") + row("No ActiveDesktop Settings", "No") +
                  row("No Properties 'Network-Neighborhood'", "YES") + row("No Windows Beep on Error", "No") +
                  row("Disable right-click Desktop/Explorer", "No") +
                  row("Disable right-click Taskbar", "No") + row("Disable 2000/XP-Taskmanager", "No") +
                  row("Disable Windows Update", "YES") + row("Disable CommandLine (MS-DOS)", "No") +
                  "[Arial 12 bold]\nMisc. Settings\n[Arial 10]\n" +
                  row("Registered Organisation:", "The School") + row("Registered Name:", "") + footer);
    // Rows, changes of the font, footers, page ends, the margin and the end.
    EXPECT_EQ(std::count(printed.begin(), printed.end(), '['), 90 + 20 + 3 + 2 + 1 + 1) << printed;
}

TEST(Report, IsInTheLanguageOfTheWindow) {
    World w(machine::versions::winxp, german);
    MainForm& window = w.enter();
    window.c17.set_value(1);
    w.click(window.mm14);
    const std::string& printed = w.screen.printed;
    EXPECT_THAT(printed, HasSubstr("Startmen\xFC Einschr\xE4nkungen ..."));
    EXPECT_THAT(printed,
                HasSubstr(row("Keine Dokumente", "AKTIVIERT") + row("Keine Dokumente", "nicht aktiviert") +
                          row("Keine Dokumente", "nicht aktiviert")));
    EXPECT_THAT(printed, HasSubstr("\nDateiliste:\n"));
    EXPECT_THAT(printed,
                HasSubstr("\n\nFolgende Laufwerksbuchstaben sind ausgeblendet:\n[KEINE]\n[at 1,15500]"));
}

TEST(Report, WithoutAPrinterEndsTheProgram) {
    World w;
    MainForm& window = w.enter();
    w.click(window.mm15);
    EXPECT_EQ(w.screen.printer_setups, 1);
    w.screen.has_printer = false;
    w.screen.expect_box("Brightlock Suite");
    EXPECT_FALSE(w.click(window.mm14));
    EXPECT_THAT(w.screen.boxes.back().text, StartsWith("Run-time error '482'"));
}

}  // namespace
}  // namespace britlock
