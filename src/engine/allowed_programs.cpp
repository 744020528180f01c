#include <algorithm>
#include <limits>
#include <unordered_set>

#include "base/text.h"
#include "platform/numbers.h"
#include "ui/main.h"

namespace britlock {

using namespace text::literals;
using toolkit::Icon;

namespace {

/// Capitals count.
constexpr const char* this_program = "BRITLOCK.EXE";
constexpr const char* older_version = "BRITOL.EXE";

constexpr const char* suggested_programs[] = {"OUTLOOK.EXE",  "EXPLORER.EXE", "EXCEL.EXE",
                                              "MSACCESS.EXE", "WINWORD.EXE",  "IEXPLORE.EXE",
                                              "CALC.EXE",     "CORELDRW.EXE", "ONLINE.EXE"};

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

std::string file_title(const std::string& path) { return path.substr(path.find_last_of("\\/:") + 1); }

}  // namespace

void main::read_allowed_programs(const Target& from) {
    List1.clear();
    List1.add(this_program);
    const std::string list_key = from.prefix + key::restrict_run;
    const int32_t count =
        to_long(leading_number(program_.reg.reg_read_string(from.root, list_key, "Gesamt")));
    if (count > std::numeric_limits<int16_t>::max()) throw RuntimeError(6);
    for (int i = 0; i < count; ++i) {
        const std::string entry = program_.reg.reg_read_string(from.root, list_key, number_text(i));
        if (entry != this_program) List1.add(entry);
    }
    const std::string restrict_run =
        program_.reg.reg_read_value(from.root, from.prefix + key::explorer, "RestrictRun");
    c41.set_value(ticks(restrict_run) ? 1 : 0);
}

void main::write_allowed_programs(const Target& to) {
    REGISTRY_MOD& reg = program_.reg;
    const std::string list_key = to.prefix + key::restrict_run;
    reg.reg_delete_key(to.root, list_key);
    if (List1.count() > 0) {
        reg.reg_create_key(to.root, list_key);
        for (int i = 0; i < List1.count(); ++i) {
            (void)reg.reg_write_string(to.root, list_key, number_text(i), List1.item(i));
        }
        (void)reg.reg_write_dword(to.root, list_key, "Gesamt", number_text(List1.count()));
    }
    if (c41.ticked()) (void)reg.reg_write_dword(to.root, to.prefix + key::explorer, "RestrictRun", "1");
}

void main::append_if_missing(std::string_view entry) {
    const auto& items = List1.items();
    if (std::find(items.begin(), items.end(), entry) == items.end()) List1.add(entry);
}

void main::show_count() { gesamtfiles.set_text("Total: " + std::to_string(List1.count())); }

/// Whoever may run only what is listed must be able to run this program: it brings the icons at logon.
void main::c41_Click() {
    if (c41.ticked()) append_if_missing(this_program);
}

void main::cm41_Click() {
    dialog = {.title = U"Anwendung auswählen"_ansi, .filter = "*.EXE (Programmdatei)|*.exe"};
    const std::string file = program_.toolkit.ask_file(dialog);
    if (file.empty()) return;
    append_if_missing(text::upper(file_title(file)));
    show_count();
}

void main::cm42_Click() {
    if (List1.count() == 0) return program_.say(nothing_to_remove);
    if (List1.selected() < 0) {
        program_.toolkit.beep();
    } else {
        const std::string entry = List1.item(List1.selected());
        if (entry == older_version) return program_.say(older_version_protected);
        if (entry == this_program) return program_.say(this_program_protected);
        List1.remove(List1.selected());
    }
    show_count();
}

/// The count is not shown anew here.
void main::cm43_Click() {
    for (const char* entry : suggested_programs)
        append_if_missing(entry);
    program_.say(suggestions_added);
}

void main::cm44_Click() {
    List1.clear();
    List1.add(this_program);
    show_count();
}

void main::cm45_Click() {
    const std::string start = program_.toolkit.input_box(scan_title, scan_prompt);
    if (start.empty()) return;
    set_mouse_pointer(toolkit::MousePointer::hourglass);
    int error_number = machine::no_error;
    try {
        scan_for_programs(start);
    } catch (const RuntimeError& error) {  // ends the scan; what was found stays
        error_number = error.number();
    }
    set_mouse_pointer(toolkit::MousePointer::normal);
    if (error_number == machine::device_not_there) program_.say(folder_not_found);
}

/// Breadth first: list0 is the queue of folders, and grows while it is walked.
void main::scan_for_programs(const std::string& start) {
    std::unordered_set<std::string> known;
    for (const std::string& entry : List1.items())
        known.insert(text::upper(entry));

    list0.clear();
    auto take_in_files = [&] {
        for (const std::string& file : File1.files()) {
            const std::string name = text::upper(file);
            if (name.ends_with("EXE") && known.insert(name).second)
                List1.add(name);  // with or without a dot before it
        }
    };
    auto queue_folders = [&] {
        const std::string here = Dir1.path() + (Dir1.path().ends_with('\\') ? "" : "\\");
        for (const std::string& name : Dir1.folders())
            list0.add(here + name);
    };
    Dir1.set_path(start);
    Dir1.reread();
    File1.set_path(start);
    take_in_files();
    queue_folders();
    for (int k = 0; k < list0.count(); ++k) {
        Dir1.set_path(list0.item(k));
        File1.set_path(list0.item(k));
        queue_folders();
        take_in_files();
    }
    show_count();
}

}  // namespace britlock
