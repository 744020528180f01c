#include <regex>

#include "program/world.h"

namespace {

constexpr const char* registration_key = "Software\\Microsoft\\Windows NT\\CurrentVersion";

/// What was written since the journal was cleared: one word for each value, after the key and the data of all
/// that follow.
std::string writes(World& w) {
    std::string text = w.windows.journal.text();
    for (const auto& [pattern, with] :
         {std::pair{R"(HKU\\Anna\\?)", ""},
          {R"((?:SOFTWARE|Software)\\Microsoft\\Windows\\CurrentVersion\\)", ""},
          {R"(SOFTWARE\\Policies\\Microsoft\\Internet Explorer\\)", "IE\\"},
          {R"(Policies\\Explorer)", "Explorer"},
          {"dword ", ""}})
        text = std::regex_replace(text, std::regex(pattern), with);
    std::istringstream lines(text);
    std::string out, last;
    for (std::string line; std::getline(lines, line);) {
        std::smatch set;
        if (!std::regex_match(line, set, std::regex("set (.*) : (.*) = (.*)"))) {
            out += line + "; ";
            last.clear();
            continue;
        }
        const std::string place = set.str(1) + " = " + set.str(3);
        out += (place == last ? "" : "[" + place + "] ") + set.str(2) + " ";
        last = place;
    }
    return out;
}

TEST(Engine, EveryWriteComesInItsPlace) {
    WithAnna w;
    w.windows.registry.at(HKEY_LOCAL_MACHINE, registration_key)
        .set("RegisteredOrganization", "3 5 AG")  // texts become numbers in the user's own branch
        .set("RegisteredOwner", "School");
    for (const char* key : {key::desktop, key::run, product::key, registration_key})
        w.anna()[key];
    MainForm& window = w.read();
    EXPECT_EQ(window.t82.text(), "School");
    w.expecting("Brightlock Suite").click(window.mm21);
    w.click(window.cmd22);
    for (const size_t row : {2, 38})
        w.click_applet(row);
    w.type(window.t31, "C:\\w.bmp");
    w.type(window.t32, "C:\\Icons");
    w.click(window.c39);
    w.click(window.c41);
    w.choosing_file("calc.exe").click(window.cm41);
    w.windows.journal.clear();
    w.apply();
    const std::string expected = R"(
        create Software -> 2; create HKLM\Software\Morvane -> 2; create HKLM\Software\Morvane\BRLCK -> 2; create  -> 2;
        create Explorer -> 1; create Policies\System -> 1; create Policies\Network -> 1; create IE\Restrictions -> 1;
        create Explorer\Advanced -> 1; create Control Panel\Sound -> 1; create Explorer\Hide -> 1; create Control Panel\don't
        load -> 1; create Explorer\DisallowCpl -> 1; create Explorer\RestrictRun -> 1; [Explorer = 0] NoClose NoLogOff NoRun
        NoFind NoHelp NoSetFolders NoControlPanel NoControlPanel NoRecentDocsMenu NoFavoritesMenu NoCommonGroups
        NoChangeStartMenu [IE\Restrictions = 0] NoSelectDownloadDir NoBrowserContextMenu NoBrowserOptions NoViewSource
        NoFavorites NoFileNew NoFileOpen NoBrowserSaveAs NoPrinting NoBrowserClose [Explorer = 0] NoSetTaskbar
        [Policies\System = 0] NoDispCpl [Explorer = 0] NoDesktop NoNetHood NoStartBanner NoSaveSettings FixedWallpaper
        [Policies\System = 0] DisableRegistryTools [Explorer = 0] FixedLNK RestrictRun NoDrives NoActiveDesktop ClassicShell
        [Policies\Network = 0] NoNetSetup NoEntireNetwork NoWorkgroupContents [Policies\System = 0] NoPwdPage
        [Policies\Network = 0] NoFileSharingControl [ = 0] NoPrintSharingControl [Control Panel\Sound = 0] Beep
        [Explorer = 0] NoViewContextMenu NoDesktop NoTrayContextMenu [Policies\System = 0] DisableTaskMgr [Explorer = 0]
        NoWindowsUpdate [Policies\System = 0] DisableCMD [Policies\Network = 0] NoEntireNetwork [Explorer = 0] NoAddPrinter
        NoDeletePrinter create Software -> 2; create Software\Policies -> 2; create Software\Policies\Microsoft -> 2;
        create Software\Policies\Microsoft\Windows -> 1; create Software\Policies\Microsoft\Windows\System -> 1;
        [Software\Policies\Microsoft\Windows\System = 0] DisableCMD delete key Control Panel\don't load -> 0;
        create Control Panel\don't load -> 1; delete key Explorer\DisallowCpl -> 0; create Explorer\DisallowCpl -> 1;
        [Control Panel\don't load = "No"] DESK.CPL [Explorer\DisallowCpl = "DESK.CPL"]  1 [Control Panel\don't load = "No"]
        Verwaltung [Explorer\DisallowCpl = "Verwaltung"]  2 [Explorer = 1] ForceClassicControlPanel NoClose NoLogOff NoRun
        NoFind NoHelp NoSetFolders NoSetTaskbar NoControlPanel NoRecentDocsMenu NoFavoritesMenu NoCommonGroups NoChangeStartMenu
        [IE\Restrictions = 1] NoSelectDownloadDir NoBrowserContextMenu NoBrowserOptions NoViewSource NoFavorites NoFileNew
        NoFileOpen NoBrowserSaveAs NoPrinting NoBrowserClose [Explorer = 1] NoSetTaskbar [Policies\System = 1] NoDispCpl
        [Explorer = 1] NoDesktop NoNetHood NoStartBanner NoSaveSettings FixedWallpaper [Control Panel\Desktop = "C:\w.bmp"]
        Wallpaper [Policies\System = 1] DisableRegistryTools [Explorer = 1] FixedLNK [Explorer = "C:\Icons"] FixedLNKUrl
        [Run = "C:\Program Files\Brightlock Suite\britlock.exe /icon"] System delete key Explorer\RestrictRun -> 0;
        create Explorer\RestrictRun -> 1; [Explorer\RestrictRun = "BRITLOCK.EXE"]  0 [Explorer\RestrictRun = "CALC.EXE"]  1
        [Explorer\RestrictRun = 2] Gesamt [Explorer = 1] RestrictRun [Explorer\Hide = 1] A [Explorer\Hide = 0] B
        [Explorer\Hide = 1] C D [Explorer\Hide = 0] E F G H I J K L M N O P Q R S T U V W X Y Z [Explorer = 13] NoDrives
        [Explorer = 1] NoActiveDesktop ClassicShell [Policies\Network = 1] NoNetSetup NoEntireNetwork NoWorkgroupContents
        [Policies\System = 1] NoPwdPage [Policies\Network = 1] NoFileSharingControl [ = 1] NoPrintSharingControl
        [Software\Morvane\BRLCK = 1] PWHide [Software\Microsoft\Windows NT\CurrentVersion = 35] RegisteredOrganization
        [Software\Microsoft\Windows NT\CurrentVersion = 0] RegisteredOwner [Control Panel\Sound = "No"] Beep
        [Explorer = 1] NoViewContextMenu NoTrayContextMenu [Policies\System = 1] DisableTaskMgr [Explorer = 1] NoWindowsUpdate
        [Software\Policies\Microsoft\Windows\System = 1] DisableCMD [Explorer = 1] NoAddPrinter NoDeletePrinter
    )";
    EXPECT_EQ(" " + writes(w), std::regex_replace(expected, std::regex("\\s*\\n *"), " "));
}

