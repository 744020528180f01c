#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "program/world.h"

namespace britlock {
namespace {

using namespace machine;
using testing::HasSubstr;
using testing::Not;

const std::string registration_key = "Software\\Microsoft\\Windows NT\\CurrentVersion";

/// One of every family, with a user who can be restricted and somebody who does it.
struct Restricted : World {
    explicit Restricted(const Version& version = versions::winxp) : World(version) {
        if (nt()) windows.add_profile("Anna");
        windows.system.drives = 0b1101;  // A, C, D
        reread();
    }

    /// The user's branch of the registry.
    MemoryKey& user() {
        return nt() ? *windows.files.hive(*windows.system.profiles_folder + "\\Anna\\NTUSER.DAT")
                    : windows.registry.at(HKEY_CURRENT_USER);
    }
    std::string under(const std::string& subkey) {
        const MemoryKey* key = user().find(subkey);
        return key ? key->dump() : "(missing)";
    }
    /// Reads the user afresh into a program started anew.
    MainForm& reread() {
        enter();
        if (nt()) choose("Anna");
        return window();
    }
};

const Version all_families[] = {versions::winnt, versions::win2k, versions::winxp,
                                versions::win95, versions::win98, versions::winme};

std::string replaced(const std::string& text, const char* pattern, const char* with) {
    return std::regex_replace(text, std::regex(pattern), with);
}

/// What was written since the journal was cleared, the writes to one key after its name. In paths case
/// counts.
std::string writes(World& w) {
    std::string text = replaced(w.windows.journal.text(), R"(HKU\\Anna\\?)", "");
    text = replaced(text, R"(Software\\Microsoft\\Windows\\CurrentVersion)", "Current");
    text = replaced(text, R"(SOFTWARE\\Microsoft\\Windows\\CurrentVersion)", "CURRENT");
    std::istringstream lines(replaced(text, " = dword ", "="));
    std::string out, last_key;
    for (std::string line; std::getline(lines, line);) {
        const size_t name = line.starts_with("set ") ? line.find(" : ") + 3 : 0;
        const std::string key = line.substr(0, name);
        out += line.substr(key == last_key ? name : 0) + "; ";
        last_key = key;
    }
    return out;
}

TEST(Engine, EveryWriteComesInItsPlace) {
    Restricted w;
    MainForm& window = w.window();
    w.user()[key::desktop];
    w.user()[key::run];
    w.expecting("Brightlock Suite").click(window.mm21);
    w.screen.act([&] {
        window.tab.click_tab(1);
        window.cmd22.click();
        window.lv1.set_checked(1, true);
        window.lv1.set_checked(37, true);
        window.t31.set_text("C:\\w.bmp");
        window.t32.set_text("C:\\Icons");
        window.c39.set_value(1);
        window.c41.set_value(1);
        window.List1.add("calc.exe");
    });
    w.windows.journal.clear();
    w.apply();
    const char* const expected = R"(
        create Software -> 2; create HKLM\Software\Morvane -> 2; create HKLM\Software\Morvane\BRLCK -> 2;
        create  -> 2; create CURRENT\Policies\Explorer -> 1; create CURRENT\Policies\System -> 1;
        create CURRENT\Policies\Network -> 1; create SOFTWARE\Policies\Microsoft\Internet Explorer\Restrictions -> 1;
        create Current\Policies\Explorer\Advanced -> 1; create Control Panel\Sound -> 1;
        create Current\Policies\Explorer\Hide -> 1; create Control Panel\don't load -> 1;
        create Current\Policies\Explorer\DisallowCpl -> 1; create Current\Policies\Explorer\RestrictRun -> 1;
        set CURRENT\Policies\Explorer : NoClose=0; NoLogOff=0; NoRun=0; NoFind=0; NoHelp=0; NoSetFolders=0;
        NoControlPanel=0; NoControlPanel=0; NoRecentDocsMenu=0; NoFavoritesMenu=0; NoCommonGroups=0;
        NoChangeStartMenu=0; set SOFTWARE\Policies\Microsoft\Internet Explorer\Restrictions : NoSelectDownloadDir=0;
        NoBrowserContextMenu=0; NoBrowserOptions=0; NoViewSource=0; NoFavorites=0; NoFileNew=0; NoFileOpen=0;
        NoBrowserSaveAs=0; NoPrinting=0; NoBrowserClose=0; set CURRENT\Policies\Explorer : NoSetTaskbar=0;
        set CURRENT\Policies\System : NoDispCpl=0; set CURRENT\Policies\Explorer : NoDesktop=0; NoNetHood=0;
        NoStartBanner=0; NoSaveSettings=0; FixedWallpaper=0; set CURRENT\Policies\System : DisableRegistryTools=0;
        set CURRENT\Policies\Explorer : FixedLNK=0; RestrictRun=0; NoDrives=0; NoActiveDesktop=0; ClassicShell=0;
        set CURRENT\Policies\Network : NoNetSetup=0; NoEntireNetwork=0; NoWorkgroupContents=0;
        set CURRENT\Policies\System : NoPwdPage=0; set CURRENT\Policies\Network : NoFileSharingControl=0;
        set  : NoPrintSharingControl=0; set Control Panel\Sound : Beep=0;
        set CURRENT\Policies\Explorer : NoViewContextMenu=0; NoDesktop=0; NoTrayContextMenu=0;
        set CURRENT\Policies\System : DisableTaskMgr=0; set CURRENT\Policies\Explorer : NoWindowsUpdate=0;
        set CURRENT\Policies\System : DisableCMD=0; set CURRENT\Policies\Network : NoEntireNetwork=0;
        set CURRENT\Policies\Explorer : NoAddPrinter=0; NoDeletePrinter=0; create Software -> 2;
        create Software\Policies -> 2; create Software\Policies\Microsoft -> 2;
        create Software\Policies\Microsoft\Windows -> 1; create Software\Policies\Microsoft\Windows\System -> 1;
        set Software\Policies\Microsoft\Windows\System : DisableCMD=0; delete key Control Panel\don't load -> 0;
        create Control Panel\don't load -> 1; delete key Current\Policies\Explorer\DisallowCpl -> 0;
        create Current\Policies\Explorer\DisallowCpl -> 1; set Control Panel\don't load : DESK.CPL = "No";
        set Current\Policies\Explorer\DisallowCpl :  1 = "DESK.CPL"; set Control Panel\don't load : Verwaltung = "No";
        set Current\Policies\Explorer\DisallowCpl :  2 = "Verwaltung";
        set CURRENT\Policies\Explorer : ForceClassicControlPanel=1; NoClose=1; NoLogOff=1; NoRun=1; NoFind=1;
        NoHelp=1; NoSetFolders=1; NoSetTaskbar=1; NoControlPanel=1; NoRecentDocsMenu=1; NoFavoritesMenu=1;
        NoCommonGroups=1; NoChangeStartMenu=1;
        set SOFTWARE\Policies\Microsoft\Internet Explorer\Restrictions : NoSelectDownloadDir=1;
        NoBrowserContextMenu=1; NoBrowserOptions=1; NoViewSource=1; NoFavorites=1; NoFileNew=1; NoFileOpen=1;
        NoBrowserSaveAs=1; NoPrinting=1; NoBrowserClose=1; set CURRENT\Policies\Explorer : NoSetTaskbar=1;
        set CURRENT\Policies\System : NoDispCpl=1; set CURRENT\Policies\Explorer : NoDesktop=1; NoNetHood=1;
        NoStartBanner=1; NoSaveSettings=1; FixedWallpaper=1; set Control Panel\Desktop : Wallpaper = "C:\w.bmp";
        set CURRENT\Policies\System : DisableRegistryTools=1; set CURRENT\Policies\Explorer : FixedLNK=1;
        FixedLNKUrl = "C:\Icons"; set Current\Run : System = "C:\Program Files\Brightlock Suite\britlock.exe /icon";
        delete key Current\Policies\Explorer\RestrictRun -> 0; create Current\Policies\Explorer\RestrictRun -> 1;
        set Current\Policies\Explorer\RestrictRun :  0 = "BRITLOCK.EXE";  1 = "calc.exe"; Gesamt=2;
        set CURRENT\Policies\Explorer : RestrictRun=1; set Current\Policies\Explorer\Hide : A=1; B=0; C=1; D=1; E=0;
        F=0; G=0; H=0; I=0; J=0; K=0; L=0; M=0; N=0; O=0; P=0; Q=0; R=0; S=0; T=0; U=0; V=0; W=0; X=0; Y=0; Z=0;
        set CURRENT\Policies\Explorer : NoDrives=13; NoActiveDesktop=1; ClassicShell=1;
        set CURRENT\Policies\Network : NoNetSetup=1; NoEntireNetwork=1; NoWorkgroupContents=1;
        set CURRENT\Policies\System : NoPwdPage=1; set CURRENT\Policies\Network : NoFileSharingControl=1;
        set  : NoPrintSharingControl=1; set Software\Morvane\BRLCK : PWHide=1 -> open 2;
        set Software\Microsoft\Windows NT\CurrentVersion : RegisteredOrganization=0 -> open 2;
        RegisteredOwner=0 -> open 2; set Control Panel\Sound : Beep = "No";
        set CURRENT\Policies\Explorer : NoViewContextMenu=1; NoTrayContextMenu=1;
        set CURRENT\Policies\System : DisableTaskMgr=1; set CURRENT\Policies\Explorer : NoWindowsUpdate=1;
        set Software\Policies\Microsoft\Windows\System : DisableCMD=1; set CURRENT\Policies\Explorer : NoAddPrinter=1;
        NoDeletePrinter=1;
    )";
    EXPECT_EQ(writes(w), replaced(replaced(expected, "^\\s+", ""), "\\s*\\n\\s*", " "));
}

TEST(Engine, EachFamilyStoresAppletsAndCommandLineInItsOwnForm) {
    for (const Version& version : all_families) {
        Restricted w(version);
        const std::string family = w.program->reg.get_os_name();
        SCOPED_TRACE(family);
        const bool xp = family == "WinXP";
        const std::string ini = w.windows.system.windows_folder + "\\CONTROL.INI";
        w.user()[key::disallow_cpl].set("own", "kept");
        w.user()[key::dont_load].set("foreign.cpl", "no");
        w.windows.files.add_file(
            ini, "; mine\r\n[Don't Load]\r\nSYSDM.CPL=yes\r\nDESK.CPL=no\r\n[other]\r\nx=1\r\n");
        MainForm& window = w.reread();
        EXPECT_EQ(window.lv1.rows()[13].checked, !w.nt()) << "on Windows 9X any text hides";
        w.turn_to(window.lv1);
        w.click(window.cmd22);
        w.click_applet(1);
        w.click_applet(31);
        w.click(window.c96);
        w.apply();

        EXPECT_THAT(w.user().dump(),
                    HasSubstr(w.nt() ? "Software\\Policies\\Microsoft\\Windows\\System : DisableCMD = dword 1"
                                     : "Policies\\WinOldApp : Disabled = dword 1"));
        EXPECT_THAT(w.under(key::explorer),
                    HasSubstr(std::string("ForceClassicControlPanel = dword ") + (xp ? "1" : "0")));
        EXPECT_EQ(
            w.under(key::disallow_cpl),
            xp ? " :  1 = \"APPWIZ.CPL\"\n :  2 = \"Drucker und Faxger\xE4te\"\n" : " : own = \"kept\"\n");
        if (w.nt()) {
            const std::string list = w.under(key::dont_load);
            EXPECT_THAT(list, HasSubstr(" : APPWIZ.CPL = \"No\"\n"));
            EXPECT_THAT(list, HasSubstr(" : Drucker und Faxger\xE4te = \"No\"\n"));
            EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), xp ? 2 : 39) << "the key was emptied first";
            EXPECT_EQ(list.find(" : DESK.CPL = \"\"\n") == std::string::npos, xp);
        } else {
            EXPECT_EQ(w.content(ini),
                      "; mine\r\n[Don't Load]\r\nAPPWIZ.CPL=no\r\n"
                      "Drucker und Faxger\xE4te=no\r\n[other]\r\nx=1\r\n");
        }
        MainForm& again = w.reread();
        for (size_t i = 0; i < again.lv1.rows().size(); ++i)
            EXPECT_EQ(again.lv1.rows()[i].checked, i == 0 || i == 30) << i;
        EXPECT_TRUE(again.c96.ticked());
    }
}

