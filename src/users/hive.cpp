#include "base/text.h"
#include "ui/main.h"

namespace britlock {

using namespace text::literals;
using toolkit::Icon;
using toolkit::MousePointer;

namespace {

constexpr int status_panel = 2;

constexpr Notice logged_on_user{
    Icon::critical,
    {U"Dieser Benutzer nicht beschränkbar !"_ansi, "Sorry.."},
    {U"Für den angemeldeten Benutzer können aus Sicherheitsgründen keine Einschränkungen gesetzt werden. Bitte wählen Sie einen anderen Benutzer aus."_ansi,
     "You can not set restrictions for the user you are logged in. Please choose another one."}};

}  // namespace

/// Reads the chosen user into the controls, or writes the controls to the user. Where Windows has no hives
/// for users who are not logged on, the running account's registry is worked on at once.
void main::hive(int mode) {
    if (mode != hive_save && mode != hive_load) {
        program_.toolkit.message_box({.text = "Interner Fehler bei Sub:HIVE"});
        return;
    }
    if (!program_.reg.is_nt_family()) return mode == hive_save ? REG_Save32() : REG_Load32();

    const std::string logged_on = REGISTRY_MOD::clean_reg_string(program_.reg.get_user_name());
    if (!program_.uninstall_running && text::equal_ignoring_case(logged_on, Combo_user.text())) {
        return mode == hive_load ? mm22_Click() : program_.say(logged_on_user);
    }
    set_mouse_pointer(MousePointer::hourglass);
    Combo_user.set_enabled(false);  // while the tool runs, events are handled: no second choice may start
    const std::string remembered = StatusBar.panel_text(status_panel);
    if (with_mounted_hive(mode)) StatusBar.set_panel_text(status_panel, remembered);
    set_mouse_pointer(MousePointer::normal);
    Combo_user.set_enabled(true);
}

/// False where the hive could not be loaded; the status bar keeps its text then.
bool main::with_mounted_hive(int mode) {
    const std::string name = Combo_user.text();
    const std::string file = t810.text() + name + "\\NTUSER.DAT";
    const std::string loading = program_.pick({"Lade Profil:", "Load Profile:"}) + name;

    StatusBar.set_panel_text(status_panel, loading);
    program_.hiver.hive_tool(HIVER_MOD::unload, file, name);  // what a crashed run may have left
    StatusBar.set_panel_text(status_panel, loading);
    if (program_.hiver.hive_tool(HIVER_MOD::load, file, name) != HIVER_MOD::done) return false;
    mode == hive_save ? REG_Save32() : REG_Load32();
    program_.hiver.hive_tool(HIVER_MOD::unload, file, name);
    return true;
}

}  // namespace britlock
