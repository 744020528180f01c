// The whole program on the running Windows, with the real hive tool; what it stored is read by other calls
// than its own.

#include "engine/keys.h"
#include "machine/subject.h"
#include "machine/windows/windows_machine.h"
#include "platform/product_setup.h"
#include "program/person.h"
#include "startup/desktop_refresh.h"
#include "startup/is_admin.h"
#include "startup/password.h"
#include "windows/scene.h"

namespace {

constexpr const char* system_policies = "Software\\Policies\\Microsoft\\Windows\\System";
constexpr const char* dos_policies = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Policies\\WinOldApp";

/// What one family stores where. The value of an applet that is shown is empty, or not there.
struct Family {
    const char *name, *hidden_applet, *shown_applet, *disallowed, *command_line_key, *command_line_value;
    bool nt = command_line_key == system_policies, xp = disallowed != std::string("no value");
};
/// By how it was set up.
const std::map<std::string, Family> families = {
    {"nt40", {"WinNT", "No", "", "no value", system_policies, "DisableCMD"}},
    {"win2k", {"Win2K", "No", "", "no value", system_policies, "DisableCMD"}},
    {"winxp", {"WinXP", "No", "no value", "APPWIZ.CPL", system_policies, "DisableCMD"}},
    {"win95", {"Win95", "no value", "no value", "no value", dos_policies, "Disabled"}},
    {"win98", {"Win98SE", "no value", "no value", "no value", dos_policies, "Disabled"}},
    {"winme", {"WinME", "no value", "no value", "no value", dos_policies, "Disabled"}},
};

/// Looks at the user's registry at the last moment at which it is mounted.
class WatchedProcesses : public Processes {
  public:
    explicit WatchedProcesses(Processes& target) : target_(target) {}
    std::function<void()> before_unload;
    std::string commands;

    Started start(std::string_view command_line, WindowStyle style) override {
        commands += std::string(command_line) + "\n";
        if (before_unload && command_line.find(" unload ") != std::string_view::npos) before_unload();
        return target_.start(command_line, style);
    }
    uint32_t exit_code(uint32_t id) override { return target_.exit_code(id); }
    void open_address(std::string_view address) override { target_.open_address(address); }

  private:
    Processes& target_;
};

struct OnWindows : Test, Person {
    OnWindows() {
        make_anna("C:\\Profiles");
        for (const char* key : {key::explorer, key::dont_load, dos_policies})
            remove_key(Root::current_user, key);
        (void)files.remove(control_ini);
        EXPECT_EQ(files.write("C:\\MSDOS.SYS", "[Options]\r\nBootMulti=1\r\n"), no_error);
        prepare_installation(windows.machine().registry);
        // Where Windows has them there may be people whose hives are none of ours.
        for (const auto& [name, text] :
             {std::pair<const char*, std::string>{"ProfileMainPath", "C:\\Profiles\\"},
              {"UserPW", encode_password("secret", password_key)}})
            (void)reg.reg_write_string(Root::local_machine, product::key, name, text);
    }
    ~OnWindows() override { program.reset(); }

    void enter() {
        const Machine its = windows.machine();
        program.reset();
        start({its.registry, its.files, processes, its.system, its.internet});
        give_password("secret");
        if (family.nt) choose("Anna");
        processes.commands.clear();
    }
    /// What stands in the registry now, a line each.
    std::string values() const {
        const auto [root, prefix] =
            family.nt ? std::pair{Root::users, "Anna\\"} : std::pair{Root::current_user, ""};
        std::string out;
        // clang-format off
        for (const auto& [key, value] :
             {std::pair{key::explorer, "NoClose"}, {key::explorer, "NoRun"}, {key::explorer, "NoDrives"},
              {key::explorer, "ForceClassicControlPanel"}, {key::dont_load, "APPWIZ.CPL"}, {key::dont_load, "DESK.CPL"},
              {key::disallow_cpl, " 1"}, {family.command_line_key, family.command_line_value}})
            out += std::string(value) + ": " + stored(root, std::string(prefix) + key, value) + "\n";
        // clang-format on
        return out;
    }