TEST(Engine, EachFamilyStoresAppletsAndCommandLineInItsOwnForm) {
    for (const Version& version : {versions::winnt, versions::win2k, versions::winxp, versions::win95,
                                   versions::win98, versions::winme}) {
        WithAnna w(version);
        const std::string family = w.program->reg.get_os_name();
        SCOPED_TRACE(family);
        const bool xp = family == "WinXP";
        const std::string ini = w.windows.system.windows_folder + "\\CONTROL.INI";
        w.anna()[key::disallow_cpl].set("own", "kept");
        w.anna()[key::dont_load].set("foreign.cpl", "no");
        w.windows.files.add_file(
            ini, "; mine\r\n[Don't Load]\r\nSYSDM.CPL=yes\r\nDESK.CPL=no\r\n[other]\r\nx=1\r\n");
        MainForm& window = w.read();
        EXPECT_EQ(w.ticked(), w.nt() ? "" : " DESK.CPL SYSDM.CPL") << "on Windows 9X any text hides";
        w.click(window.cmd22);
        w.click_applet(1);
        w.click_applet(31);
        w.click(window.c96);
        w.apply();

        EXPECT_THAT(w.dump(), HasSubstr(w.nt() ? "Policies\\Microsoft\\Windows\\System : DisableCMD = dword 1"
                                               : "Policies\\WinOldApp : Disabled = dword 1"));
        EXPECT_THAT(w.dump(key::explorer),
                    HasSubstr(xp ? "ForceClassicControlPanel = dword 1" : "ClassicControlPanel = dword 0"));
        EXPECT_EQ(
            w.dump(key::disallow_cpl),
            xp ? " :  1 = \"APPWIZ.CPL\"\n :  2 = \"Drucker und Faxger\xE4te\"\n" : " : own = \"kept\"\n");
        const std::string stored = w.nt() ? w.dump(key::dont_load) : w.content(ini);
        EXPECT_THAT(stored, HasSubstr(xp ? " : APPWIZ.CPL = \"No\"\n : Drucker und Faxger\xE4te = \"No\"\n"
                                      : w.nt() ? " : APPWIZ.CPL = \"No\"\n : CONSOLE.CPL = \"\"\n"
                                               : "; mine\r\n[Don't Load]\r\nAPPWIZ.CPL=no\r\n"
                                                 "Drucker und Faxger\xE4te=no\r\n[other]\r\nx=1\r\n"));
        EXPECT_EQ(std::count(stored.begin(), stored.end(), '\n'), xp       ? 2
                                                                  : w.nt() ? 39
                                                                           : 6)
            << "what was there is gone";
        w.read();
        EXPECT_EQ(w.ticked(), " c96 APPWIZ.CPL Drucker und Faxger\xE4te");
    }
}

