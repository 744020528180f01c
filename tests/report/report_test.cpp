#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "program/world.h"

namespace britlock {
namespace {

using testing::HasSubstr;

/// The lines of a document after one another, the marks of the printer shortened, a no left out.
std::string in_one(const std::string& printed) {
    std::string text = std::regex_replace(printed, std::regex(": \\[tab 50\\]"), "=");
    text = std::regex_replace(text, std::regex("\\[Arial 12 bold\\]\n(.*)\n\\[Arial 10\\]\n"), "<$1>");
    text = std::regex_replace(text, std::regex("=(No|nicht aktiviert)\n"), "\n");
    return std::regex_replace(text, std::regex("\n"), "|");
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

    EXPECT_EQ(in_one(w.screen.printed),
              "[left -1000][Arial 14 bold]|Brightlock Suite|[Arial 10]|"
              "<Disable some entries in your Startmenu...>Disable ShutDown=YES|Disable LogOff|Disable Run|"
              "Disable Find|Disable Help|Disable Settings|Disable Documents|Disable Documents=YES|"
              "Disable Documents|Disable Startmenu Settings|"
              "<Restrict your Control Panel...>Add/Remove Software=YES|Display|Internet Options|"
              "Regional Settings|Game Controllers|Mouse,Keyboard,Fonts,Printers|Multimedia|Modems|Network|"
              "Passwords|Power Management|UPS|Scanner and Cameras|System|Accessibility Options|Telephony|"
              "ODBC Data Sources|Find Fast|Tweak UI|Date/Time|RealPlayer|Mail|Hardware|Sounds|Ports (NT)|"
              "Console (NT)|Network (NT/W2K/XP)|PCMCIA, SCSI-Adapters, Tape Devices (NT)|"
              "Devices, Services, Server (NT)|User Accounts|Printers and Faxes (2000/XP)|"
              "Scheduled Tasks (2000/XP)|Folder Options (2000/XP)|Scanners and Cameras (2000/XP)|"
              "Fonts (2000/XP)|Speech|Taskbar and Start Menu (2000/XP)|Administrative Tools|"
              "Network Connections (2000/XP)=YES|"
              "[at 1,15500]                                Brightlock Suite - restrictions for shared PCs|"
              "[page]|<Restrict your Desktop...>No Change Taskbar-Settings|No Change Display-Settings|"
              "No Icons on Desktop|No Icon 'Nethood Neighborhood'|No 'Click here to start...'|"
              "No Save Settings at exit Windows|Fix your Background-Picture:|"
              "No Registry / Regedit available|Fix your Background-Picture:=C:\\B\xE4r.bmp|"
              "<Restrict Apps, run these apps only:>Allow only these EXE-Files:=YES||Filelist:|"
              "BRITLOCK.EXE|\xDC.EXE|<Hide the following drives...>|The following drives are hidden:|"
              " A:\\  S:\\  Z:\\  Z:\\ |"
              "[at 1,15500]                                Brightlock Suite - restrictions for shared PCs|"
              "[page]|<Win 9X/ME Restrictions...>No Properties 'Network-Neighborhood'=YES|"
              "No 'Network-Neighborhood'|No Workgroup Contents|No Change Login Password|"
              "Disable File-Sharing Settings|Disable Printer-Sharing Settings|No Add Printers|"
              "No Delete Printers|"
              "<IE Explorer (5.01 and higher) Restrictions ...>Disable Downloads in IE Explorer|"
              "No Context-Menu in IE Explorer|No Internet Explorer-Settings|No View Source|"
              "Disable Favorites|No Menu File/New|No Menu File/Open|No Menu File/Save|No Menu File/Print|"
              "No Menu File/Exit|<General Windows-Settings>Never start 'Scandisk' at Startup...|"
              "No Boot-Menu at Startup (No F8 available...)|No ActiveDesktop (W98/ME)|"
              "No ActiveDesktop Settings|No Properties 'Network-Neighborhood'=YES|No Windows Beep on Error|"
              "Disable right-click Desktop/Explorer|Disable right-click Taskbar|"
              "Disable 2000/XP-Taskmanager|Disable Windows Update=YES|Disable CommandLine (MS-DOS)|"
              "<Misc. Settings>Registered Organisation:=The School|Registered Name:=|"
              "[at 1,15500]                                Brightlock Suite - restrictions for shared PCs|"
              "[end]|");
}

TEST(Report, IsInTheLanguageOfTheWindow) {
    World w(machine::versions::winxp, german);
    w.enter().c17.set_value(1);
    w.click(w.window().mm14);
    const std::string printed = in_one(w.screen.printed);
    EXPECT_THAT(printed, HasSubstr("<Startmen\xFC Einschr\xE4nkungen ...>"));
    EXPECT_THAT(printed, HasSubstr("|Keine Dokumente=AKTIVIERT|Keine Dokumente|"));
    EXPECT_THAT(printed, HasSubstr("||Dateiliste:|"));
    EXPECT_THAT(printed, HasSubstr(">|Folgende Laufwerksbuchstaben sind ausgeblendet:|[KEINE]|[at 1,15500]"));
}

TEST(Report, WithoutAPrinterEndsTheProgram) {
    World w;
    MainForm& window = w.enter();
    w.click(window.mm15);
    EXPECT_EQ(w.screen.printer_setups, 1);
    w.screen.has_printer = false;
    EXPECT_FALSE(w.expecting("Brightlock Suite").click(window.mm14));
    EXPECT_THAT(w.told(), HasSubstr("Run-time error '482'"));
}

}  // namespace
}  // namespace britlock