TEST(Engine, OnlyTheNumberOneTicks) {
    Restricted w;
    w.user()[key::explorer]
        .set("NoClose", 1)
        .set("NoLogOff", 2)
        .set("NoRun", "1")
        .set("NoFind", RawValue{reg_sz, "1"})
        .set("NoHelp", RawValue{reg_dword, std::string("\1\0\0", 3)})
        .set("NoRecentDocsMenu", RawValue{3, std::string("\1\0\0\0", 4)})
        .set("RestrictRun", 1);
    w.user()[key::hide].set("C", 2).set("D", 1);
    MainForm& window = w.reread();
    for (auto* box : {&window.c11, &window.c41, &window.drive_boxes[3]})
        EXPECT_TRUE(box->ticked()) << box->name();
    for (auto* box :
         {&window.c12, &window.c13, &window.c14, &window.c15, &window.c17, &window.drive_boxes[2]})
        EXPECT_FALSE(box->ticked()) << box->name();
}

TEST(Engine, ReadingShowsTheOddities) {
    Restricted w;
    w.user()[key::explorer]
        .set("NoSetTaskbar", 1)
        .set("NoSetFolders", 1)
        .set("NoControlPanel", 0)
        .set("FixedLNKUrl", " C:\\Icons ");
    w.user()[key::sound].set("Beep", "no");
    w.user()[key::dont_load].set("APPWIZ.CPL", "nO").set("DESK.CPL", "").set("MAIN.CPL", "yes");
    w.user().set("NoPrintSharingControl", 1);
    w.user()[key::desktop].set("Wallpaper", "C:\\gone.bmp");
    w.windows.files.add_file("C:\\MSDOS.SYS",
                             "[Options]\r\nAutoscan=2\r\nAutoScan=0\r\nx=1, \"Bootkeys=0\"\r\n");
    MainForm& window = w.reread();
    EXPECT_FALSE(window.c16.ticked()) << "the last of its three values decides";
    EXPECT_TRUE(window.c31.ticked());
    EXPECT_FALSE(window.c90.ticked()) << "only \"No\", case-sensitive";
    EXPECT_TRUE(window.lv1.rows()[0].checked);
    EXPECT_FALSE(window.lv1.rows()[1].checked);
    EXPECT_FALSE(window.lv1.rows()[5].checked);
    EXPECT_TRUE(window.c610.ticked());
    EXPECT_EQ(window.t31.text(), "C:\\gone.bmp") << "also without the tick";
    EXPECT_EQ(window.t32.text(), "C:\\Icons");
    EXPECT_TRUE(window.c61.ticked()) << "whatever stands after the name";
    EXPECT_TRUE(window.c62.ticked()) << "a field after a comma counts, in quotes too";

    w.windows.files.add_file("C:\\MSDOS.SYS",
                             "[Options]\r\n;Autoscan=0\r\nBootKeys=0\r\n\x1A\r\nBootkeys=0\r\n");
    w.reread();
    EXPECT_FALSE(w.window().c61.ticked());
    EXPECT_FALSE(w.window().c62.ticked());

    w.click(w.window().c16);
    EXPECT_TRUE(w.window().c31.ticked()) << "as the first writes the value of the second";
    w.click(w.window().c31);
    w.click(w.window().c16);
    EXPECT_FALSE(w.window().c31.ticked()) << "unticking leaves it alone";
}

