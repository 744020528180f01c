#include <regex>

#include "program/world.h"

namespace {

/// The lines of a document after one another, the marks of the printer shortened, a row that says no as a
/// dash.
std::string in_one(std::string text) {
    for (const auto& [pattern, with] : {std::pair{": \\[tab 50\\]", "="},
                                        {"\\[Arial 12 bold\\]\n(.*)\n\\[Arial 10\\]\n", "<$1>"},
                                        {"[^\n>]*=(No|nicht aktiviert)\n", "-"},
                                        {"\\[at 1,15500\\] {32}Brightlock Suite - .*\n", "[foot]"},
                                        {"\n", "|"}})
        text = std::regex_replace(text, std::regex(pattern), with);
    return text;
}

TEST(Report, PrintsWhatIsOnShow) {
    World w;
    MainForm& window = w.enter();
    for (auto* box : {&window.c11, &window.c18, &window.c19, &window.c41, &window.c65, &window.c95})
        box->set_value(1);
    window.c12.set_value(2);
    window.lv1.set_checked(0, true);
    window.lv1.set_checked(38, true);
    window.t31.set_text("C:\\B\xE4r.bmp");
    window.List1.add("\xDC.EXE");  // after the line that c41 adds
    for (const char drive : {'A', 'S', 'T', 'Z'})
        window.drive_boxes[drive - 'A'].set_value(1);
    window.drive_boxes[1].set_value(2);
    window.t81.set_text("The School");
    w.click(window.mm14);
    EXPECT_EQ(
        in_one(w.screen.printed),
        "[left -1000][Arial 14 bold]|Brightlock Suite|[Arial 10]|<Disable some entries in your Startmenu...>"
        "Disable ShutDown=YES|------Disable Documents=YES|Disable Documents=YES|-"
        "<Restrict your Control Panel...>Add/Remove Software=YES|-------------------------------------"
        "Network Connections (2000/XP)=YES|[foot][page]|<Restrict your Desktop...>--------"
        "Fix your Background-Picture:=C:\\B\xE4r.bmp|<Restrict Apps, run these apps only:>"
        "Allow only these EXE-Files:=YES||Filelist:|BRITLOCK.EXE|\xDC.EXE|<Hide the following drives...>|"
        "The following drives are hidden:| A:\\  S:\\  Z:\\  Z:\\ |[foot][page]|<Win 9X/ME Restrictions...>"
        "No Properties 'Network-Neighborhood'=YES|-------<IE Explorer (5.01 and higher) Restrictions ...>"
        "----------<General Windows-Settings>----No Properties 'Network-Neighborhood'=YES|----"
        "Disable Windows Update=YES|-<Misc. Settings>Registered Organisation:=The School|Registered Name:=|"
        "[foot][end]|");
}

TEST(Report, IsInTheLanguageOfTheWindowAndEndsTheProgramWithoutAPrinter) {
    World w(versions::winxp, german);
    w.enter().c17.set_value(1);
    w.click(w.window().mm14);
    const std::string printed = in_one(w.screen.printed);
    EXPECT_THAT(printed,
                HasSubstr("<Startmen\xFC Einschr\xE4nkungen ...>------Keine Dokumente=AKTIVIERT|---<"));
    EXPECT_THAT(printed, HasSubstr(" ...>-|Dateiliste:|<"));
    EXPECT_THAT(printed, HasSubstr(">|Folgende Laufwerksbuchstaben sind ausgeblendet:|[KEINE]|[foot]"));

    w.click(w.window().mm15);
    EXPECT_EQ(w.screen.printer_setups, 1);
    w.screen.has_printer = false;
    EXPECT_FALSE(w.expecting("Brightlock Suite").click(w.window().mm14));
    EXPECT_THAT(w.told(), HasSubstr("'482'"));
}

}  // namespace
