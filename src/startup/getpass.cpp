#include "startup/getpass.h"

#include "base/product.h"
#include "base/text.h"
#include "startup/desktop_refresh.h"
#include "startup/is_admin.h"
#include "startup/password.h"
#include "startup/pictures.h"
#include "startup/setpass.h"

namespace britlock {

using namespace text::literals;
using toolkit::Icon;

namespace {

constexpr Notice how_to_uninstall{
    Icon::information,
    {"Info zum Deinstallieren", "How to uninstall ?"},
    {U"Zum Deinstallieren dieser Anwendung geben Sie bitte nachfolgend Ihr Kennwort ein und wählen anschließend im Menü 'Datei' den Punkt deinstallieren."_ansi,
     "To uninstall this program type in your password and select the menu File/Uninstall."}};

constexpr Notice files_missing{
    Icon::critical,
    {"Wichtige Dateien fehlen - Bitte neu installieren !", "Required files are missing. Run Setup again !"},
    {U"Eine oder mehrere wichtige Dateien, die für das korrekte Ausführen notwendig sind, fehlen auf Ihrer Festplatte. Wiederholen Sie bitte die Installation. (REGG.EXE)"_ansi,
     "Some files required by this program are missing. Please run Setup again. (REGG.EXE)"}};

constexpr Notice admin_needed{
    Icon::critical,
    {U"Admin-Rechte benötigt !"_ansi, "Admin privileges required !"},
    {U"Damit dieses Programm einwandfrei funktioniert, benötigen Sie Administratoren-Rechte. Bitte melden Sie sich erneut als Administrator am System an und starten dieses Programm erneut..."_ansi,
     "You need Administrator privileges/rights to run this program correctly.  Please login as admin and "
     "start this "
     "program again."}};

constexpr Notice no_password_yet{
    Icon::critical,
    {"Kennwort festlegen...", "Set a Password !"},
    {"Sie haben noch kein Kennwort angegeben. Bitte geben Sie nun ein nicht leicht zu erratendes Kennwort "
     "ein. Bitte "
     "notieren Sie das Kennwort an einem sicheren Ort !",
     "You haven't entered a password yet. Please enter now a secret password and keep it on a safe place."}};

constexpr Notice wrong_password{
    Icon::critical,
    {"Falsches Kennwort...", "Incorrect Password..."},
    {U"Das Kennwort ist nicht korrekt. Bitte beachten Sie auch die Groß- und Kleinschreibung."_ansi,
     "Sorry, the password is incorrect. Pls. note that the password is case-sensitive."}};

}  // namespace

getpass::getpass(Program& program) : ProgramForm(program, form_name) {
    set_client_size(4650, 1530);
    set_icon(&pictures::lock);
    Image1.set_drawing(&pictures::lock);
    cmd_ok.set_text("&OK");
    cmd_ok.is_default = true;
    cmd_ok.on_click = [this] { cmd_ok_Click(); };
    Command2.is_cancel = true;
    Command2.on_click = [this] { Command2_Click(); };
    txt_pw.set_max_length(20);
    lay_out({
        {Image1, nullptr, {180, 180, 600, 600}},
        {Label1, nullptr, {960, 180, 3510, 255}},
        {txt_pw, nullptr, {960, 480, 3510, 330}},
        {cmd_ok, nullptr, {1740, 1005, 1290, 375}},
        {Command2, nullptr, {3180, 1005, 1290, 375}},
    });
}

void getpass::Form_Load() {
    const std::string command_line = program_.machine.system.command_line();
    if (command_line == "/icon") {
        refresh_desktop(program_.reg, program_.machine.files);
        program_.toolkit.end_process();
    }
    if (command_line == "/uninstall") program_.say(how_to_uninstall);
    register_uninstall_command();
    if (!program_.reg.file_has_content(program_.machine.system.program_directory() + '\\' +
                                       product::hive_tool_file)) {
        program_.say(files_missing);
        program_.toolkit.end_process();
    }
    set_caption(program_.pick({"Kennwort eingeben", "Enter Password Please !"}));
    Label1.set_text(program_.pick({"Geben Sie das Kennwort ein:", "Enter your password:"}));
    Command2.set_text(program_.pick({"Abbrechen", "&Cancel"}));
    warn_without_rights();
    txt_pw.set_password_char('*');
    txt_pw.set_text("");
    txt_pw.set_enabled(true);
    if (!program_.reg.reg_read_string(HKEY_LOCAL_MACHINE, product::key, "UserPW").empty()) return;
    program_.say(no_password_yet);
    program_.toolkit.hide(*this);
    program_.show<setpass>();
    program_.unload<getpass>();
}

void getpass::register_uninstall_command() {
    machine::System& system = program_.machine.system;
    const std::string command =
        '"' + system.program_directory() + '\\' + system.program_stem() + ".exe\" /uninstall";
    // Where the key is missing, or the user may not write there, nothing is written and nothing said.
    (void)program_.reg.reg_write_string(HKEY_LOCAL_MACHINE, product::uninstall_key, "UninstallString",
                                        command);
}

void getpass::warn_without_rights() {
    if (program_.reg.is_nt_family() && !is_admin(program_.machine.system)) program_.say(admin_needed);
}

void getpass::cmd_ok_Click() {
    const std::string stored = program_.reg.reg_read_string(HKEY_LOCAL_MACHINE, product::key, "UserPW");
    if (encode_password(txt_pw.text(), password_key) != stored) {
        program_.say(wrong_password);
        txt_pw.set_text("");
        return;
    }
    program_.unload<getpass>();
    program_.forms.show(form::main);
}

void getpass::Command2_Click() { program_.toolkit.end_process(); }

void getpass::close_by_frame() { program_.unload<getpass>(); }

}  // namespace britlock
