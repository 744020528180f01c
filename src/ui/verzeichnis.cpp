#include "ui/verzeichnis.h"

#include "base/text.h"
#include "startup/pictures.h"
#include "ui/main_form.h"

namespace britlock {

using namespace text::literals;
using toolkit::Icon;

namespace {

constexpr Notice drive_not_there{
    Icon::critical,
    {"Fehler...", "Error..."},
    {U"Sorry, dieses Laufwerk ist im Moment nicht verfügbar."_ansi, "Drive is not available."}};

constexpr Notice no_shortcuts{
    Icon::critical,
    {"Konnte keine *.LNK Dateien finden !", "No lnk-files found!"},
    {U"In diesem Verzeichnis wurden keine Desktop-Icons (Verknüpfungen) gefunden. Bitte wählen Sie ein Verzeichnis, in dem Ihre Verknüfungs-Dateien (*.lnk) liegen."_ansi,
     "There are no link-files (*.lnk) in the directory you have choosen. Please select another directory."}};

}  // namespace

verzeichnis::verzeichnis(Program& program) : ProgramForm(program, form_name) {
    set_client_size(5250, 4350);
    set_icon(&pictures::desktop);
    Drive1.set_drive("C");  // the current one; what fires later is a change from it
    Drive1.on_change = [this] { Drive1_Change(); };
    Dir1.on_change = [this] { Dir1_Change(); };
    Command1.is_default = true;
    Command1.on_click = [this] { Command1_Click(); };
    Command2.is_cancel = true;
    Command2.on_click = [this] { Command2_Click(); };
    Command3.on_click = [this] { Command3_Click(); };
    lay_out({
        {Drive1, nullptr, {180, 180, 3330, 315}},
        {Dir1, nullptr, {180, 585, 3330, 2880}},
        {Label1, nullptr, {180, 3585, 4890, 585}},
        {Command1, nullptr, {3690, 180, 1380, 375}},
        {Command2, nullptr, {3690, 645, 1380, 375}},
        {Command3, nullptr, {3690, 1290, 1380, 375}},
    });
}

void verzeichnis::Form_Load() {
    set_caption(program_.pick({U"Verzeichnis auswählen"_ansi, "Select Directory"}));
    Drive1.set_spoken_name(program_.pick({"Laufwerk", "Drive"}));
    Dir1.set_spoken_name(program_.pick({"Ordner", "Folder"}));
    Command1.set_text("&OK");
    Command2.set_text(program_.pick({"&Abbrechen", "&Cancel"}));
    Command3.set_text(program_.pick({"&Vorschau", "&Preview"}));
    MainForm& owner = *program_.loaded<MainForm>();
    Dir1.set_path(program_.reg.is_nt_family() ? owner.t810.text() : program_.reg.get_windows_dir());
    if (!owner.t32.text().empty()) Dir1.set_path(owner.t32.text());  // one that is gone is run-time error 76
    Drive1.set_drive(Dir1.path());
    Label1.set_text(Dir1.path());
}

int verzeichnis::count_shortcuts() {
    std::vector<std::string> shortcuts;
    return program_.reg.find_files(Label1.text(), shortcuts, "*.lnk", 0, false);
}

void verzeichnis::Dir1_Change() {
    Label1.set_text(Dir1.path());
    Command3.set_enabled(count_shortcuts() > 0);
}

/// Another drive resets the folder to that drive's current one, also when it comes with the folder at the
/// start.
void verzeichnis::Drive1_Change() {
    try {
        Dir1.set_path(Drive1.drive());
    } catch (const RuntimeError&) {
        program_.say(drive_not_there);
    }
}

void verzeichnis::Command1_Click() {
    if (count_shortcuts() == 0) return program_.say(no_shortcuts);
    const std::string folder = Label1.text();
    MainForm& owner = *program_.loaded<MainForm>();
    owner.t32.set_text(folder);
    (void)program_.machine.processes.start("explorer.exe " + folder, machine::WindowStyle::minimized_focus);
    owner.c39.set_value(1);
    program_.unload<verzeichnis>();
}

/// Takes the tick away, whether it was there before or not.
void verzeichnis::Command2_Click() {
    program_.loaded<MainForm>()->c39.set_value(0);
    program_.unload<verzeichnis>();
}

void verzeichnis::Command3_Click() {
    const auto explorer =
        program_.machine.processes.start("Explorer.exe " + Label1.text(), machine::WindowStyle::normal_focus);
    if (explorer.error != machine::no_error) throw RuntimeError(explorer.error);
}

void verzeichnis::close_by_frame() { program_.unload<verzeichnis>(); }

}  // namespace britlock
