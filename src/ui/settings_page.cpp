#include "base/product.h"
#include "base/text.h"
#include "ui/main_form.h"

/// Page 9: Windows' own tools, and the folder in which user profiles are looked for.
namespace britlock {

using namespace text::literals;
using toolkit::Answer;
using toolkit::Buttons;
using toolkit::Icon;

namespace {

struct SystemTool {
    Twin item;
    const char* command;
};

constexpr SystemTool system_tools[] = {
    {{U"Prüfen - Bildschirmschoner"_ansi, "Check - Screensaver"}, "control desk.cpl,,1"},
    {{U"Prüfen - Grafikeinstellungen"_ansi, "Check - Display Settings"}, "control desk.cpl,,3"},
    {{U"Prüfen - Hintergrund Desktop"_ansi, "Check - Display Background"}, "control desk.cpl,,0"},
    {{U"Prüfen - System (Eigenschaften)"_ansi, "Check - System (Properties)"}, "control sysdm.cpl,,0"},
    {{"System - Explorer starten", "Check - Run Exlorer"}, "explorer.exe"},
    {{"System - Systemkonfiguration", "Check - System Configuration"}, "msconfig.exe"},
    {{U"System - Scandisk für Windows"_ansi, "Check - Run Scandisk"}, "scandskw.exe"},
    {{U"System - Überprüfung der Registry"_ansi, "Check - Run Scan Regesitry"}, "scanregw.exe"},
    {{U"System - Datenträgerbereinigung"_ansi, "Check - Run Disk Cleanup"}, "cleanmgr.exe"},
    {{"System - Registrierungseditor", "Check - Run Registry Editor"}, "regedit.exe"},
};

constexpr Notice tool_not_installed{
    Icon::critical,
    {"", "Error..."},
    {"Das gesuchte Windows-Tool ist auf Ihrem Rechner leider nicht installiert.",
     "Sorry, the requested Win Tool was not found/installed."}};

constexpr Notice change_profiles_path{
    Icon::critical,
    {"ACHTUNG !!!!", "Attention !!!!"},
    {U"Ändern Sie diese Angaben nur, wenn Benutzerprofile von einem Server bezogen werden und nicht lokal vorliegen !\r\nWollen Sie diese Einstellung wirklich ändern ?"_ansi,
     "Change these settings only, if you are sure, your profiles coming from a server, not local.\r\n"
     "Really sure to change this settings (maybe dangerous) ?"}};

/// Asked around the path that stands in the field.
constexpr Twin store_path_title{"Sicher ?", "Sure ?"};
constexpr Twin store_path_before{"Soll ", "Use directory "};
constexpr Twin store_path_after{
    U" als neuer Pfad für die Benutzerprofile festgelegt werden ? Bitte beachten: Bei einem falschen Pfad funktioniert das Programm nicht mehr richtig !"_ansi,
    "for user profiles ? Attention: If you enter a wrong path/directory the program may not work correctly "
    "! "};

constexpr Notice given_up{Icon::critical,
                          {"Info", "Info"},
                          {"Abbruch...Bitte Programm neu starten!", "Abbruch...Bitte Programm neu starten!"}};

constexpr Notice path_stored{
    Icon::information,
    {"Programm bitte gleich neu starten!", "Program terminated..."},
    {"Das Programm wird nun beendet und muss neu gestartet werden. Ein Windows Neustart hingegen ist nicht "
     "erforderlich.",
     "The program will now be terminated. Please start it again. A reboot of windows is not necessary."}};

}  // namespace

void MainForm::fill_syslist(int language) {
    for (const SystemTool& tool : system_tools)
        syslist.add(pick(tool.item, language));
}

/// The tool runs by itself: nobody waits for it.
void MainForm::syslist_Click() {
    const char* const command = system_tools[syslist.selected()].command;
    const auto tool = program_.machine.processes.start(command, machine::WindowStyle::minimized_focus);
    if (tool.error != machine::no_error) program_.say(tool_not_installed);
}

/// Whatever is answered here, the field has been entered: leaving it asks again, and the process ends.
void MainForm::t810_GotFocus() {
    if (!program_.confirm(change_profiles_path)) program_.toolkit.set_focus(&syslist);
}

void MainForm::t810_LostFocus() {
    const Answer answer = program_.toolkit.message_box(
        {.text = program_.pick(store_path_before) + t810.text() + program_.pick(store_path_after),
         .title = program_.pick(store_path_title),
         .icon = Icon::question,
         .buttons = Buttons::yes_no,
         .default_answer = Answer::no});
    if (answer == Answer::yes) {
        // Not checked in any way, and a failure is not noticed: the next start shows what came of it.
        (void)program_.reg.reg_write_string(HKEY_LOCAL_MACHINE, product::key, "ProfileMainPath", t810.text());
    }
    program_.say(answer == Answer::yes ? path_stored : given_up);
    program_.toolkit.end_process();
}

}  // namespace britlock
