#include "base/text.h"
#include "engine/marking.h"
#include "ui/main_form.h"
#include "ui/outcome_boxes.h"

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

toolkit::CheckBox& MainForm::box(int number) {
    return dynamic_cast<toolkit::CheckBox&>(*find("c" + std::to_string(number)));
}

RestrictionSet MainForm::marks() {
    RestrictionSet set;
    for (const Restriction& row : Get_CR()) {
        if (row.page != 0) set.boxes.set(row.box, box(row.box).value());
    }
    for (int i = 0; i < applet_count; ++i)
        set.hidden_applets[i] = lv1.rows()[i].checked;
    for (int k = 0; k < drive_count; ++k)
        set.drives[k] = drive_boxes[k].value();
    set.programs = List1.items();
    set.wallpaper = t31.text();
    set.icon_folder = t32.text();
    set.machine = {.organisation = t81.text(), .owner = t82.text(), .profiles_path = t810.text()};
    return set;
}

/// A click that a box fires on the way is overtaken by what comes after it: box 16 ticks 31, and 41 adds to a
/// list that is filled anew.
void MainForm::show(const RestrictionSet& set) {
    show_boxes(set);
    t31.set_text(set.wallpaper);
    t32.set_text(set.icon_folder);
    List1.clear();
    for (const std::string& program : set.programs)
        List1.add(program);
    t81.set_text(set.machine.organisation);
    t82.set_text(set.machine.owner);
    t810.set_text(set.machine.profiles_path);
}

/// The order of the catalogue matters.
void MainForm::show_boxes(const RestrictionSet& set) {
    for (int i = 0; i < applet_count; ++i)
        lv1.set_checked(i, set.hidden_applets[i]);
    for (const Restriction& row : Get_CR()) {
        if (row.page != 0) box(row.box).set_value(set.boxes[row.box]);
    }
    for (int k = 0; k < drive_count; ++k)
        drive_boxes[k].set_value(set.drives[k]);
}

void MainForm::show_picture() {
    if (auto bytes = program_.engine.picture(t31.text())) pic31.load(std::move(*bytes));
}

void MainForm::REG_Load32() {
    show(program_.engine.read(target_of_reading(program_.reg, Combo_user.text()), marks().machine));
    show_picture();
}

void MainForm::REG_Save32() {
    say(program_, program_.engine.write(target_of_writing(program_.reg, Combo_user.text()), marks()));
}

/// Reads the chosen user into the controls, or writes the controls to the user. Where Windows has no hives
/// for users who are not logged on, the running account's registry is worked on at once.
void MainForm::hive(int mode) {
    if (mode != hive_save && mode != hive_load) {
        program_.toolkit.message_box({.text = "Interner Fehler bei Sub:HIVE"});
        return;
    }
    const auto work = [&] { mode == hive_save ? REG_Save32() : REG_Load32(); };
    if (!program_.reg.is_nt_family()) return work();

    const std::string name = Combo_user.text();
    const std::string logged_on = REGISTRY_MOD::clean_reg_string(program_.reg.get_user_name());
    if (!program_.reg.uninstall_running && text::equal_ignoring_case(logged_on, name))
        return mode == hive_load ? change(unmark_all) : program_.say(logged_on_user);

    set_mouse_pointer(MousePointer::hourglass);
    Combo_user.set_enabled(false);  // while the tool runs, events are handled: no second choice may start
    const std::string remembered = StatusBar.panel_text(status_panel);
    const auto announce = [&] {
        StatusBar.set_panel_text(status_panel, program_.pick({"Lade Profil:", "Load Profile:"}) + name);
    };
    announce();
    const std::string file = hive_file_of(t810.text(), name);
    const auto outcome = program_.hiver.visit({name, file, announce}, work);
    for (const HIVER_MOD::Complaint complaint : outcome.complaints)
        say(program_, complaint, file);
    set_mouse_pointer(MousePointer::normal);
    Combo_user.set_enabled(true);
    // After a failure the panel keeps its text.
    if (outcome.result == HIVER_MOD::done) StatusBar.set_panel_text(status_panel, remembered);
}

}  // namespace britlock