    const Family& family = families.at(std::getenv("BRITLOCK_FAMILY"));
    WindowsMachine windows;
    Files& files = windows.machine().files;
    REGISTRY_MOD reg{windows.machine(), english};
    const std::string control_ini = windows.machine().system.windows_directory() + "\\control.ini";
    WatchedProcesses processes{windows.machine().processes};
};

TEST_F(OnWindows, EachFamilyStoresItsOwnForm) {
    enter();
    EXPECT_EQ(program->reg.get_os_name(), family.name);
    for (auto* box : {&window().c11, &window().c96, &window().drive_boxes[3]})
        click(*box);
    click_applet(1);
    EXPECT_EQ(ticked(), " c11 c96 D: APPWIZ.CPL");
    std::string seen;
    processes.before_unload = [&] { seen = values(); };
    EXPECT_TRUE(apply());
    if (!family.nt) seen = values();
    EXPECT_EQ(seen, std::string("NoClose: dword 1\nNoRun: dword 0\nNoDrives: dword 8\n") +
                        "ForceClassicControlPanel: dword " + (family.xp ? "1" : "0") +
                        "\nAPPWIZ.CPL: " + family.hidden_applet + "\nDESK.CPL: " + family.shown_applet +
                        "\n 1: " + family.disallowed + "\n" + family.command_line_value + ": dword 1\n");
    EXPECT_EQ(content(files, control_ini).find("APPWIZ.CPL=no") != std::string::npos, !family.nt);
    const std::string tool = hive_tool;
    EXPECT_EQ(processes.commands, !family.nt ? ""
                                             : tool + "unload HKU\\Anna\n" + tool +
                                                   "load \"C:\\Profiles\\Anna\\NTUSER.DAT\" HKU\\Anna\n" +
                                                   tool + "unload HKU\\Anna\n");
    EXPECT_EQ(stored(Root::users, "Anna\\Software", ""), "no key") << "nothing stays mounted";
    if (family.nt) return;
    enter();
    EXPECT_EQ(ticked(), " c11 c96 D: APPWIZ.CPL");
}

TEST_F(OnWindows, TheLoggedOnUserIsRefusedOnNtAlone) {
    EXPECT_TRUE(windows.machine().system.token_groups());
    EXPECT_TRUE(is_admin(windows.machine().system));
    enter();
    window().Combo_user.set_text(windows.machine().system.user_name().value());
    if (family.nt) expecting("Sorry..");
    EXPECT_TRUE(apply());
    EXPECT_EQ(processes.commands, "");
}

/// The folder is deleted before it is copied: what a user may not delete stays, and is brought to the
/// desktop.
TEST_F(OnWindows, TheRunAtLogonBringsTheIconsThatItMayNotDelete) {
    const std::string shell_folders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
    for (const std::string& key : {std::string(key::explorer), shell_folders})
        reg.reg_create_key(Root::current_user, key);
    (void)reg.reg_write_dword(Root::current_user, key::explorer, "FixedLNK", "1");
    (void)reg.reg_write_string(Root::current_user, key::explorer, "FixedLNKUrl", "C:\\Fixed");
    (void)reg.reg_write_string(Root::current_user, shell_folders, "Desktop", "C:\\Desk");
    for (const char* folder : {"C:\\Fixed\\Games", "C:\\Desk"})
        make_folder(folder);
    ASSERT_EQ(files.write("C:\\Fixed\\Games\\two.lnk", "two"), no_error);
    ASSERT_EQ(files.write("C:\\Desk\\kept.lnk", "kept"), no_error);
    {
        const HeldFile held("C:\\Fixed\\Games\\two.lnk", HeldFile::Against::deleting);
        refresh_desktop(reg, files);
    }
    EXPECT_EQ(content(files, "C:\\Desk\\Games\\two.lnk") + content(files, "C:\\Desk\\kept.lnk"), "twokept");

    refresh_desktop(reg, files);
    EXPECT_EQ(files.attributes("C:\\Fixed"), no_attributes) << "who may delete the source has lost it";
    (void)reg.reg_write_dword(Root::current_user, key::explorer, "FixedLNK", "0");
}

}  // namespace
