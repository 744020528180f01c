#include "ui/outcome_boxes.h"

#include "base/text.h"

namespace britlock {

using namespace text::literals;
using toolkit::Icon;
using Complaint = HIVER_MOD::Complaint;

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
    Complaint complaint;
    Twin title;
    Twin before;
    Twin after;
};

constexpr FileComplaint file_complaints[] = {
    {Complaint::file_missing,
     {"Datei/Pfad nicht gefunden...", "Could not find path/file..."},
     {"Die Datei ", "The file "},
     {U" konnte nicht gefunden werden. Bitte überprüfen Sie Ihre Pfade zu den Benutzerprofilen. Stellen Sie ebenfalls sicher, daß Sie mind. einmalig mit einem neuen Benutzer angemeldet waren."_ansi,
      " could not be loaded. Please check your profile-pathes and make sure that you logged in a new user "
      "once."}},
    {Complaint::file_in_use,
     {"Zugriff verweigert...", "File in use..."},
     {"Der Zugriff auf die Datei ", "Access to "},
     {" wurde verweigert. Diese Datei wird von einem anderen Prozess verwendet.",
      " was denied. The file is in use by another process or you don't have right to acess."}},
    {Complaint::path_missing,
     {"Pfad nicht gefunden...", "Path not found..."},
     {U"Der Pfad für die Datei "_ansi, "Could not find the path to "},
     {U" konnte nicht gefunden werden. Bitte überprüfen Sie die Einstellungen zu den Benutzerprofilen..."_ansi,
      ". Please check you settings (Profile Paths)."}},
    {Complaint::unknown_error,
     {"Unbekannter Fehler...", "Unknown Error..."},
     {"Unbekannter Dateifehler bei Datei & ", "Unexpected Error acessing & "},
     {"", ""}},
};

constexpr Notice cannot_write{
    Icon::critical,
    {U"Kann Einschränkung nicht setzen..."_ansi, "Could not save settings..."},
    {U"Ihre Änderungen können nicht für den Benutzer gesetzt werden. Stellen Sie sicher, daß nur Sie als Administrator an diesem (lokalen) System angemeldet sind ! Starten Sie den Computer evtl. neu, melden sich mit Administratoren-Rechten an und starten dieses Programm erneut."_ansi,
     "Your settings could not be saved. Please make sure that no other user than you (as admin) is logged in "
     "right now. "
     "Try to reboot the system and log in as a system administrator and start this program again."}};

constexpr Twin unreadable_title{"Kann (einige) Profile nicht laden", "Sorry, could not load every files.."};
constexpr Twin unreadable_text{
    U"Auf die nachfolgenden Benutzerprofile konnte nicht zugegriffen werden. Entweder sind die Dateien beschädigt oder existieren nicht, oder Sie besitzen nicht die nötigen Zugriffsrechte auf diese Dateien. Einschränkungen für diese Benutzer sind nur bedingt möglich.\r\n\r\nZugriffsprobleme bei folgenden Profilen:\r\n"_ansi,
    "Sorry, I could not load the profiles below. Please make sure that you are logged in as an Administrator "
    "and make "
    "also sure that you have all the rights the acess the files below..."};

constexpr Twin sid_problems[] = {
    {U"Der Registryeintrag konnte nicht geöffnet werden."_ansi, "Registry could not be opened."},
    {"Der Registryeintrag konnte nicht gelesen oder gefunden werden.",
     "Registry entry could not be read/found."},
    {"SID not found.", "SID not found."},
};

}  // namespace

void say(Program& program, Complaint complaint, const std::string& file) {
    if (complaint == Complaint::tool_missing) return program.say(tool_missing);
    if (complaint == Complaint::no_write_access) return program.say(no_write_access);
    for (const FileComplaint& row : file_complaints) {
        if (row.complaint != complaint) continue;
        program.toolkit.message_box({.text = program.pick(row.before) + file + program.pick(row.after),
                                     .title = program.pick(row.title),
                                     .icon = Icon::critical});
    }
}

void say(Program& program, SidProblem problem) {
    const Icon icon = problem == SidProblem::not_found ? Icon::critical : Icon::none;
    program.say({icon, {"", ""}, sid_problems[static_cast<int>(problem)]});
}

void say(Program& program, Engine::Written outcome) {
    if (outcome == Engine::Written::refused) program.say(cannot_write);
}

void say_unreadable(Program& program, const std::vector<std::string>& hive_files) {
    if (hive_files.empty()) return;
    std::string text = program.pick(unreadable_text);
    // The English text promises a list below it, and has none.
    if (program.reg.get_language() == german) {
        for (const std::string& file : hive_files)
            text += file + "\r\n";
    }
    program.toolkit.message_box(
        {.text = text, .title = program.pick(unreadable_title), .icon = Icon::critical});
}

}  // namespace britlock
