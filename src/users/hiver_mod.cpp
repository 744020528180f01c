#include "users/hiver_mod.h"

#include "base/runtime_error.h"
#include "base/text.h"
#include "startup/program.h"

namespace britlock {

using namespace text::literals;
using toolkit::Icon;

namespace {

constexpr Notice tool_missing{
    Icon::critical,
    {"Datei fehlt...", "File missing..."},
    {U"Eine Datei, welche zum Setzen der Einschränkungen notwendig ist fehlt. Bitte wiederholen Sie die Installation."_ansi,
     "A file needed to set your restrictions is missing. Please run setup again."}};

constexpr Notice no_write_access{
    Icon::critical,
    {"Kein Schreibzugriff...", "Problems while writing to registry..."},
    {U"Konnte Profil laden aber nicht in Registrierung schreiben. Bitte Sicherheitseinstellungen in Windows prüfen."_ansi,
     "File was loaded sucessfully but write-access was denied by system. Please check your windows security "
     "settings."}};

/// What is said of a hive file that cannot be used: the path stands between `before` and `after`.
struct FileComplaint {
    HIVER_MOD::FileStatus status;
    Twin title;
    Twin before;
    Twin after;
};

constexpr FileComplaint file_complaints[] = {
    {HIVER_MOD::missing,
     {"Datei/Pfad nicht gefunden...", "Could not find path/file..."},
     {"Die Datei ", "The file "},
     {U" konnte nicht gefunden werden. Bitte überprüfen Sie Ihre Pfade zu den Benutzerprofilen. Stellen Sie ebenfalls sicher, daß Sie mind. einmalig mit einem neuen Benutzer angemeldet waren."_ansi,
      " could not be loaded. Please check your profile-pathes and make sure that you logged in a new user "
      "once."}},
    {HIVER_MOD::in_use,
     {"Zugriff verweigert...", "File in use..."},
     {"Der Zugriff auf die Datei ", "Access to "},
     {" wurde verweigert. Diese Datei wird von einem anderen Prozess verwendet.",
      " was denied. The file is in use by another process or you don't have right to acess."}},
    {HIVER_MOD::path_missing,
     {"Pfad nicht gefunden...", "Path not found..."},
     {U"Der Pfad für die Datei "_ansi, "Could not find the path to "},
     {U" konnte nicht gefunden werden. Bitte überprüfen Sie die Einstellungen zu den Benutzerprofilen..."_ansi,
      ". Please check you settings (Profile Paths)."}},
    {HIVER_MOD::other,
     {"Unbekannter Fehler...", "Unknown Error..."},
     {"Unbekannter Dateifehler bei Datei & ", "Unexpected Error acessing & "},
     {"", ""}},
};

}  // namespace

std::string HIVER_MOD::tool_path() const {
    return program_.machine.system.program_directory() + "\\regg.exe";
}

HIVER_MOD::FileStatus HIVER_MOD::hive_file_status(std::string_view path) {
    const auto file = program_.machine.files.open_binary(path);
    if (file.error == machine::no_error && file.length > 0) return usable;
    const bool empty = file.error == machine::no_error;
    switch (empty ? program_.machine.files.remove(path) : file.error) {
        case machine::no_error:
            return missing;
        case machine::permission_denied:
        case machine::path_access:
            return in_use;
        case machine::no_such_path:
            return path_missing;
        default:
            return other;
    }
}

/// True where the file cannot be used. The status is asked anew for every box, as each is a test of its own.
bool HIVER_MOD::complain_about(std::string_view file) {
    if (hive_file_status(file) == usable) return false;
    for (const FileComplaint& c : file_complaints) {
        if (hive_file_status(file) != c.status) continue;
        program_.toolkit.message_box(
            {.text = std::string(program_.pick(c.before)).append(file) + program_.pick(c.after),
             .title = program_.pick(c.title),
             .icon = Icon::critical});
    }
    return true;
}

HIVER_MOD::Result HIVER_MOD::hive_tool(int mode, std::string_view file, std::string_view name) {
    const std::string hive_key =
        "HKU\\" + std::string(name);  // bare: a name with a blank breaks the command line
    if (mode == unload) {
        run_and_wait('"' + tool_path() + "\" unload " + hive_key, machine::WindowStyle::hidden, true);
        return done;
    }
    if (mode != load) return failed;

    if (hive_file_status(tool_path()) != usable) {
        program_.say(tool_missing);
        return failed;
    }
    if (!program_.uninstall_running && complain_about(file)) return failed;
    run_and_wait('"' + tool_path() + "\" load \"" + std::string(file) + "\" " + hive_key,
                 machine::WindowStyle::hidden, true);
    // The exit code says nothing here. Every hive holds this key: that it can be made or opened proves the
    // load.
    const int disposition = program_.reg.reg_create_key(HKEY_USERS, std::string(name) + "\\Software");
    if (program_.uninstall_running) return failed;  // so that the uninstall never writes into the hive
    if (disposition == 1 || disposition == 2) return done;
    program_.say(no_write_access);
    return failed;
}

uint32_t HIVER_MOD::run_and_wait(std::string_view command_line, machine::WindowStyle style, bool keep_alive) {
    const auto process = program_.machine.processes.start(command_line, style);
    if (process.error != machine::no_error) throw RuntimeError(process.error);
    uint32_t code = 0;
    do {
        if (keep_alive) program_.toolkit.process_events();
        code = program_.machine.processes.exit_code(process.id);
    } while (code == machine::still_active);
    return code;
}

}  // namespace britlock
