// The whole program on the running Windows, with the real hive tool; what it stored is read by other calls
// than its own.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "base/product.h"
#include "engine/keys.h"
#include "machine/subject.h"
#include "machine/windows/windows_machine.h"
#include "platform/product_setup.h"
#include "program/person.h"
#include "startup/desktop_refresh.h"
#include "startup/is_admin.h"
#include "windows/scene.h"

namespace britlock {
namespace {

constexpr const char* system_policies = "Software\\Policies\\Microsoft\\Windows\\System";
constexpr const char* dos_policies = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Policies\\WinOldApp";

/// What one family stores where. The value of an applet that is shown is empty, or not there.
struct Family {
    const char* setting;  ///< how it was set up, in $BRITLOCK_FAMILY
    const char* name;
    bool nt;
    const char* hidden_applet;
    const char* shown_applet;
    const char* disallowed;
    const char* command_line_key;
    const char* command_line_value;
};
constexpr Family families[] = {
    {"nt40", "WinNT", true, "No", "", "no value", system_policies, "DisableCMD"},
    {"win2k", "Win2K", true, "No", "", "no value", system_policies, "DisableCMD"},
    {"winxp", "WinXP", true, "No", "no value", "APPWIZ.CPL", system_policies, "DisableCMD"},
    {"win95", "Win95", false, "no value", "no value", "no value", dos_policies, "Disabled"},
    {"win98", "Win98SE", false, "no value", "no value", "no value", dos_policies, "Disabled"},
    {"winme", "WinME", false, "no value", "no value", "no value", dos_policies, "Disabled"},
};

const Family& family_set_up() {
    const char* setting = std::getenv("BRITLOCK_FAMILY");
    const auto* at = std::find_if(std::begin(families), std::end(families), [&](const Family& family) {
        return setting && std::strcmp(setting, family.setting) == 0;
    });
    if (at == std::end(families)) throw std::runtime_error("BRITLOCK_FAMILY names no family");
    return *at;
}

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

struct OnWindows : Test {
    OnWindows() {
        make_anna("C:\\Profiles");
        for (const char* key : {key::explorer, key::dont_load, dos_policies})
            remove_key(Root::current_user, key);
        (void)windows.machine().files.remove(windows.machine().system.windows_directory() + "\\control.ini");
        EXPECT_EQ(windows.machine().files.write("C:\\MSDOS.SYS", "[Options]\r\nBootMulti=1\r\n"), no_error);
        prepare_installation(windows.machine().registry);
        // Where Windows has them there may be people whose hives are none of ours.
        REGISTRY_MOD reg(windows.machine(), english);
        (void)reg.reg_write_string(Root::local_machine, product::key, "ProfileMainPath", "C:\\Profiles\\");
    }
    ~OnWindows() override { person.program.reset(); }

    Machine machine() {
        const Machine its = windows.machine();
        return {its.registry, its.files, processes, its.system, its.internet};
    }
    /// The first start sets the password, the next ones ask for it.
    void enter() {
        person.program.reset();
        const std::string password = stored(Root::local_machine, product::key, "UserPW");
        if (password == "no value") {
            person.screen.expect_box("Set a Password !");
            person.start(machine());
            person.screen.expect_box("Password...");
            person.set_password("secret");
        } else {
            person.start(machine());
            person.give_password("secret");
        }
        if (family.nt) person.choose("Anna");
    }