TEST(Engine, ReadingShowsTheOddities) {
    WithAnna w;
    w.anna()[key::explorer]
        .set("NoClose", 1)  // only the number 1 ticks
        .set("NoLogOff", 2)
        .set("NoRun", "1")
        .set("NoFind", RawValue{reg_sz, "1"})
        .set("NoHelp", RawValue{reg_dword, std::string("\1\0\0", 3)})
        .set("NoRecentDocsMenu", RawValue{3, std::string("\1\0\0\0", 4)})
        .set("NoSetTaskbar", 1)
        .set("NoSetFolders", 1)
        .set("NoControlPanel", 0)  // the last of the three values of c16
        .set("RestrictRun", 1)
        .set("FixedLNKUrl", " C:\\Icons ");
    w.anna()[key::hide].set("C", 2).set("D", 1);
    w.anna()[key::sound].set("Beep", "no");  // only "No", case-sensitive
    w.anna()[key::dont_load].set("APPWIZ.CPL", "nO").set("DESK.CPL", "").set("MAIN.CPL", "yes");
    w.anna().set("NoPrintSharingControl", 1);
    w.anna()[key::desktop].set("Wallpaper", "C:\\gone.bmp");
    // Whatever stands after the name; a field after a comma counts, in quotes too.
    w.windows.files.add_file(boot_file, "[Options]\r\nAutoscan=2\r\nAutoScan=0\r\nx=1, \"Bootkeys=0\"\r\n");
    MainForm& window = w.read();
    EXPECT_EQ(w.ticked(), " c11 c31 c41 c61 c62 c610 D: APPWIZ.CPL");
    EXPECT_EQ(window.t31.text(), "C:\\gone.bmp") << "also without the tick";
    EXPECT_EQ(window.t32.text(), "C:\\Icons");
    w.windows.files.add_file(boot_file, "[Options]\r\n;Autoscan=0\r\nBootKeys=0\r\n\x1A\r\nBootkeys=0\r\n");
    w.read();
    EXPECT_EQ(w.ticked(), " c11 c31 c41 c610 D: APPWIZ.CPL");
}

TEST(Engine, BootOptionsLieInTheFileOfTheMachine) {
    const std::string others = ";SYS\r\n[Paths]\r\nWinDir=C:\\W\r\n[options]\r\nLogo=0\r\n";
    for (const Version& version : {versions::winxp, versions::win98}) {
        WithAnna w(version);
        w.windows.files.add_file(boot_file, others + "BOOTKEYS=1\r\n",
                                 attribute_hidden | attribute_system | attribute_read_only);
        w.click(w.window().c61);
        w.click(w.window().c62);
        w.apply();
        EXPECT_EQ(w.content(boot_file), others + "BOOTKEYS=0\r\nAutoscan=0\r\n");
        EXPECT_EQ(w.windows.files.attributes(boot_file), attribute_normal) << "and they are not set back";
        w.read();
        EXPECT_EQ(w.ticked(), " c61") << "read by exact case, written without";
        w.click(w.window().c61);
        w.apply();
        EXPECT_EQ(w.content(boot_file), others);
    }
    WithAnna w;
    (void)w.windows.files.remove(boot_file);
    w.enter();  // neither an error nor an endless loop
    EXPECT_FALSE(w.expecting("Brightlock Suite").choose("Anna"));
    EXPECT_THAT(w.told(), HasSubstr("Run-time error '53'"));
}

TEST(Engine, OnlyTheFirstWriteIsLookedAt) {
    WithAnna w;
    w.click(w.window().c12);
    w.anna()[key::explorer].access = Access::none;
    w.expecting("Could not save settings...").apply();
    EXPECT_THAT(w.dump(key::system), Not(HasSubstr("NoDispCpl"))) << "nothing further is written";
    w.anna()[key::explorer].access = Access::full;
    w.anna()[key::network].access = Access::none;
    w.apply();
    EXPECT_THAT(w.dump(key::explorer), HasSubstr("NoLogOff = dword 1"));
}

TEST(Engine, TheStartShowsTheRunningAccountByEmptyPaths) {
    World w;
    auto& own = w.windows.registry.at(HKEY_CURRENT_USER);
    own.set("NoClose", 1).set("NoHelp", 1).set("NoChangeStartMenu", 1);
    own[key::explorer].set("NoRun", 1);
    own[key::internet_explorer].set("NoPrinting", 1).set("NoFileNew", 2).set("NoFavorites", "1");
    own[key::hide].set("C", 1);
    own[key::desktop].set("Wallpaper", "C:\\own.bmp");
    w.windows.files.add_file("C:\\own.bmp", "no picture");  // passed over without a word
    MainForm& window = w.enter();
    // NoHelp is not read, NoChangeStartMenu is spelt differently there, and only the root counts but for
    // Internet Explorer.
    EXPECT_EQ(w.ticked(), " c11 c110 c29 C:");
    EXPECT_EQ(window.t31.text() + window.pic31.bytes(), "C:\\own.bmp");
}

}  // namespace
