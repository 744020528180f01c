#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "program/world.h"
#include "ui/profile.h"

namespace britlock {
namespace {

using namespace machine;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::string anna_hive = "C:\\Documents and Settings\\Anna\\NTUSER.DAT";

struct Users : testing::Test {
    World w;
    MemoryKey& anna = w.windows.add_profile("Anna");

    std::string commands() {
        std::string out;
        for (const auto& process : w.windows.processes.started)
            out += process.command_line + "\n";
        return out;
    }
    std::string panel() { return w.window().StatusBar.panel_text(2); }
};

TEST_F(Users, AreTheFoldersWithoutThoseOfNobody) {
    for (const char* folder :
         {"Ben.DOMAIN", "All Users.WINNT", "Default User", "LocalService", "NetworkService", "all users"}) {
        w.windows.add_profile(folder);
    }
    w.windows.files.add_folder("C:\\Documents and Settings\\Carl");
    w.windows.files.add_file("C:\\Documents and Settings\\Dora\\NTUSER.DAT", "");
    w.windows.files.add_file("C:\\Documents and Settings\\Emil.txt", "no folder");
    w.windows.files.fail(anna_hive, permission_denied);  // logged on: counts as fine
    MainForm& window = w.expecting("Sorry, could not load every files..").enter();
    EXPECT_THAT(window.Combo_user.items(), ElementsAre("all users", "Anna", "Ben.DOMAIN", "Carl", "Dora"));
    EXPECT_THAT(w.told(), testing::EndsWith("the files below...")) << "without the list";
    EXPECT_FALSE(w.windows.files.exists("C:\\Documents and Settings\\Dora\\NTUSER.DAT"));

    World g(versions::winxp, german);
    g.windows.files.add_folder("C:\\Documents and Settings\\Carl");
    g.expecting("Kann (einige) Profile nicht laden").enter();
    EXPECT_THAT(g.told(), HasSubstr("C:\\Documents and Settings\\Carl\\NTUSER.DAT\n"));
}

TEST_F(Users, LieWhereTheAdministratorSaysAsItStands) {
    w.windows.registry.at(HKEY_LOCAL_MACHINE, product::key).set("ProfileMainPath", "C:\\Server\\Prof");
    w.windows.files.add_hive("C:\\Server\\Profile1\\NTUSER.DAT");
    w.windows.files.add_hive("C:\\Server\\Other\\NTUSER.DAT");
    MainForm& window = w.expecting("Sorry, could not load every files..").enter();
    EXPECT_THAT(window.Combo_user.items(), ElementsAre("Profile1")) << "no backslash is added to the path";
    EXPECT_EQ(window.t810.text(), "C:\\Server\\Prof");
}

TEST_F(Users, TheRoadOfOneTickedBox) {
    anna["Software"].set("Company", "kept");
    MainForm& window = w.enter();
    w.choose("Anna");
    EXPECT_FALSE(window.c11.ticked());
    w.click(window.c11);
    EXPECT_THAT(anna.dump(), Not(HasSubstr("NoClose"))) << "nothing reaches the registry before Apply";
    w.apply();
    EXPECT_THAT(anna.dump(), HasSubstr("Policies\\Explorer : NoClose = dword 1"));
    EXPECT_THAT(anna.dump(), HasSubstr("Software : Company = \"kept\""));
    const std::string tool = "\"C:\\Program Files\\Brightlock Suite\\regg.exe\" ";
    const std::string unload = tool + "unload HKU\\Anna\n";
    const std::string load = tool + "load \"" + anna_hive + "\" HKU\\Anna\n";
    const std::string once = unload + load + unload;
    EXPECT_EQ(commands(), once + once);
    EXPECT_EQ(w.windows.processes.started[0].style, WindowStyle::hidden);
    EXPECT_EQ(panel(), "");
    EXPECT_EQ(window.mouse_pointer(), toolkit::MousePointer::normal);

    w.click(window.c11);  // a mark that is not applied is gone when the same user is chosen again
    w.choose("Anna");
    EXPECT_TRUE(window.c11.ticked());
    w.enter();
    w.choose("Anna");
    EXPECT_TRUE(w.window().c11.ticked());
}

TEST_F(Users, TheLoggedOnUserCannotBeRestricted) {
    w.windows.system.user = "anna";  // capitals do not count
    MainForm& window = w.enter();
    w.expecting("Brightlock Suite").click(window.mm21);
    w.choose("Anna");
    EXPECT_FALSE(window.c11.ticked()) << "choosing the logged-on user clears the marks";
    w.expecting("Sorry..").apply();
    EXPECT_EQ(commands(), "");
}

/// Every row is tried on reading and on writing: its box comes, the hive is what it was, the marks stay.
TEST_F(Users, EveryFaultOfAHiveHasItsBox) {
    struct Fault {
        std::function<void(World&)> cause;
        const char* title;
        const char* end_of_text;
    };
    const auto unusable = [](FileError error) {
        return [error](World& x) { x.windows.files.fail(anna_hive, error); };
    };
    const char* const missing = "Could not find path/file...";
    const char* const no_write_access = "Problems while writing to registry...";
    const Fault faults[] = {
        {[](World& x) { (void)x.windows.files.remove(anna_hive); }, missing, " logged in a new user once."},
        {[](World& x) { x.windows.files.add_file(anna_hive, ""); }, missing, " logged in a new user once."},
        {unusable(permission_denied), "File in use...", "you don't have right to acess."},
        {unusable(path_access), "File in use...", "you don't have right to acess."},
        {unusable(no_such_path), "Path not found...", ". Please check you settings (Profile Paths)."},
        {unusable(device_error), "Unknown Error...",
         "Unexpected Error acessing & C:\\Documents and Settings\\Anna\\NTUSER.DAT"},
        {[](World& x) { x.windows.processes.failing_tool = 1; }, no_write_access, " security settings."},
        {[](World& x) { x.windows.files.hive(anna_hive)->access = Access::read_only; }, no_write_access,
         " security settings."},
    };
    for (const Fault& fault : faults) {
        World x;
        x.windows.add_profile("Anna");
        x.windows.add_profile("Ben");
        const auto hive = x.windows.files.hive(anna_hive);  // held, since some faults take the file away
        hive->subkeys.erase("Software");                    // so that the proof of the load must make it
        MainForm& window = x.enter();
        x.choose("Ben");
        x.click(window.c12);
        fault.cause(x);
        const std::string before = hive->dump();

        x.expecting(fault.title).choose("Anna");
        EXPECT_THAT(x.told(), testing::EndsWith(fault.end_of_text));
        EXPECT_EQ(x.screen.boxes.back().icon, toolkit::Icon::critical);
        EXPECT_TRUE(window.c12.ticked()) << "the form keeps the marks of the user before";
        EXPECT_EQ(window.StatusBar.panel_text(2), "Load Profile:Anna");
        EXPECT_TRUE(window.Combo_user.enabled());
        x.expecting(fault.title).apply();
        EXPECT_EQ(hive->dump(), before);
        x.windows.processes.failing_tool = 0;
        x.choose("Ben");
        EXPECT_EQ(window.StatusBar.panel_text(2), "Load Profile:Anna") << "what stood there then";
    }
}

TEST_F(Users, AToolThatCannotBeOpenedIsReportedAndOneThatIsGoneEndsTheProgram) {
    const std::string tool = "C:\\Program Files\\Brightlock Suite\\regg.exe";
    for (const bool gone : {false, true}) {
        World x;
        x.windows.add_profile("Anna");
        x.enter();
        gone ? (void)x.windows.files.remove(tool) : x.windows.files.fail(tool, path_access);
        EXPECT_EQ(x.expecting(gone ? "Brightlock Suite" : "File missing...").choose("Anna"), !gone);
    }
}

TEST_F(Users, AHiveLeftMountedIsUnmountedFirst) {
    anna["Software"].set("Company", "kept");
    w.windows.registry.mount("Anna", w.windows.files.hive(anna_hive));
    MainForm& window = w.expecting("Brightlock Suite").enter();
    w.click(window.mm21);
    w.choose("Anna");
    EXPECT_FALSE(window.c11.ticked()) << "the user was read";
    EXPECT_EQ(w.windows.registry.dump(HKEY_USERS, "Anna"), "(missing)");
}

TEST_F(Users, TheWindowStaysAliveWhileTheToolRuns) {
    MainForm& window = w.enter();
    w.windows.processes.polls_until_done = 3;
    bool seen = false;
    w.screen.meanwhile = [&] {
        EXPECT_FALSE(window.Combo_user.usable()) << "a second choice would start a second run";
        EXPECT_EQ(panel(), "Load Profile:Anna");
        EXPECT_EQ(window.mouse_pointer(), toolkit::MousePointer::hourglass);
        window.Timer1.tick();
        seen = window.cmd_set.usable();
    };
    w.choose("Anna");
    EXPECT_TRUE(seen);
    EXPECT_EQ(panel(), "");
}

TEST_F(Users, ADirectCallForTheLoggedOnUserWritesToTheRunningAccount) {
    w.enter().REG_Save32();
    EXPECT_THAT(w.windows.registry.dump(HKEY_CURRENT_USER), HasSubstr("NoClose = dword 0"));
}

TEST_F(Users, OfWindows9XIsOnlyWhoIsLoggedOn) {
    World old(versions::win98);
    old.windows.system.user = "Kiosk";
    MainForm& window = old.enter();
    EXPECT_THAT(window.Combo_user.items(), ElementsAre("Kiosk"));
    EXPECT_EQ(window.t810.text(), "<only available for Win NT/2000/XP-Systems>");
    EXPECT_FALSE(window.t810.enabled());
    old.expecting("Sorry - Changing Users only in Win2K, WinNT or WinXP-Systems...").choose("Kiosk");
    EXPECT_EQ(window.Combo_user.text(), "Kiosk");
    old.click(window.c13);
    old.apply();
    EXPECT_THAT(old.windows.registry.dump(HKEY_CURRENT_USER), HasSubstr("NoRun = dword 1"));
    EXPECT_TRUE(old.windows.processes.started.empty()) << "no tool is needed";
}

TEST_F(Users, TheSidDirectoryReadsTheProfileList) {
    auto& list = w.windows.registry.at(HKEY_LOCAL_MACHINE, profile_list_key);
    list["S-1-5-18"].set("ProfileImagePath", "C:\\WINDOWS\\system32\\config");
    list["S-1-5-21-1-2-3-500"].set("ProfileImagePath", "C:\\Documents and Settings\\Anna");
    list["S-1-5-21-1-2-3-501"].set("ProfileImagePath", "C:\\Documents and Settings\\");
    list["S-1-5-21-1-2-3-502"];
    w.enter();
    UserDirectory& users = w.program->users;
    EXPECT_THAT(users.GET_SIDS(), ElementsAre(SidProblem::not_read)) << "one entry has no path";
    EXPECT_EQ(*users.NameToSID("Anna"), "S-1-5-21-1-2-3-500");
    EXPECT_EQ(users.NameToSID("anna").error(), SidProblem::not_found);

    w.screen.act([&] { w.program->show<profile>(); });
    profile& bench = *w.program->loaded<profile>();
    for (int i = 0; i < 3; ++i)
        w.screen.expect_box("Brightlock Suite");
    w.screen.act([&] { bench.Command2.click(); });
    EXPECT_THAT(bench.List1.items(), ElementsAre("S-1-5-21-1-2-3-500", "Anna", "S-1-5-21-1-2-3-501", "",
                                                 "S-1-5-21-1-2-3-502", ""));
    w.screen.act([&] { bench.Command1.click(); });
    EXPECT_EQ(w.told(), "C:\\WINDOWS\\system32\\config");
}

}  // namespace
}  // namespace britlock
