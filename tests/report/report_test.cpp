#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "program/world.h"

namespace britlock {
namespace {

using testing::HasSubstr;

/// The lines of a document after one another, the marks of the printer shortened.
std::string in_one(const std::string& printed) {
    std::string text = std::regex_replace(printed, std::regex(": \\[tab 50\\]"), "=");
    text = std::regex_replace(text, std::regex("\\[Arial 12 bold\\]\n(.*)\n\\[Arial 10\\]\n"), "<$1>");
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
              "<Disable some entries in your Startmenu...>Disable ShutDown=YES|Disable LogOff=No|"
              "Disable Run=No|Disable Find=No|Disable Help=No|Disable Settings=No|Disable Documents=No|"
              "Disable Documents=YES|Disable Documents=No|Disable Startmenu Settings=No|"
              "<Restrict your Control Panel...>Add/Remove Software=YES|Display=No|Internet Options=No|"
              "Regional Settings=No|Game Controllers=No|Mouse,Keyboard,Fonts,Printers=No|Multimedia=No|"
              "Modems=No|Network=No|Passwords=No|Power Management=No|UPS=No|Scanner and Cameras=No|"
              "System=No|Accessibility Options=No|Telephony=No|ODBC Data Sources=No|Find Fast=No|"
              "Tweak UI=No|Date/Time=No|RealPlayer=No|Mail=No|Hardware=No|Sounds=No|Ports (NT)=No|"
              "Console (NT)=No|Network (NT/W2K/XP)=No|PCMCIA, SCSI-Adapters, Tape Devices (NT)=No|"
              "Devices, Services, Server (NT)=No|User Accounts=No|Printers and Faxes (2000/XP)=No|"
              "Scheduled Tasks (2000/XP)=No|Folder Options (2000/XP)=No|Scanners and Cameras (2000/XP)=No|"
              "Fonts (2000/XP)=No|Speech=No|Taskbar and Start Menu (2000/XP)=No|Administrative Tools=No|"
              "Network Connections (2000/XP)=YES|"
              "[at 1,15500]                                Brightlock Suite - restrictions for shared PCs|"
              "[page]|<Restrict your Desktop...>No Change Taskbar-Settings=No|"
              "No Change Display-Settings=No|No Icons on Desktop=No|No Icon 'Nethood Neighborhood'=No|"
              "No 'Click here to start...'=No|No Save Settings at exit Windows=No|"
              "Fix your Background-Picture:=No|No Registry / Regedit available=No|"
              "Fix your Background-Picture:=C:\\B\xE4r.bmp|"
              "<Restrict Apps, run these apps only:>Allow only these EXE-Files:=YES||Filelist:|"
              "BRITLOCK.EXE|\xDC.EXE|<Hide the following drives...>|The following drives are hidden:|"
              " A:\\  S:\\  Z:\\  Z:\\ |"
              "[at 1,15500]                                Brightlock Suite - restrictions for shared PCs|"
              "[page]|<Win 9X/ME Restrictions...>No Properties 'Network-Neighborhood'=YES|"
              "No 'Network-Neighborhood'=No|No Workgroup Contents=No|No Change Login Password=No|"
              "Disable File-Sharing Settings=No|Disable Printer-Sharing Settings=No|No Add Printers=No|"
              "No Delete Printers=No|"
              "<IE Explorer (5.01 and higher) Restrictions ...>Disable Downloads in IE Explorer=No|"
              "No Context-Menu in IE Explorer=No|No Internet Explorer-Settings=No|No View Source=No|"
              "Disable Favorites=No|No Menu File/New=No|No Menu File/Open=No|No Menu File/Save=No|"
              "No Menu File/Print=No|No Menu File/Exit=No|"
              "<General Windows-Settings>Never start 'Scandisk' at Startup...=No|"
              "No Boot-Menu at Startup (No F8 available...)=No|No ActiveDesktop (W98/ME)=No|"
              "No ActiveDesktop Settings=No|No Properties 'Network-Neighborhood'=YES|"
              "No Windows Beep on Error=No|Disable right-click Desktop/Explorer=No|"
              "Disable right-click Taskbar=No|Disable 2000/XP-Taskmanager=No|Disable Windows Update=YES|"
              "Disable CommandLine (MS-DOS)=No|<Misc. Settings>Registered Organisation:=The School|"
              "Registered Name:=|"
              "[at 1,15500]                                Brightlock Suite - restrictions for shared PCs|"
              "[end]|");
}

TEST(Report, IsInTheLanguageOfTheWindow) {
    World w(machine::versions::winxp, german);
    w.enter().c17.set_value(1);
    w.click(w.window().mm14);
    const std::string printed = in_one(w.screen.printed);
    EXPECT_THAT(printed, HasSubstr("<Startmen\xFC Einschr\xE4nkungen ...>"));
    EXPECT_THAT(printed, HasSubstr("|Keine Dokumente=AKTIVIERT|Keine Dokumente=nicht aktiviert|"));
    EXPECT_THAT(printed, HasSubstr("||Dateiliste:|"));
    EXPECT_THAT(printed, HasSubstr(">|Folgende Laufwerksbuchstaben sind ausgeblendet:|[KEINE]|[at 1,15500]"));
}

TEST(Report, WithoutAPrinterEndsTheProgram) {
    World w;
    MainForm& window = w.enter();
    w.click(window.mm15);
    EXPECT_EQ(w.screen.printer_setups, 1);
    w.screen.has_printer = false;
    w.screen.expect_box("Brightlock Suite");
    EXPECT_FALSE(w.click(window.mm14));
    EXPECT_THAT(w.told(), HasSubstr("Run-time error '482'"));
}

}  // namespace
}  // namespace britlock