    const Family& family = family_set_up();
    WindowsMachine windows;
    WatchedProcesses processes{windows.machine().processes};
    Person person;
};

TEST_F(OnWindows, EachFamilyStoresItsOwnForm) {
    const Root root = family.nt ? Root::users : Root::current_user;
    const std::string prefix = family.nt ? "Anna\\" : "";
    std::string seen;
    const auto look = [&] {
        const auto add = [&](const std::string& key, const char* value) {
            seen += std::string(value) + ": " + stored(root, prefix + key, value) + "\n";
        };
        seen.clear();
        add(key::explorer, "NoClose");
        add(key::explorer, "NoRun");
        add(key::explorer, "NoDrives");
        add(key::explorer, "ForceClassicControlPanel");
        add(key::dont_load, "APPWIZ.CPL");
        add(key::dont_load, "DESK.CPL");
        add(key::disallow_cpl, " 1");
        add(family.command_line_key, family.command_line_value);
    };
    enter();
    EXPECT_EQ(person.program->reg.get_os_name(), family.name);
    MainForm& window = person.window();
    for (auto* box : {&window.c11, &window.c96, &window.drive_boxes[3]}) {
        EXPECT_FALSE(box->ticked()) << box->name();
        person.click(*box);
    }
    person.click_applet(1);
    processes.before_unload = look;
    processes.commands.clear();
    EXPECT_TRUE(person.apply());
    if (!family.nt) look();
    const bool xp = std::string(family.name) == "WinXP";
    EXPECT_EQ(seen, std::string("NoClose: dword 1\nNoRun: dword 0\nNoDrives: dword 8\n") +
                        "ForceClassicControlPanel: dword " + (xp ? "1" : "0") +
                        "\nAPPWIZ.CPL: " + family.hidden_applet + "\nDESK.CPL: " + family.shown_applet +
                        "\n 1: " + family.disallowed + "\n" + family.command_line_value + ": dword 1\n");
    std::string ini;
    (void)windows.machine().files.read(windows.machine().system.windows_directory() + "\\control.ini", ini);
    EXPECT_EQ(ini.find("APPWIZ.CPL=no") != std::string::npos, !family.nt) << ini;
    EXPECT_EQ(processes.commands, family.nt
                                      ? "\"C:\\Program Files\\Brightlock Suite\\regg.exe\" unload HKU\\Anna\n"
                                        "\"C:\\Program Files\\Brightlock Suite\\regg.exe\" load "
                                        "\"C:\\Profiles\\Anna\\NTUSER.DAT\" HKU\\Anna\n"
                                        "\"C:\\Program Files\\Brightlock Suite\\regg.exe\" unload HKU\\Anna\n"
                                      : "");
    EXPECT_EQ(stored(Root::users, "Anna\\Software", ""), "no key") << "nothing stays mounted";
    if (family.nt) return;
    enter();
    for (auto* box : {&person.window().c11, &person.window().c96, &person.window().drive_boxes[3]})
        EXPECT_TRUE(box->ticked()) << box->name();
    EXPECT_TRUE(person.window().lv1.rows()[0].checked);
}

TEST_F(OnWindows, TheLoggedOnUserIsRefusedOnNtAlone) {
    const auto user = windows.machine().system.user_name();
    ASSERT_TRUE(user);
    EXPECT_EQ(windows.machine().system.token_groups().has_value(), true);
    EXPECT_TRUE(is_admin(windows.machine().system));
    enter();
    processes.commands.clear();
    person.window().Combo_user.set_text(*user);
    if (family.nt) person.screen.expect_box("Sorry..");
    EXPECT_TRUE(person.apply());
    EXPECT_EQ(processes.commands, "");
}

/// The folder is deleted before it is copied: what a user may not delete stays, and is brought to the
/// desktop.
TEST_F(OnWindows, TheRunAtLogonBringsTheIconsThatItMayNotDelete) {
    Files& files = windows.machine().files;
    REGISTRY_MOD reg(windows.machine(), english);
    const std::string shell_folders = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
    for (const std::string& key : {std::string(key::explorer), shell_folders})
        reg.reg_create_key(Root::current_user, key);
    (void)reg.reg_write_dword(Root::current_user, key::explorer, "FixedLNK", "1");
    (void)reg.reg_write_string(Root::current_user, key::explorer, "FixedLNKUrl", "C:\\Fixed");
    (void)reg.reg_write_string(Root::current_user, shell_folders, "Desktop", "C:\\Desk");
    for (const char* folder : {"C:\\Fixed", "C:\\Fixed\\Games", "C:\\Desk"})
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
}  // namespace britlock
