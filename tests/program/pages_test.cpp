#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "program/world.h"
#include "ui/verzeichnis.h"

namespace britlock {
namespace {

using namespace machine;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

struct Pages : testing::Test {
    World w;
    MemoryKey& anna = w.windows.add_profile("Anna");
    MainForm* window = nullptr;

    void SetUp() override {
        w.windows.system.drives = 0b1101;  // A, C, D
        w.windows.files.add_folder("D:\\");
        window = &w.enter();
    }
    const std::vector<std::string>& list() { return window->List1.items(); }
    void box(const char* title) { w.screen.expect_box(title); }
};

TEST_F(Pages, AreReachedByListBarMenuAndTab) {
    w.screen.act([&] { window->SSListBar1.click_item(3); });
    EXPECT_EQ(window->l01.text(), "Desktop");
    EXPECT_EQ(window->help_context, 12);
    EXPECT_TRUE(window->c31.usable());
    EXPECT_FALSE(window->c11.usable());
    w.click(window->mm39);
    w.windows.files.add_file("C:\\WINDOWS\\winhlp32.exe", "MZ");
    w.screen.act([&] { window->SSListBar1.click_item(10); });
    EXPECT_EQ(window->l01.text(), "Settings") << "the help leaves the page";
    EXPECT_EQ(w.windows.processes.started.back().command_line,
              "winhlp32.exe C:\\Program Files\\Brightlock Suite\\britlock.hlp");
    w.screen.act([&] { window->tab.click_tab(0); });
    EXPECT_EQ(window->l01.text(), "Start");
    box("Brightlock Suite");
    w.screen.act([&] {
        window->StatusBar.press(toolkit::MouseButton::left, 1500);
        window->StatusBar.press(toolkit::MouseButton::right, 10);
        window->StatusBar.press(toolkit::MouseButton::left, 1499);
    });
}

TEST_F(Pages, CancelExitAndOkLeaveTheProcess) {
    const std::string before = anna.dump();
    const std::function<bool()> ways_out[] = {[&] { return w.click(window->mm16); },
                                              [&] { return w.click(window->cm01); },
                                              [&] { return w.click(window->cm02); }};
    for (const auto& leave : ways_out) {
        window = &w.enter();
        w.choose("Anna");
        w.click(window->c11);
        EXPECT_EQ(anna.dump(), before);
        EXPECT_FALSE(leave());
    }
    EXPECT_THAT(anna.dump(), HasSubstr("NoClose = dword 1")) << "by the last of them";
}

TEST_F(Pages, DrivesThatAreThereCanBeMarked) {
    w.click(window->cm51);
    for (const auto& drive : window->drive_boxes) {
        EXPECT_EQ(drive.ticked(), drive.text() < "E" && drive.text() != "B:") << drive.text();
        EXPECT_EQ(drive.enabled(), drive.ticked());
    }
    // A drive that has gone keeps its mark, disabled, and is written with the others.
    anna[key::hide].set("Z", 1);
    w.choose("Anna");
    w.click(window->cm51);
    EXPECT_TRUE(window->drive_boxes[25].ticked());
    EXPECT_FALSE(window->drive_boxes[25].usable());
    w.apply();
    EXPECT_THAT(anna.dump(), HasSubstr("NoDrives = dword 33554445"));
    w.click(window->cm52);
    EXPECT_FALSE(window->drive_boxes[25].ticked());
}

TEST_F(Pages, ProgramsAreAddedByTheFileDialogWithoutAPathInCapitals) {
    for (const char* file : {"C:\\Programme\\Word\\Winw\xF6rd.exe", "D:\\WINW\xD6RD.EXE", ""}) {
        w.choosing_file(file).click(window->cm41);
    }
    EXPECT_THAT(list(), ElementsAre("WINW\xD6RD.EXE"));
    EXPECT_EQ(window->gesamtfiles.text(), "Total: 1");
    EXPECT_EQ(w.screen.file_dialogs[0].filter, "*.EXE (Programmdatei)|*.exe");
}

TEST_F(Pages, ProtectedProgramsCannotBeRemoved) {
    for (const char* program : {"BRITLOCK.EXE", "BRITOL.EXE", "britlock.exe"})
        window->List1.add(program);
    w.turn_to(window->cm42);
    const auto remove = [&](int line) {
        w.screen.act([&] {
            if (line >= 0) window->List1.click_item(line);
            window->cm42.click();
        });
    };
    for (const int line : {0, 1}) {
        box("Can't remove...");
        remove(line);
        EXPECT_THAT(w.told(), HasSubstr(line == 0 ? "actual version" : "older version"));
    }
    remove(2);
    EXPECT_THAT(list(), ElementsAre("BRITLOCK.EXE", "BRITOL.EXE"));
    remove(-1);
    EXPECT_EQ(w.screen.beeps, 1) << "nothing is selected any more";
    EXPECT_EQ(window->gesamtfiles.text(), "Total: 2");
    w.click(window->cm44);
    EXPECT_THAT(list(), ElementsAre("BRITLOCK.EXE")) << "this one drops the older version as well";
    window->List1.clear();
    box("Brightlock Suite");
    remove(-1);
}

TEST_F(Pages, SuggestionsAndTheMasterSwitchAddWhatIsMissing) {
    w.screen.act([&] { window->List1.add("CALC.EXE"); });
    w.expecting("Some suggestions...").click(window->cm43);
    EXPECT_EQ(list().size(), 9u);
    EXPECT_FALSE(window->c41.ticked());
    EXPECT_EQ(window->gesamtfiles.text(), "gesfiles") << "the count is out of date";
    for (int click = 0; click < 3; ++click)
        w.click(window->c41);
    EXPECT_EQ(std::count(list().begin(), list().end(), "BRITLOCK.EXE"), 1);
    EXPECT_EQ(list().back(), "BRITLOCK.EXE");
}

TEST_F(Pages, TheListKeepsItsPlacesAndGaps) {
    anna[key::restrict_run].set("Gesamt", 3).set(" 0", "A.EXE").set(" 2", "C.EXE");
    w.choose("Anna");
    EXPECT_THAT(list(), ElementsAre("BRITLOCK.EXE", "A.EXE", "", "C.EXE"));
    w.apply();
    EXPECT_THAT(anna.dump(), HasSubstr("RestrictRun :  2 = \"\"\n"));
    EXPECT_THAT(anna.dump(), HasSubstr("RestrictRun : Gesamt = dword 4\n"));
    window->List1.clear();
    w.apply();
    EXPECT_EQ(anna.find(key::restrict_run), nullptr) << "an empty list leaves no key";

    anna[key::restrict_run].set("Gesamt", "-5");
    w.choose("Anna");
    EXPECT_THAT(list(), ElementsAre("BRITLOCK.EXE"));
    anna[key::restrict_run].set("Gesamt", "32768");
    window = &w.enter();
    EXPECT_FALSE(w.expecting("Brightlock Suite").choose("Anna"));
    EXPECT_EQ(window->List1.count(), 0) << "a set that was read in part is not shown";
}

TEST_F(Pages, TheScanWalksBreadthFirst) {
    for (const char* file :
         {"C:\\S\\b.exe", "C:\\S\\readme.txt", "C:\\S\\X\\deep\\last.Exe", "C:\\S\\X\\c.EXE",
          "C:\\S\\A\\noexe", "C:\\S\\A\\B.EXE", "C:\\S\\A\\britlock.exe", "C:\\S\\hidden\\h.exe"}) {
        w.windows.files.add_file(file, "MZ");
    }
    w.windows.files.add_folder("C:\\S\\hidden", attribute_hidden);
    w.windows.files.add_file("C:\\S\\secret.exe", "MZ", attribute_system);
    w.windows.files.add_file("C:\\S\\link\\loop.exe", "MZ");
    w.windows.files.add_folder("C:\\S\\link", attribute_reparse_point);
    w.screen.act([&] { window->List1.add("BritLock.exe"); });
    w.screen.expect_input("c:\\s\\");
    w.click(window->cm45);
    EXPECT_THAT(list(), ElementsAre("BritLock.exe", "B.EXE", "NOEXE", "C.EXE", "LAST.EXE"));
    EXPECT_EQ(window->gesamtfiles.text(), "Total: 5");
    EXPECT_EQ(window->mouse_pointer(), toolkit::MousePointer::normal);

    // Whatever fails ends the scan; what was found stays, and only a missing drive is told.
    w.windows.files.add_file("C:\\T\\1.exe", "MZ");
    w.windows.files.add_file("C:\\T\\closed\\2.exe", "MZ");
    w.windows.files.fail("C:\\T\\closed", path_access);
    for (const char* start : {"", "C:\\nowhere", "WINDOWS", "C:\\T", "D:\\", "Q:\\"}) {
        w.screen.expect_input(start);
        if (start[0] == 'Q') box("Error");
        w.click(window->cm45);
        // An empty disk is one like others: it alone brings the scan to the count.
        EXPECT_EQ(window->gesamtfiles.text(), start[0] < 'D' || start[0] > 'Q' ? "Total: 5" : "Total: 6")
            << start;
    }
    EXPECT_EQ(list().back(), "1.EXE");
}

TEST_F(Pages, ThePictureIsShownAtOnceAndStoredAtTheNextApply) {
    w.windows.files.add_file("C:\\WINDOWS\\wave.bmp", "BMwave");
    w.windows.files.add_file("C:\\WINDOWS\\bad.bmp", "not a picture");
    anna[key::desktop];  // made by nobody here
    w.choose("Anna");
    w.choosing_file("C:\\WINDOWS\\wave.bmp").click(window->cm31);
    EXPECT_EQ(window->t31.text(), "C:\\WINDOWS\\wave.bmp");
    EXPECT_TRUE(window->c37.ticked());
    EXPECT_THAT(w.windows.system.wallpapers, ElementsAre("C:\\WINDOWS\\wave.bmp"));
    w.apply();
    EXPECT_THAT(anna.dump(), HasSubstr("Control Panel\\Desktop : Wallpaper = \"C:\\WINDOWS\\wave.bmp\""));

    w.choosing_file("C:\\WINDOWS\\bad.bmp").click(window->cm31);
    EXPECT_EQ(window->pic31.bytes(), "BMwave") << "a picture that cannot be loaded leaves the old one";
    EXPECT_EQ(window->t31.text(), "C:\\WINDOWS\\bad.bmp");
    w.click(window->c37);
    w.screen.act([&] { window->t31.type("C:\\x.bmp"); });
    EXPECT_FALSE(window->c37.ticked()) << "typing does not tick";
    w.click(window->t31);
    EXPECT_TRUE(window->c37.ticked());

    w.apply();
    anna[key::desktop].set("Wallpaper", "C:\\WINDOWS\\bad.bmp");
    EXPECT_FALSE(w.expecting("Brightlock Suite").choose("Anna"));
    EXPECT_THAT(w.told(), HasSubstr("Run-time error '481'"));
}

TEST_F(Pages, TheIconFolderIsPickedBesideTheMainWindow) {
    w.windows.files.add_file("C:\\Icons\\one.LNK", "x");
    w.windows.files.add_folder("C:\\Empty");
    w.windows.files.add_file("D:\\Links\\two.lnk", "x");
    w.choose("Anna");
    w.click(window->cm32);
    auto picker = [&]() -> verzeichnis& { return *w.program->loaded<verzeichnis>(); };
    const auto open = [&](const std::string& name) {
        w.screen.act([&] { picker().Dir1.open_ancestor(0); });
        const auto& folders = picker().Dir1.folders();
        const auto at = std::find(folders.begin(), folders.end(), name) - folders.begin();
        w.screen.act([&] { picker().Dir1.open_folder(static_cast<int>(at)); });
    };
    const auto press = [&](toolkit::Button& button) { w.screen.act([&] { button.press_by_key(); }); };
    EXPECT_FALSE(picker().Command3.usable());
    open("Empty");
    box("No lnk-files found!");
    press(picker().Command1);
    open("Icons");
    press(picker().Command3);
    EXPECT_EQ(w.windows.processes.started.back().command_line, "Explorer.exe C:\\Icons");
    press(picker().Command1);
    EXPECT_EQ(w.program->loaded<verzeichnis>(), nullptr);
    EXPECT_EQ(window->t32.text(), "C:\\Icons");
    EXPECT_TRUE(window->c39.ticked());
    w.apply();
    const std::string autostart =
        "Run : System = \"C:\\Program Files\\Brightlock Suite\\britlock.exe /icon\"";
    EXPECT_THAT(anna.dump(), HasSubstr("FixedLNKUrl = \"C:\\Icons\""));
    EXPECT_THAT(anna.dump(), Not(HasSubstr(autostart))) << "this key is made by nobody";
    anna[key::run];
    w.apply();
    EXPECT_THAT(anna.dump(), HasSubstr(autostart));

    // Cancel takes the tick away; the value at logon stays all the same.
    w.click(window->cm32);
    press(picker().Command2);
    EXPECT_FALSE(window->c39.ticked());
    w.apply();
    EXPECT_THAT(anna.dump(), HasSubstr(autostart));
    EXPECT_THAT(anna.dump(), HasSubstr("FixedLNK = dword 0"));

    w.screen.act([&] { window->t32.type("D:\\Links"); });
    w.click(window->cm32);
    EXPECT_EQ(picker().Label1.text(), "D:\\") << "another drive resets the folder";
    w.windows.system.drives |= 1 << 4;  // there, but without a disk
    box("Error...");
    w.screen.act([&] { picker().Drive1.choose(3); });
    w.screen.act([&] { picker().close_by_frame(); });

    w.screen.act([&] { window->t32.type("C:\\gone"); });
    EXPECT_FALSE(w.expecting("Brightlock Suite").click(window->cm32));
    EXPECT_THAT(w.told(), HasSubstr("Run-time error '76'"));
}

TEST_F(Pages, BulkMarkingLeavesOutTheListAndTheIcons) {
    const auto boxes = [&](bool ticked) {
        std::string out;
        for (const Restriction& row : Get_CR()) {
            if (row.page != 0 && window->box(row.box).ticked() == ticked)
                out += " " + std::to_string(row.index);
        }
        return out;
    };
    w.expecting("Suggestions...").click(window->mm24);
    EXPECT_EQ(boxes(true), " 16 17 18 110 23 31 32 35 36 66 67 68 90 91 93 98 99");
    w.expecting("Brightlock Suite").click(window->mm21);
    EXPECT_EQ(boxes(false), " 39 41");
    EXPECT_TRUE(window->lv1.rows()[38].checked);
    w.click(window->c39);
    w.click(window->c41);
    w.click(window->mm22);
    EXPECT_EQ(boxes(true), " 39") << "unmarking reaches the list's switch, not the icons";
    EXPECT_FALSE(window->lv1.rows()[38].checked);
    EXPECT_THAT(list(), ElementsAre("BRITLOCK.EXE"));
}

TEST_F(Pages, AnOlderVersionAndTheLanguageAreTold) {
    w.windows.registry.at(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows\\CurrentVersion\\Run")
        .set("Brightlock Classic", "old.exe");
    window = &w.expecting("Old Brightlock Classic found!").enter();
    w.screen.act([&] { window->Timer1.tick(); });
    EXPECT_EQ(
        window->StatusBar.panel_text(3) + window->StatusBar.panel_text(4) + window->StatusBar.panel_text(5),
        "AdministratorWinXP12:34:56")
        << "without the NUL that the name carries";
    EXPECT_FALSE(window->mm4.visible());
    w.click(window->mm41);  // hidden: nobody can reach it
    box("Language English...");
    w.screen.act([&] { window->mm42_Click(); });
    EXPECT_EQ(w.windows.registry.at(HKEY_LOCAL_MACHINE, product::key).values["Country"], text_value("1"));
}

}  // namespace
}  // namespace britlock