TEST(Engine, BootOptionsLieInTheFileOfTheMachine) {
    for (const Version& version : {versions::winxp, versions::win98}) {
        Restricted w(version);
        w.windows.files.add_file(boot_file,
                                 ";SYS\r\n[Paths]\r\nWinDir=C:\\W\r\n[options]\r\nBOOTKEYS=1\r\nLogo=0\r\n",
                                 attribute_hidden | attribute_system | attribute_read_only);
        w.click(w.window().c61);
        if (!w.window().c62.ticked()) w.click(w.window().c62);
        w.apply();
        EXPECT_EQ(w.content(boot_file),
                  ";SYS\r\n[Paths]\r\nWinDir=C:\\W\r\n[options]\r\nBOOTKEYS=0\r\nLogo=0\r\nAutoscan=0\r\n");
        EXPECT_EQ(w.windows.files.attributes(boot_file), attribute_normal) << "and they are not set back";
        w.reread();
        EXPECT_TRUE(w.window().c61.ticked());
        EXPECT_FALSE(w.window().c62.ticked()) << "read by exact case, written without";
        w.click(w.window().c61);
        w.apply();
        EXPECT_EQ(w.content(boot_file), ";SYS\r\n[Paths]\r\nWinDir=C:\\W\r\n[options]\r\nLogo=0\r\n");
    }
    Restricted w;
    (void)w.windows.files.remove(boot_file);
    w.enter();  // neither an error nor an endless loop
    EXPECT_FALSE(w.expecting("Brightlock Suite").choose("Anna"));
    EXPECT_THAT(w.told(), HasSubstr("Run-time error '53'"));
}

