#include "program/world.h"

namespace {

const std::string profiles = "C:\\Documents and Settings\\";
const std::string anna_hive = profiles + "Anna\\NTUSER.DAT";
const std::string tool = "C:\\Program Files\\Brightlock Suite\\regg.exe";

struct Users : Test, WithAnna {
    std::string commands() {
        std::string out;
        for (const auto& process : windows.processes.started)
            out += process.command_line + "\n";
        return out;
    }
    std::string panel() { return window().StatusBar.panel_text(2); }
};

TEST_F(Users, AreTheFoldersWithoutThoseOfNobody) {
    for (const char* folder :
         {"Ben.DOMAIN", "All Users.WINNT", "Default User", "LocalService", "NetworkService", "all users"})
        windows.add_profile(folder);
    windows.files.add_folder(profiles + "Carl");
    windows.files.add_file(profiles + "Dora\\NTUSER.DAT", "");
    windows.files.add_file(profiles + "Emil.txt", "no folder");
    windows.files.fail(anna_hive, permission_denied);  // logged on: counts as fine
    MainForm& form = expecting("Sorry, could not load every files..").enter();
    EXPECT_THAT(form.Combo_user.items(), ElementsAre("all users", "Anna", "Ben.DOMAIN", "Carl", "Dora"));
    EXPECT_THAT(told(), EndsWith("the files below...")) << "without the list";
    EXPECT_FALSE(windows.files.exists(profiles + "Dora\\NTUSER.DAT"));
    language = german;
    expecting("Kann (einige) Profile nicht laden").enter();
    EXPECT_THAT(told(), HasSubstr(profiles + "Carl\\NTUSER.DAT\n"));

    // Or where the administrator says: no backslash is added to that path.
    windows.registry.at(HKEY_LOCAL_MACHINE, product::key).set("ProfileMainPath", "C:\\Server\\Prof");
    windows.files.add_hive("C:\\Server\\Profile1\\NTUSER.DAT");
    windows.files.add_hive("C:\\Server\\Other\\NTUSER.DAT");
    expecting("Kann (einige) Profile nicht laden").enter();
    EXPECT_THAT(window().Combo_user.items(), ElementsAre("Profile1"));
    EXPECT_EQ(window().t810.text(), "C:\\Server\\Prof");
}

TEST_F(Users, TheRoadOfOneTickedBox) {
    MainForm& form = window();
    anna()["Software"].set("Company", "kept");
    windows.processes.started.clear();
    windows.processes.polls_until_done = 3;
    bool alive = false;
    screen.meanwhile = [&] {  // the window stays alive while the tool runs
        EXPECT_FALSE(form.Combo_user.usable()) << "a second choice would start a second run";
        EXPECT_EQ(panel(), "Load Profile:Anna");
        EXPECT_EQ(form.mouse_pointer(), toolkit::MousePointer::hourglass);
        form.Timer1.tick();
        alive = form.cmd_set.usable();
    };
    choose("Anna");
    EXPECT_TRUE(alive);
    click(form.c11);
    EXPECT_EQ(dump(key::explorer), "(missing)") << "nothing reaches the registry before Apply";
    apply();
    EXPECT_THAT(dump(), HasSubstr("Policies\\Explorer : NoClose = dword 1"));
    EXPECT_THAT(dump(), HasSubstr("Software : Company = \"kept\""));
    const std::string unload = '"' + tool + "\" unload HKU\\Anna\n";
    const std::string once = unload + '"' + tool + "\" load \"" + anna_hive + "\" HKU\\Anna\n" + unload;
    EXPECT_EQ(commands(), once + once);
    EXPECT_EQ(windows.processes.started[0].style, WindowStyle::hidden);
    EXPECT_EQ(panel(), "");
    EXPECT_EQ(form.mouse_pointer(), toolkit::MousePointer::normal);

    windows.registry.mount("Anna", windows.files.hive(anna_hive));  // left by another run
    click(form.c11);  // a mark that is not applied is gone when the same user is chosen again
    choose("Anna");
    EXPECT_EQ(ticked(), " c11");
    EXPECT_EQ(windows.registry.dump(HKEY_USERS, "Anna"), "(missing)");
}

TEST_F(Users, TheLoggedOnUserCannotBeRestricted) {
    windows.system.user = "anna";  // capitals do not count
    enter();
    windows.processes.started.clear();
    expecting("Brightlock Suite").click(window().mm21);
    choose("Anna");
    EXPECT_EQ(ticked(), "") << "choosing the logged-on user clears the marks";
    expecting("Sorry..").apply();
    EXPECT_EQ(commands(), "");
    enter().REG_Save32();  // the direct call writes to the running account
    EXPECT_THAT(windows.registry.dump(HKEY_CURRENT_USER), HasSubstr("NoClose = dword 0"));
}

/// Every row is tried on reading and on writing: its box comes, the hive is what it was, the marks stay.
TEST_F(Users, EveryFaultOfAHiveHasItsBox) {
    const auto unusable = [](FileError error) {
        return [error](World& x) { x.windows.files.fail(anna_hive, error); };
    };
    const char *const missing = "Could not find path/file...", *const in_use = "File in use...";
    const char* const no_write_access = "Problems while writing to registry...";
    // clang-format off
    const std::tuple<std::function<void(World&)>, const char*, const char*> faults[] = {
        {[](World& x) { (void)x.windows.files.remove(anna_hive); }, missing, " logged in a new user once."},
        {[](World& x) { x.windows.files.add_file(anna_hive, ""); }, missing, " logged in a new user once."},
        {unusable(permission_denied), in_use, "you don't have right to acess."}, {unusable(path_access), in_use, "you don't have right to acess."},
        {unusable(no_such_path), "Path not found...", ". Please check you settings (Profile Paths)."},
        {unusable(device_error), "Unknown Error...", "Unexpected Error acessing & C:\\Documents and Settings\\Anna\\NTUSER.DAT"},
        {[](World& x) { x.windows.processes.failing_tool = 1; }, no_write_access, " security settings."},
        {[](World& x) { x.windows.files.hive(anna_hive)->access = Access::read_only; }, no_write_access, " security settings."},
        {[](World& x) { x.windows.files.fail(tool, path_access); }, "File missing...", ""}};
    // clang-format on
    for (const auto& [cause, title, end_of_text] : faults) {
        WithAnna x;
        x.windows.add_profile("Ben");
        const auto hive = x.windows.files.hive(anna_hive);  // held, since some faults take the file away
        hive->subkeys.erase("Software");                    // so that the proof of the load must make it
        MainForm& form = x.enter();
        x.choose("Ben");
        x.click(form.c12);
        cause(x);
        const std::string before = hive->dump();

        x.expecting(title).choose("Anna");
        EXPECT_THAT(x.told(), EndsWith(end_of_text));
        EXPECT_EQ(x.screen.boxes.back().icon, toolkit::Icon::critical);
        EXPECT_EQ(x.ticked(), " c12") << "the form keeps the marks of the user before";
        EXPECT_EQ(form.StatusBar.panel_text(2), "Load Profile:Anna") << "and the panel its text";
        EXPECT_TRUE(form.Combo_user.enabled());
        x.expecting(title).apply();
        EXPECT_EQ(hive->dump(), before);
    }
    (void)windows.files.remove(tool);
    EXPECT_FALSE(expecting("Brightlock Suite").choose("Anna")) << "without the tool the program ends";
}

TEST_F(Users, OfWindows9XIsOnlyWhoIsLoggedOn) {
    World old(versions::win98);
    old.windows.system.user = "Kiosk";
    MainForm& form = old.enter();
    EXPECT_THAT(form.Combo_user.items(), ElementsAre("Kiosk"));
    EXPECT_FALSE(form.t810.enabled());
    old.expecting("Sorry - Changing Users only in Win2K, WinNT or WinXP-Systems...").choose("Kiosk");
    EXPECT_EQ(form.Combo_user.text(), "Kiosk");
    old.click(form.c13);
    old.apply();
    EXPECT_THAT(old.windows.registry.dump(HKEY_CURRENT_USER), HasSubstr("NoRun = dword 1"));
    EXPECT_TRUE(old.windows.processes.started.empty()) << "no tool is needed";
}

}  // namespace
