#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "base/text.h"
#include "program/world.h"

namespace britlock {
namespace {

using namespace machine;
using namespace text::literals;
using testing::HasSubstr;
using testing::Not;
using toolkit::Answer;

constexpr const char* run_key = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const char* setup = "C:\\WINDOWS\\uninstall\\brightlock suite\\setup.exe";
constexpr const char* former_hive = "C:\\Program Files\\Brightlock Suite\\britlock.HIV";

struct Uninstall : testing::Test {
    void prepare(World& w) {
        w.windows.registry.at(HKEY_LOCAL_MACHINE, run_key).set("BritlockTray", "tray").set("Other", "stays");
        w.windows.files.add_file(former_hive, "regf");
        w.windows.files.add_file(setup, "MZ");
    }
    std::string autostart(World& w) { return w.windows.registry.dump(HKEY_LOCAL_MACHINE, run_key); }
};

TEST_F(Uninstall, OnNTLoadsEveryHiveAndChangesNone) {
    World w;
    prepare(w);
    MemoryKey& anna = w.windows.add_profile("Anna");
    MemoryKey& admin = w.windows.add_profile("Administrator");
    anna[key::explorer].set("NoClose", 1);
    MainForm& window = w.enter();
    const std::string before = anna.dump();

    w.expecting("Uninstall ?", Answer::no).click(window.mm132);
    EXPECT_FALSE(w.program->reg.uninstall_running);
    EXPECT_TRUE(w.windows.files.exists(former_hive));

    EXPECT_FALSE(w.expecting("Uninstall ?", Answer::yes).click(window.mm132)) << "the process ends";
    EXPECT_EQ(anna.dump(), before);
    EXPECT_TRUE(w.windows.registry.is_mounted(anna)) << "until the restart";
    EXPECT_TRUE(w.windows.registry.is_mounted(admin)) << "the logged-on user is not refused";
    EXPECT_EQ(autostart(w), " : Other = \"stays\"\n");
    EXPECT_FALSE(w.windows.files.exists(former_hive));
    EXPECT_EQ(w.windows.processes.started.back().command_line, '"' + std::string(setup) + '"');
    EXPECT_THAT(w.windows.registry.dump(HKEY_LOCAL_MACHINE), HasSubstr("BRLCK"));
}

TEST_F(Uninstall, GoesOnWhateverFailsAndSaysThatSetUpIsMissing) {
    World w;
    w.windows.add_profile("Anna");
    w.enter();
    w.windows.files.remove("C:\\Program Files\\Brightlock Suite\\regg.exe");
    EXPECT_FALSE(
        w.expecting("Uninstall ?", Answer::yes).expecting("Uninstall not found").click(w.window().mm132));
}

TEST_F(Uninstall, TheCommandLineAsksAfterThePassword) {
    World w;
    w.have_password();
    w.expecting("How to uninstall ?").start("/uninstall");
    EXPECT_TRUE(w.expecting("Uninstall ?", Answer::no).give_password("secret"));
    EXPECT_TRUE(w.window().shown()) << "a refusal leads to the main window";
}

TEST_F(Uninstall, On9XLiftsTheRestrictionsOfTheRunningAccount) {
    World w(versions::win98);
    prepare(w);
    MainForm& window = w.enter();
    const std::string untouched = autostart(w);
    EXPECT_TRUE(w.expecting("Uninstall ?", Answer::yes)
                    .expecting("Attention User Profiles - Read carefully !", Answer::no)
                    .click(window.mm132));
    EXPECT_FALSE(w.program->reg.uninstall_running);
    EXPECT_EQ(autostart(w), untouched);
    EXPECT_THAT(w.told(), HasSubstr("on your PC.\n\nIn this case"));

    w.windows.journal.clear();
    EXPECT_FALSE(w.expecting("Uninstall ?", Answer::yes)
                     .expecting("Attention User Profiles - Read carefully !", Answer::yes)
                     .click(window.mm132));
    std::string values;
    std::istringstream journal(w.windows.journal.text());
    for (std::string line; std::getline(journal, line);) {
        const size_t name = line.find(" : ") + 3;
        if (line.starts_with("set HKCU")) values += line.substr(name, line.find(" = dword 0") - name) + ' ';
    }
    EXPECT_EQ(values,
              "NoClose NoLogOff NoRun NoFind NoHelp NoSetFolders NoControlPanel NoRecentDocsMenu "
              "NoFavoritesMenu NoCommonGroups NoChangeStartMenu NoSelectDownloadDir NoBrowserContextMenu "
              "NoBrowserOptions NoViewSource NoFavorites NoFileNew NoFileOpen NoBrowserSaveAs NoPrinting "
              "NoBrowserClose NoSetTaskbar NoDispCpl NoDesktop NoNetHood NoStartBanner NoSaveSettings "
              "FixedWallpaper DisableRegistryTools FixedLNK RestrictRun NoDrives NoActiveDesktop "
              "ClassicShell NoNetSetup NoEntireNetwork NoWorkgroupContents NoPwdPage NoFileSharingControl "
              "NoPrintSharingControl Beep NoViewContextMenu NoTrayContextMenu DisableTaskMgr NoWindowsUpdate "
              "DisableCMD NoAddPrinter NoDeletePrinter ");
    EXPECT_THAT(autostart(w), Not(HasSubstr("BritlockTray")));
}

TEST_F(Uninstall, ARefusedWriteIsToldAndPassedOver) {
    World w(versions::win98, german);
    prepare(w);
    MainForm& window = w.enter();
    w.windows.registry.at(HKEY_CURRENT_USER, key::explorer).access = Access::read_only;
    EXPECT_FALSE(w.expecting("DE-Installieren ?", Answer::yes)
                     .expecting("Achtung Benutzer-Profile - bitte UNBEDINGT beachten !", Answer::yes)
                     .expecting(U"Kann Einschränkung nicht setzen..."_ansi)
                     .click(window.mm132));
    EXPECT_TRUE(w.told().ends_with(U"für den Benutzer Administrator"_ansi))
        << "the name's NUL cuts the rest off";
    EXPECT_THAT(autostart(w), Not(HasSubstr("BritlockTray")));
    EXPECT_THAT(w.windows.registry.dump(HKEY_CURRENT_USER), Not(HasSubstr("NoDrives")));
}

}  // namespace
}  // namespace britlock