TEST(Engine, RegistrationTextsBecomeNumbersInTheUsersOwnBranch) {
    Restricted w;
    auto& registration = w.windows.registry.at(HKEY_LOCAL_MACHINE, registration_key);
    registration.set("RegisteredOrganization", "3 5 AG").set("RegisteredOwner", "School");
    w.user()[registration_key];
    w.user()[product::key];
    w.reread();
    EXPECT_EQ(w.window().t82.text(), "School");
    w.apply();
    EXPECT_EQ(w.under(registration_key),
              " : RegisteredOrganization = dword 35\n : RegisteredOwner = dword 0\n");
    EXPECT_EQ(w.under(product::key), " : PWHide = dword 1\n");
    EXPECT_THAT(registration.dump(), HasSubstr("\"3 5 AG\"")) << "the machine's data are not touched";
}

TEST(Engine, OnlyTheFirstWriteIsLookedAt) {
    Restricted w;
    w.click(w.window().c12);
    w.user()[key::explorer].access = Access::none;
    w.expecting("Could not save settings...").apply();
    EXPECT_THAT(w.under(key::system), Not(HasSubstr("NoDispCpl"))) << "nothing further is written";
    EXPECT_TRUE(w.window().c12.ticked());
    w.user()[key::explorer].access = Access::full;
    w.user()[key::network].access = Access::none;
    w.apply();
    EXPECT_THAT(w.under(key::explorer), HasSubstr("NoLogOff = dword 1"));
}

