#include "base/text.h"
#include "engine/allowed_programs.h"
#include "engine/marking.h"
#include "ui/main_form.h"

/// What the buttons of the pages and the marking commands do.
namespace britlock {

using namespace text::literals;
using toolkit::Icon;

namespace {

constexpr Notice nothing_to_remove{
    Icon::none, {"", ""}, {U"Es gibt nichts mehr zu löschen."_ansi, "No more entries to delete."}};

constexpr Notice older_version_protected{
    Icon::critical,
    {"WICHTIGER HINWEIS !", "Can't remove..."},
    {U"Dieser Eintrag kennzeichnet dieses Programm (Brightlock) und kann daher aus Sicherheitsgründen nicht entfernt werden !"_ansi,
     "You can't remove this program, cause it is an older version of Brightlock"}};

constexpr Notice this_program_protected{
    Icon::critical,
    {"WICHTIGER HINWEIS !", "Can't remove..."},
    {U"Dieser Eintrag kennzeichnet die Version des Programmes (Brightlock) und kann daher aus Sicherheitsgründen nicht entfernt werden !"_ansi,
     "You can't remove the actual version of this program from your restriction-list..."}};

constexpr Notice suggestions_added{Icon::information,
                                   {U"Vorschläge Zensurliste"_ansi, "Some suggestions..."},
                                   {"Die nachfolgenden eingetragenen Programme in die Zensurliste sind "
                                    "Empfehlungen des Autors. Die Zensurliste wurde "
                                    "nicht automatisch aktiviert, nehmen Sie dies ggf. noch vor.",
                                    "Find some suggestions from the author in the list box below. The list "
                                    "was not activated automatically."}};

constexpr Notice folder_not_found{
    Icon::critical,
    {"Fehler", "Error"},
    {U"Gewünschtes Laufwerk/Pfad nicht gefunden."_ansi, "File/Path not found."}};

constexpr const char* scan_title = "ALLE *.EXE auflisten...";
constexpr const char* scan_prompt =
    U"Von welchem Laufwerk/Pfad sollen die *.EXE-Dateien übernommen werden ? (z.B. 'C:\\WINDOWS')\r\rACHTUNG: Es werden auch alle Unterverzeichnisse mit untersucht, wenn Sie z.B. 'C:\\' wählen, kann diese Aktion einige Minuten dauern..."_ansi;

constexpr Notice all_marked{Icon::information,
                            {"", ""},
                            {U"Alle Einschränkungen ausser der Zensur wurden aktiviert."_ansi,
                             "All restrictions exp. the restriction-list are activated..."}};

constexpr Notice suggestions_set{
    Icon::information,
    {U"Vorschläge..."_ansi, "Suggestions..."},
    {U"Vorschläge des Autors wurden gesetzt."_ansi, "Suggestions by the author are set..."}};

}  // namespace

// --- page 2: Control Panel

void MainForm::CPL_All() {
    lv1.clear();
    for (int i = 0; i < applet_count; ++i)
        lv1.add(program_.pick(applets[i].label), "K" + std::to_string(i + 1));
}

// --- page 3: desktop

/// Picks the bitmap, and puts it on the desktop of the person who runs the tool: the choice is seen at once.
/// The chosen user's registry changes at the next save. Every failure is passed over.
void MainForm::cm31_Click() {
    dialog = {
        .title = program_.pick({U"Festen Desktop Hintergrund auswählen"_ansi, "Select fixed Wallpaper"}),
        .filter = "*.BMP (Bitmap)|*.bmp",
        .start_folder = program_.reg.get_windows_dir()};
    const std::string file = program_.toolkit.ask_file(dialog);
    if (file.empty()) return;
    ignoring_errors([&] { t31.set_text(file); }, [&] { show_picture(); }, [&] { c37.set_value(1); },
                    [&] { program_.machine.system.set_wallpaper(t31.text()); });
}

// --- page 4: allowed programs

void MainForm::add_programs(const std::vector<std::string>& wanted) {
    for (const std::string& entry : missing_from(List1.items(), wanted))
        List1.add(entry);
}

void MainForm::show_count() { gesamtfiles.set_text("Total: " + std::to_string(List1.count())); }

void MainForm::c41_Click() {
    if (c41.ticked()) add_programs({this_program});
}

void MainForm::cm41_Click() {
    dialog = {.title = U"Anwendung auswählen"_ansi, .filter = "*.EXE (Programmdatei)|*.exe"};
    const std::string file = program_.toolkit.ask_file(dialog);
    if (file.empty()) return;
    add_programs({program_entry(file)});
    show_count();
}

void MainForm::cm42_Click() {
    if (List1.count() == 0) return program_.say(nothing_to_remove);
    if (List1.selected() < 0) {
        program_.toolkit.beep();
    } else {
        const Removal removal = may_remove(List1.item(List1.selected()));
        if (removal == Removal::older_version) return program_.say(older_version_protected);
        if (removal == Removal::this_version) return program_.say(this_program_protected);
        List1.remove(List1.selected());
    }
    show_count();
}

/// The count is not shown anew here.
void MainForm::cm43_Click() {
    add_programs(suggested_programs());
    program_.say(suggestions_added);
}

void MainForm::cm44_Click() {
    List1.clear();
    List1.add(this_program);
    show_count();
}

void MainForm::cm45_Click() {
    const std::string start = program_.toolkit.input_box(scan_title, scan_prompt);
    if (start.empty()) return;
    set_mouse_pointer(toolkit::MousePointer::hourglass);
    std::vector<std::string> list = List1.items();
    const size_t known = list.size();
    int error_number = machine::no_error;
    try {
        scan_for_programs(program_.folders, start, list);
    } catch (const RuntimeError& error) {
        error_number = error.number();
    }
    for (size_t i = known; i < list.size(); ++i)
        List1.add(list[i]);
    if (error_number == machine::no_error) show_count();
    set_mouse_pointer(toolkit::MousePointer::normal);
    if (error_number == machine::device_not_there) program_.say(folder_not_found);
}

// --- page 5: drives

/// A drive that is not there cannot be marked; a mark from earlier stays and is written with the others.
void MainForm::get_drives() {
    const uint32_t there = program_.engine.drives_there();
    for (int k = 0; k < drive_count; ++k) {
        if (there >> k & 1) drive_boxes[k].set_enabled(true);
    }
}

uint32_t MainForm::drives_to_choose() const {
    uint32_t mask = 0;
    for (int k = 0; k < drive_count; ++k)
        mask |= (drive_boxes[k].enabled() ? 1u : 0u) << k;
    return mask;
}

// --- marking

void MainForm::change(const std::function<void(RestrictionSet&)>& rule) {
    RestrictionSet set = marks();
    rule(set);
    show_boxes(set);
}

void MainForm::mm21_Click() {
    change([this](RestrictionSet& set) { mark_all(set, drives_to_choose()); });
    program_.say(all_marked);
}

void MainForm::mm24_Click() {
    change(mark_suggested);
    program_.say(suggestions_set);
}

}  // namespace britlock
