#include "base/text.h"
#include "ui/main.h"

namespace britlock {

using namespace text::literals;
using toolkit::Icon;

namespace {

constexpr Notice cannot_write{
    Icon::critical,
    {U"Kann Einschränkung nicht setzen..."_ansi, "Could not save settings..."},
    {U"Ihre Änderungen können nicht für den Benutzer gesetzt werden. Stellen Sie sicher, daß nur Sie als Administrator an diesem (lokalen) System angemeldet sind ! Starten Sie den Computer evtl. neu, melden sich mit Administratoren-Rechten an und starten dieses Programm erneut."_ansi,
     "Your settings could not be saved. Please make sure that no other user than you (as admin) is logged in "
     "right now. "
     "Try to reboot the system and log in as a system administrator and start this program again."}};

/// What the clearing pass resets, in its order; row 11 is reset by the probe before it. 162 stands twice. 161
/// is missing: its value is that of 31.
constexpr int cleared_first[] = {12, 13, 14, 15, 16, 162, 162, 17, 18, 19, 110, 21, 22, 23, 24,
                                 25, 26, 27, 28, 29, 210, 31,  32, 33, 34, 35,  36, 37, 38, 39};
constexpr int cleared_last[] = {91, 92, 93, 94, 95, 96, 97, 98, 99};

}  // namespace

main::Target main::target_of_writing() {
    if (!program_.reg.is_nt_family()) return {HKEY_CURRENT_USER, ""};
    // In this case only, capitals counting: nobody comes here for the logged-on user but the uninstall.
    if (Combo_user.text() == REGISTRY_MOD::clean_reg_string(program_.reg.get_user_name()))
        return {HKEY_CURRENT_USER, ""};
    return {HKEY_USERS, Combo_user.text() + '\\'};
}

/// Turns the state of the window into the user's registry: resets every restriction, then sets what is
/// ticked. Nothing is compared with the old state, and only the first write is looked at.
void main::REG_Save32() {
    const Target to = target_of_writing();
    make_regpaths(to.root, to.prefix);
    if (program_.reg.reg_write_dword(to.root, to.prefix + reg_key_path[11], reg_value_name[11], "0") !=
        machine::success) {
        return program_.say(cannot_write);
    }
    clear_rows(to);
    reset_command_line(to);
    write_applets(to);
    write_rows(to, rows::start_menu);
    write_rows(to, rows::internet_explorer);
    write_desktop(to);
    write_allowed_programs(to);
    write_drives(to);
    write_boot_options();
    write_rows(to, rows::system_and_network);
    write_own_values(to);
    write_rows(to, rows::shell);
    write_command_line(to);
    write_rows(to, rows::printers);
}

void main::clear_rows(const Target& to) {
    auto clear = [&](int i, const char* number = "0") {
        (void)program_.reg.reg_write_dword(to.root, to.prefix + reg_key_path[i], reg_value_name[i], number);
    };
    for (const int i : cleared_first)
        clear(i);
    (void)program_.reg.reg_write_dword(to.root, to.prefix + key::explorer, "RestrictRun", "0");
    (void)program_.reg.reg_write_dword(to.root, to.prefix + key::explorer, "NoDrives", "0");
    for (const int i : rows::system_and_network)
        clear(i);
    clear(90, "Yes");  // a number, 0, until the text replaces it
    for (const int i : cleared_last)
        clear(i);
}

void main::reset_command_line(const Target& to) {
    if (!program_.reg.is_nt_family()) {
        program_.reg.reg_create_key(to.root, to.prefix + key::win_old_app);
        (void)program_.reg.reg_write_dword(to.root, to.prefix + key::win_old_app, "Disabled", "0");
        return;
    }
    for (const char* level : {"Software", R"(Software\Policies)", R"(Software\Policies\Microsoft)",
                              R"(Software\Policies\Microsoft\Windows)", key::command_line}) {
        program_.reg.reg_create_key(to.root, to.prefix + level);
    }
    (void)program_.reg.reg_write_dword(to.root, to.prefix + key::command_line, "DisableCMD", "0");
}

void main::write_rows(const Target& to, std::span<const int> rows) {
    for (const int i : rows) {
        if (!box_of(i).ticked()) continue;
        (void)program_.reg.reg_write_dword(to.root, to.prefix + reg_key_path[i], reg_value_name[i], "1");
    }
}

void main::write_desktop(const Target& to) {
    REGISTRY_MOD& reg = program_.reg;
    write_rows(to, std::array{31, 32, 33, 34, 35, 36, 37});
    if (c37.ticked()) (void)reg.reg_write_string(to.root, to.prefix + key::desktop, "Wallpaper", t31.text());
    write_rows(to, std::array{38, 39});
    if (!t32.text().empty()) {
        (void)reg.reg_write_string(to.root, to.prefix + reg_key_path[39], "FixedLNKUrl", t32.text());
    }
    if (c39.ticked()) {
        const std::string command = program_.machine.system.program_directory() + "\\britlock.exe /icon";
        (void)reg.reg_write_string(to.root, to.prefix + key::run, "System", command);
    } else {
        // Aims at a key, and the value of this name stays: only FixedLNK makes the run at logon do nothing.
        reg.reg_delete_key(to.root, to.prefix + key::run + "\\System");
    }
}

/// On every family and for every user: these two lie in a file of the machine.
void main::write_boot_options() {
    make_boot_file_writable();
    auto write = [&](const char* name, const toolkit::CheckBox& box) {
        using Entry = std::optional<std::string_view>;
        program_.machine.files.write_profile("Options", name, box.ticked() ? Entry("0") : Entry(), boot_file);
    };
    write("Autoscan", c61);
    write("Bootkeys", c62);
}

void main::write_own_values(const Target& to) {
    REGISTRY_MOD& reg = program_.reg;
    auto write = [&](int i, const std::string& number) {
        (void)reg.reg_write_dword(to.root, to.prefix + reg_key_path[i], reg_value_name[i], number);
    };
    write(80, "1");
    // As numbers, and in the user's own branch: a company's name becomes 0, and the machine's registration is
    // not touched.
    write(81, t81.text());
    write(82, t82.text());
    (void)reg.reg_write_string(to.root, to.prefix + reg_key_path[90], reg_value_name[90],
                               c90.ticked() ? "No" : "Yes");
}

void main::write_command_line(const Target& to) {
    if (!c96.ticked()) return;
    const bool nt = program_.reg.is_nt_family();
    const std::string path = to.prefix + (nt ? key::command_line : key::win_old_app);
    (void)program_.reg.reg_write_dword(to.root, path, nt ? "DisableCMD" : "Disabled", "1");
}

}  // namespace britlock
