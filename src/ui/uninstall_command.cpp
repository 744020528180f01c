#include "base/text.h"
#include "engine/marking.h"
#include "ui/main_form.h"
#include "uninstall/uninstall.h"

namespace britlock {

using namespace text::literals;
using toolkit::Icon;

namespace {

constexpr Notice begin{
    Icon::question,
    {"DE-Installieren ?", "Uninstall ?"},
    {"Je nach Umfang der Benutzerkonten (W2000/XP) kann die Deinstallation einige Sekunden dauern. Wollen "
     "Sie "
     "nun mit der DE-Installation beginnen ?",
     "Uninstall will take a while, if you have a lot of user profiles. Start Uninstall now ?"}};

constexpr Notice lift_by_hand_first{
    Icon::exclamation,
    {"Achtung Benutzer-Profile - bitte UNBEDINGT beachten !", "Attention User Profiles - Read carefully !"},
    {U"Auf Ihrem Rechner sind Benutzerprofile installiert.\r\rIn diesem Fall müssen Sie bei der De-Installation sehr sorgfältig vorgehen, so sollten Sie bevor Sie das Programm DE-installieren, folgende Sicherheitshinweise beachten:\r\rHaben Sie für verschiedene Benutzer verschiedene Einschränkungen gewählt, so müssen Sie diese alle für jeden Benutzer einzeln wieder aufheben. Sie müssen dabei mit dem Namen des jeweiligen Benutzers angemeldet sein ! Bei mehreren Benutzer müssen Sie sich mitjedem einzelnen Benutzernamen einmal einloggen und das Programm starten und die Einschränkungen aufheben. Wiederholen Sie dies für jeden Benutzer. Erst danach sollte das Programm deinstalliert werden. Mit der Deinstallation nun fortfahren ?"_ansi,
     "There are user profiles on your PC.\r\rIn this case you have to notice some advices:\r\rIf you have "
     "set "
     "several restrictions for more than one user, you have to check all restricted users. To uninstall all "
     "restrictions you have to:Log off and log in with the restricted user. Start this program. Unmark all "
     "restrictions. Apply these settings. Do this for every restricted user ! Continue ?"}};

constexpr Notice setup_not_found{
    Icon::critical,
    {"Uninstall nicht gefunden", "Uninstall not found"},
    {U"Der De-Installationspfad konnte nicht gefunden werden. Versuchen Sie die Anwendung über die Systemsteuerung/Software zu deinstallieren."_ansi,
     "Uninstall Path was not found. Try to deinstall this program using control panel/software."}};

constexpr Twin cannot_lift_title{U"Kann Einschränkung nicht setzen..."_ansi, "Could not save settings..."};
constexpr Twin cannot_lift_before{U"Ihre Änderungen können nicht für den Benutzer "_ansi, ""};
constexpr Twin cannot_lift_after{
    U" gesetzt werden. Stellen Sie sicher, daß nur Sie als Administrator an diesem (lokalen) System angemeldet sind ! Starten Sie den Computer evtl. neu, melden sich mit Administratoren-Rechten an und starten dieses Programm erneut."_ansi,
    "Your settings could not be saved. Please make sure that no other user than you (as admin) is logged in "
    "right now. Try to reboot the system and log in as a system administrator and start this program again."};

}  // namespace

/// On Windows NT the restrictions stay in the users' hives, which are left mounted: the administrator lifts
/// them first, user by user. Every failure is passed over, and after the last question the process ends in
/// any case.
void MainForm::mm132_Click() {
    if (!program_.confirm(begin)) return;
    bool& running = program_.reg.uninstall_running;
    running = true;
    if (program_.reg.is_nt_family()) {
        for (const std::string& user : Combo_user.items()) {
            ignoring_errors([&] { Combo_user.set_text(user); }, [&] { change(unmark_all); },
                            [&] { hive(hive_save); });
        }
    } else {
        running = program_.confirm(lift_by_hand_first);
        if (!running) return;
        ignoring_errors([&] { lift_restrictions(); });
    }
    ignoring_errors([&] { remove_autostart(program_.reg); },
                    [&] { remove_former_hive(program_.machine, program_.reg); });
    const std::string setup = setup_program(program_.reg);
    if (program_.reg.file_has_content(setup)) {
        (void)program_.machine.processes.start('"' + setup + '"', machine::WindowStyle::minimized_focus);
    } else {
        program_.say(setup_not_found);
    }
    program_.toolkit.end_process();
}

void MainForm::lift_restrictions() {
    const std::string user = program_.reg.get_user_name();
    if (Deinstall_Registry(program_.reg, user) == Engine::Written::done) return;
    // The name bears its closing NUL, at which a box cuts its text: the German sentence ends there.
    const std::string name = program_.reg.get_language() == german ? user : "";
    program_.toolkit.message_box(
        {.text = program_.pick(cannot_lift_before) + name + program_.pick(cannot_lift_after),
         .title = program_.pick(cannot_lift_title),
         .icon = Icon::critical});
}

}  // namespace britlock
