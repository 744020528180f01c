#include "program/world.h"
#include "ui/verzeichnis.h"

namespace {

struct Pages : Test, WithAnna {
    const std::vector<std::string>& list() { return window().List1.items(); }
};

TEST_F(Pages, AreReachedByListBarMenuAndTab) {
    windows.registry.at(HKEY_LOCAL_MACHINE, "Software\\Microsoft\\Windows\\CurrentVersion\\Run")
        .set("Brightlock Classic", "old.exe");
    MainForm& form = expecting("Old Brightlock Classic found!").enter();
    screen.act([&] { form.Timer1.tick(); });
    EXPECT_EQ(form.StatusBar.panel_text(3) + form.StatusBar.panel_text(4) + form.StatusBar.panel_text(5),
              "AdministratorWinXP12:34:56")
        << "without the NUL that the name carries";
    EXPECT_FALSE(form.mm4.visible()) << "the choice of the language";
    click(form.SSListBar1, 3);
    EXPECT_EQ(form.l01.text(), "Desktop");
    EXPECT_EQ(form.help_context, 12);
    EXPECT_TRUE(form.c31.usable() && !form.c11.usable());
    click(form.mm39);
    windows.files.add_file("C:\\WINDOWS\\winhlp32.exe", "MZ");
    click(form.SSListBar1, 10);
    EXPECT_EQ(form.l01.text(), "Settings") << "the help leaves the page";
    EXPECT_EQ(last_command(), "winhlp32.exe C:\\Program Files\\Brightlock Suite\\britlock.hlp");
    windows.files.add_file("C:\\WINDOWS\\system32\\control.exe", "MZ");
    click(form.syslist, 0);
    EXPECT_EQ(last_command(), "control desk.cpl,,1");
    EXPECT_EQ(windows.processes.started.back().style, WindowStyle::minimized_focus);
    EXPECT_TRUE(expecting("Error...").click(form.syslist, 5)) << "another of Windows' tools is missing";
    screen.act([&] { form.tab.click_tab(0); });
    EXPECT_EQ(form.l01.text(), "Start");
    expecting("Brightlock Suite");
    screen.act([&] {
        form.StatusBar.press(toolkit::MouseButton::left, 1500);
        form.StatusBar.press(toolkit::MouseButton::right, 10);
        form.StatusBar.press(toolkit::MouseButton::left, 1499);
    });
    expecting("Brightlock Suite").click(form.mm54);
    EXPECT_EQ(told(), "Brightlock Suite\nbritlock\n\nVersion: 1.0.0\nWinVersion: WinXP");
    click(form.mm53);
    EXPECT_EQ(windows.processes.addresses.back(), "http://" + form.StatusBar.panel_text(1));
}

TEST_F(Pages, CancelExitAndOkLeaveTheProcess) {
    const std::string before = dump();
    click(window().c11);
    EXPECT_FALSE(click(window().mm16));
    click(read().c11);
    EXPECT_FALSE(click(window().cm01));
    EXPECT_EQ(dump(), before);
    click(read().c11);
    EXPECT_FALSE(click(window().cm02));
    EXPECT_THAT(dump(), HasSubstr("NoClose = dword 1")) << "by the last of them";
}

TEST_F(Pages, DrivesThatAreThereCanBeMarked) {
    // A drive that has gone keeps its mark, disabled, and is written with the others.
    anna()[key::hide].set("Z", 1);
    MainForm& form = read();
    click(form.cm51);
    EXPECT_EQ(ticked(), " A: C: D: Z:");
    for (const auto& drive : form.drive_boxes)
        EXPECT_EQ(drive.enabled(), drive.ticked() && drive.text() != "Z:") << drive.text();
    apply();
    EXPECT_THAT(dump(), HasSubstr("NoDrives = dword 33554445"));
    click(form.cm52);
    EXPECT_EQ(ticked(), "");
}

TEST_F(Pages, ProgramsAreAddedAndRemovedButForThoseThatAreProtected) {
    MainForm& form = window();
    for (const char* file : {"C:\\Programme\\Word\\Winw\xF6rd.exe", "D:\\WINW\xD6RD.EXE", ""})
        choosing_file(file).click(form.cm41);
    EXPECT_THAT(list(), ElementsAre("BRITLOCK.EXE", "WINW\xD6RD.EXE")) << "without a path, in capitals";
    EXPECT_EQ(screen.file_dialogs[0].filter, "*.EXE (Programmdatei)|*.exe");
    form.List1.add("BRITOL.EXE");
    for (const int line : {0, 2}) {
        click(form.List1, line);
        expecting("Can't remove...").click(form.cm42);
        EXPECT_THAT(told(), HasSubstr(line == 0 ? "actual version" : "older version"));
    }
    click(form.List1, 1);
    click(form.cm42);
    EXPECT_THAT(list(), ElementsAre("BRITLOCK.EXE", "BRITOL.EXE"));
    click(form.cm42);
    EXPECT_EQ(screen.beeps, 1) << "nothing is selected any more";
    EXPECT_EQ(form.gesamtfiles.text(), "Total: 2");
    click(form.cm44);
    EXPECT_THAT(list(), ElementsAre("BRITLOCK.EXE")) << "this one drops the older version as well";
    form.List1.clear();
    expecting("Brightlock Suite").click(form.cm42);

    form.List1.add("CALC.EXE");
    expecting("Some suggestions...").click(form.cm43);
    EXPECT_THAT(list(), SizeIs(9));
    EXPECT_EQ(ticked(), "");
    EXPECT_EQ(form.gesamtfiles.text(), "Total: 1") << "the count is out of date";
    for (int times = 0; times < 3; ++times)
        click(form.c41);
    EXPECT_EQ(std::count(list().begin(), list().end(), "BRITLOCK.EXE"), 1);
    EXPECT_EQ(list().back(), "BRITLOCK.EXE");
}

TEST_F(Pages, TheListKeepsItsPlacesAndGaps) {
    anna()[key::restrict_run].set("Gesamt", 3).set(" 0", "A.EXE").set(" 2", "C.EXE");
    read();
    EXPECT_THAT(list(), ElementsAre("BRITLOCK.EXE", "A.EXE", "", "C.EXE"));
    apply();
    EXPECT_THAT(dump(key::restrict_run), AllOf(HasSubstr(" :  2 = \"\"\n"), HasSubstr("Gesamt = dword 4\n")));
    window().List1.clear();
    apply();
    EXPECT_EQ(dump(key::restrict_run), "(missing)") << "an empty list leaves no key";

    anna()[key::restrict_run].set("Gesamt", "-5");
    choose("Anna");
    EXPECT_THAT(list(), ElementsAre("BRITLOCK.EXE"));
    anna()[key::restrict_run].set("Gesamt", "32768");
    enter();
    EXPECT_FALSE(expecting("Brightlock Suite").choose("Anna"));
    EXPECT_THAT(list(), SizeIs(0)) << "a set that was read in part is not shown";
}

TEST_F(Pages, TheScanWalksBreadthFirst) {
    for (const char* file :
         {"C:\\S\\b.exe", "C:\\S\\readme.txt", "C:\\S\\X\\deep\\last.Exe", "C:\\S\\X\\c.EXE",
          "C:\\S\\A\\noexe", "C:\\S\\A\\B.EXE", "C:\\S\\A\\britlock.exe", "C:\\S\\hidden\\h.exe",
          "C:\\S\\link\\loop.exe", "C:\\T\\1.exe", "C:\\T\\closed\\2.exe"})
        windows.files.add_file(file, "MZ");
    windows.files.add_folder("C:\\S\\hidden", attribute_hidden);
    windows.files.add_file("C:\\S\\secret.exe", "MZ", attribute_system);
    windows.files.add_folder("C:\\S\\link", attribute_reparse_point);
    windows.files.fail("C:\\T\\closed", path_access);
    windows.files.add_folder("D:\\");
    // Whatever fails ends the scan; what was found stays, and only a missing drive is told. An empty disk is
    // one like others: it alone brings the scan to the count anew.
    const std::string found = "BRITLOCK.EXE B.EXE NOEXE C.EXE LAST.EXE ";
    const char* const scans[][3] = {{"c:\\s\\", "", "Total: 5"},     {"", "", "Total: 5"},
                                    {"C:\\nowhere", "", "Total: 5"}, {"WINDOWS", "", "Total: 5"},
                                    {"C:\\T", "1.EXE ", "Total: 5"}, {"D:\\", "1.EXE ", "Total: 6"},
                                    {"Q:\\", "1.EXE ", "Total: 6"}};
    for (const auto& [start, more, count] : scans) {
        screen.expect_input(start);
        if (*start == 'Q') expecting("Error");
        click(window().cm45);
        std::string all;
        for (const std::string& entry : list())
            all += entry + " ";
        EXPECT_EQ(all, found + more) << start;
        EXPECT_EQ(window().gesamtfiles.text(), count) << start;
    }
    EXPECT_EQ(window().mouse_pointer(), toolkit::MousePointer::normal);
}

TEST_F(Pages, ThePictureIsShownAtOnceAndStoredAtTheNextApply) {
    windows.files.add_file("C:\\WINDOWS\\wave.bmp", "BMwave");
    windows.files.add_file("C:\\WINDOWS\\bad.bmp", "not a picture");
    anna()[key::desktop];  // made by nobody here
    MainForm& form = window();
    choosing_file("C:\\WINDOWS\\wave.bmp").click(form.cm31);
    EXPECT_EQ(form.t31.text(), "C:\\WINDOWS\\wave.bmp");
    EXPECT_EQ(ticked(), " c37");
    EXPECT_THAT(windows.system.wallpapers, ElementsAre("C:\\WINDOWS\\wave.bmp"));
    apply();
    EXPECT_EQ(dump(key::desktop), " : Wallpaper = \"C:\\WINDOWS\\wave.bmp\"\n");

    choosing_file("C:\\WINDOWS\\bad.bmp").click(form.cm31);
    EXPECT_EQ(form.pic31.bytes(), "BMwave") << "a picture that cannot be loaded leaves the old one";
    EXPECT_EQ(form.t31.text(), "C:\\WINDOWS\\bad.bmp");
    click(form.c37);
    type(form.t31, "C:\\x.bmp");
    EXPECT_EQ(ticked(), "") << "typing does not tick";
    click(form.t31);
    EXPECT_EQ(ticked(), " c37");

    anna()[key::desktop].set("Wallpaper", "C:\\WINDOWS\\bad.bmp");
    EXPECT_FALSE(expecting("Brightlock Suite").choose("Anna"));
    EXPECT_THAT(told(), HasSubstr("Run-time error '481'"));
}

TEST_F(Pages, TheIconFolderIsPickedBesideTheMainWindow) {
    windows.files.add_file("C:\\Icons\\one.LNK", "x");
    windows.files.add_folder("C:\\Empty");
    windows.files.add_file("D:\\Links\\two.lnk", "x");
    MainForm& main = window();
    click(main.cm32);
    auto* picker = &form<verzeichnis>();
    const auto open = [&](const std::string& name) {
        screen.act([&] { picker->Dir1.open_ancestor(0); });
        const auto& folders = picker->Dir1.folders();
        const auto at = std::find(folders.begin(), folders.end(), name) - folders.begin();
        screen.act([&] { picker->Dir1.open_folder(static_cast<int>(at)); });
    };
    EXPECT_FALSE(picker->Command3.usable());
    open("Empty");
    expecting("No lnk-files found!").click(picker->Command1);
    open("Icons");
    click(picker->Command3);
    EXPECT_EQ(last_command(), "Explorer.exe C:\\Icons");
    click(picker->Command1);
    EXPECT_EQ(program->loaded<verzeichnis>(), nullptr);
    EXPECT_EQ(main.t32.text(), "C:\\Icons");
    EXPECT_EQ(ticked(), " c39");
    apply();
    const std::string autostart = " : System = \"C:\\Program Files\\Brightlock Suite\\britlock.exe /icon\"\n";
    EXPECT_THAT(dump(), HasSubstr("FixedLNKUrl = \"C:\\Icons\""));
    EXPECT_EQ(dump(key::run), "(missing)") << "this key is made by nobody";
    anna()[key::run];
    apply();
    EXPECT_EQ(dump(key::run), autostart);

    // Cancel takes the tick away; the value at logon stays all the same.
    click(main.cm32);
    click(form<verzeichnis>().Command2);
    apply();
    EXPECT_EQ(dump(key::run), autostart);
    EXPECT_THAT(dump(), HasSubstr("FixedLNK = dword 0"));

    type(main.t32, "D:\\Links");
    click(main.cm32);
    picker = &form<verzeichnis>();
    EXPECT_EQ(picker->Label1.text(), "D:\\") << "another drive resets the folder";
    windows.system.drives |= 1 << 4;  // there, but without a disk
    expecting("Error...");
    screen.act([&] { picker->Drive1.choose(3); });
    screen.act([&] { picker->close_by_frame(); });

    type(main.t32, "C:\\gone");
    EXPECT_FALSE(expecting("Brightlock Suite").click(main.cm32));
    EXPECT_THAT(told(), HasSubstr("Run-time error '76'"));
}

TEST_F(Pages, BulkMarkingLeavesOutTheListAndTheIcons) {
    MainForm& form = window();
    click(form.c16);
    EXPECT_EQ(ticked(), " c16 c31") << "as the first writes the value of the second";
    click(form.c31);
    click(form.c16);
    EXPECT_EQ(ticked(), "") << "unticking leaves it alone";
    expecting("Suggestions...").click(form.mm24);
    EXPECT_EQ(ticked(), " c16 c17 c18 c110 c23 c31 c32 c35 c36 c66 c67 c68 c90 c91 c93 c98 c99");
    expecting("Brightlock Suite").click(form.mm21);
    const std::string all = ticked();
    EXPECT_EQ(std::count(all.begin(), all.end(), 'c'), 50);
    EXPECT_THAT(all,
                AllOf(Not(HasSubstr(" c39 ")), Not(HasSubstr(" c41 ")), HasSubstr(" A: C: D: APPWIZ.CPL ")));
    EXPECT_TRUE(form.marks().hidden_applets.back());
    click(form.c39);
    click(form.c41);
    click(form.mm22);
    EXPECT_EQ(ticked(), " c39") << "unmarking reaches the list's switch, not the icons";
}

TEST_F(Pages, TheProfileFolderIsGuardedByTwoQuestions) {
    const auto& stored = windows.registry.at(HKEY_LOCAL_MACHINE, product::key).values;
    for (const auto& [first, second] : {std::pair{Answer::no, Answer::no},
                                        {Answer::yes, Answer::no},
                                        {Answer::no, Answer::yes},
                                        {Answer::yes, Answer::yes}}) {
        MainForm& form = enter();
        click(form.mm39);
        screen.boxes.clear();
        expecting("Attention !!!!", first).expecting("Sure ?", second);
        expecting(second == Answer::yes ? "Program terminated..." : "Info");
        if (first == Answer::yes) {
            type(form.t810, "P:\\");
            EXPECT_THAT(screen.boxes, SizeIs(1)) << "a box is no loss of the focus";
            EXPECT_FALSE(click(form.mm31)) << "any way out of the field asks, a turn of the page among them";
        } else {
            EXPECT_FALSE(click(form.t810));
        }
        EXPECT_THAT(screen.boxes[1].text,
                    HasSubstr(first == Answer::yes ? "Use directory P:\\for user profiles ?"
                                                   : "Documents and Settings\\for user profiles ?"));
        EXPECT_EQ(screen.boxes[0].default_answer, Answer::no);
        EXPECT_EQ(stored.contains("ProfileMainPath"), second == Answer::yes);
    }
}

}  // namespace