TEST(Engine, TheStartShowsTheRunningAccountByEmptyPaths) {
    Restricted w;
    auto& own = w.windows.registry.at(HKEY_CURRENT_USER);
    own.set("NoClose", 1).set("NoHelp", 1).set("NoChangeStartMenu", 1);
    own[key::explorer].set("NoRun", 1);
    own[key::internet_explorer].set("NoPrinting", 1).set("NoFileNew", 2).set("NoFavorites", "1");
    own[key::hide].set("C", 1);
    own[key::desktop].set("Wallpaper", "C:\\own.bmp");
    w.windows.files.add_file("C:\\own.bmp", "no picture");  // passed over without a word
    MainForm& window = w.enter();
    for (auto* box : {&window.c11, &window.c110, &window.c29, &window.drive_boxes[2]})
        EXPECT_TRUE(box->ticked()) << box->name();  // NoChangeStartMenu is spelt differently there
    EXPECT_FALSE(window.c15.ticked()) << "not read at the start";
    EXPECT_FALSE(window.c13.ticked()) << "the paths are empty, so only the root counts";
    EXPECT_FALSE(window.c26.ticked());
    EXPECT_FALSE(window.c25.ticked());
    EXPECT_EQ(window.t31.text() + window.pic31.bytes(), "C:\\own.bmp");

    // The reader that writes: it has made its keys, and where that works under HKEY_USERS, missing values
    // read as set.
    EXPECT_NE(w.windows.registry.dump(HKEY_CURRENT_USER,
                                      "Software\\Policies\\Microsoft\\Internet Explorer\\Control Panel"),
              "(missing)");
    w.windows.registry.at(HKEY_USERS, "Administrator");
    EXPECT_EQ(w.program->reg.ie_policy_read("NoSuchValue"), " 1");
    EXPECT_EQ(w.program->reg.ie_policy_read("NoSuchValue"), " 2");
    EXPECT_EQ(w.program->reg.ie_policy_read("NoPrinting"), " 1");
}

}  // namespace
}  // namespace britlock
