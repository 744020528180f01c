#include "engine/applets.h"

#include "base/text.h"
#include "engine/engine.h"
#include "engine/keys.h"
#include "platform/numbers.h"

namespace britlock {

using namespace text::literals;

const Applet applets[applet_count] = {
    {"APPWIZ.CPL", {"Software", "Add/Remove Software"}},
    {"DESK.CPL", {"Anzeige", "Display"}},
    {"INETCPL.CPL", {"Internetoptionen", "Internet Options"}},
    {"INTL.CPL", {U"Ländereinstellungen"_ansi, "Regional Settings"}},
    {"JOY.CPL", {"Gamecontroller", "Game Controllers"}},
    {"MAIN.CPL", {"Maus,Tastatur,Schrift,Drucker", "Mouse,Keyboard,Fonts,Printers"}},
    {"MMSYS.CPL", {"Multimedia", "Multimedia"}},
    {"MODEM.CPL", {"Modems", "Modems"}},
    {"NETCPL.CPL", {"Netzwerk", "Network"}},
    {"PASSWORD.CPL", {U"Kennwörter"_ansi, "Passwords"}},
    {"POWERCFG.CPL", {"Energieverwaltung", "Power Management"}},
    {"UPS.CPL", {"USV", "UPS"}},
    {"STICPL.CPL", {"Scanner und Kameras", "Scanner and Cameras"}},
    {"SYSDM.CPL", {"System", "System"}},
    {"ACCESS.CPL", {"Eingabehilfen", "Accessibility Options"}},
    {"TELEPHON.CPL", {"Telefonie", "Telephony"}},
    {"ODBCCP32.CPL", {"ODBC Data Sources", "ODBC Data Sources"}},
    {"FINDFAST.CPL", {"Indexerstellung", "Find Fast"}},
    {"TWEAKUI.CPL", {"Tweak UI", "Tweak UI"}},
    {"TIMEDATE.CPL", {"Datum/Uhrzeit", "Date/Time"}},
    {"PREFSCPL.CPL", {"RealPlayer", "RealPlayer"}},
    {"MLCFG32.CPL", {"Mail", "Mail"}},
    {"HDWWIZ.CPL", {"Hardware", "Hardware"}},
    {"SND.CPL", {"Sound", "Sounds"}},
    {"PORTS.CPL", {U"Anschlüsse (NT)"_ansi, "Ports (NT)"}},
    {"CONSOLE.CPL", {"Konsole (NT)", "Console (NT)"}},
    {"NCPA.CPL", {"Netzwerk (NT/W2K/XP)", "Network (NT/W2K/XP)"}},
    {"DEVAPPS.CPL",
     {U"Bandgeräte, PCMCIA, SCSI-Adapter (NT)"_ansi, "PCMCIA, SCSI-Adapters, Tape Devices (NT)"}},
    {"SRVMGR.CPL", {U"Dienste, Geräte, Server (NT)"_ansi, "Devices, Services, Server (NT)"}},
    {"NUSRMGR.CPL", {"Benutzerkonten", "User Accounts"}},
    {U"Drucker und Faxgeräte"_ansi,
     {U"Drucker und Faxgeräte (2000/XP)"_ansi, "Printers and Faxes (2000/XP)"}},
    {"Geplante Tasks", {"Geplante Tasks (2000/XP)", "Scheduled Tasks (2000/XP)"}},
    {"Ordneroptionen", {"Ordneroptionen (2000/XP)", "Folder Options (2000/XP)"}},
    {"Scanner und Kameras", {"Scanner und Kameras (2000/XP)", "Scanners and Cameras (2000/XP)"}},
    {"Schriftarten", {"Schriftarten (2000/XP)", "Fonts (2000/XP)"}},
    {"Sprachein-/ausgabe", {"Sprachein-/ausgabe (2000/XP)", "Speech"}},
    {U"Taskleiste und Startmenü"_ansi,
     {U"Taskleiste und Startmenü (2000/XP)"_ansi, "Taskbar and Start Menu (2000/XP)"}},
    {"Verwaltung", {"Verwaltung (2000/XP)", "Administrative Tools"}},
    {"Netzwerkverbindungen", {"Netzwerkverbindungen (2000/XP)", "Network Connections (2000/XP)"}},
};

namespace {

constexpr const char* ini_section = "don't load";

}  // namespace

void Engine::read_applets(const Target& from, RestrictionSet& set) {
    const bool in_ini = from.family.applets == AppletStore::control_ini;
    for (int i = 0; i < applet_count; ++i) {
        const char* file = applets[i].file;
        set.hidden_applets[i] =
            in_ini ? !machine_.files.read_profile(ini_section, file, "CONTROL.INI").empty()
                   : text::upper(reg_.reg_read_string(from.root, from.prefix + key::dont_load, file)) == "NO";
    }
}

void Engine::write_applets(const Target& to, const RestrictionSet& set) {
    using Entry = std::optional<std::string_view>;
    const bool in_ini = to.family.applets == AppletStore::control_ini;
    const bool xp = to.family.applets == AppletStore::dont_load_and_disallow;
    auto empty_key = [&](const char* path) {
        reg_.reg_delete_key(to.root, to.prefix + path);
        reg_.reg_create_key(to.root, to.prefix + path);
    };
    if (!in_ini) empty_key(key::dont_load);
    if (xp) empty_key(key::disallow_cpl);

    int applied_cpl_count = 0;
    for (int i = 0; i < applet_count; ++i) {
        const char* file = applets[i].file;
        const bool hidden = set.hidden_applets[i];
        if (in_ini) {
            machine_.files.write_profile(ini_section, file, hidden ? Entry("no") : Entry(), "control.ini");
        } else if (hidden || !xp) {
            (void)reg_.reg_write_string(to.root, to.prefix + key::dont_load, file, hidden ? "No" : "");
        }
        if (xp && hidden) {
            const std::string name = number_text(++applied_cpl_count);
            (void)reg_.reg_write_string(to.root, to.prefix + key::disallow_cpl, name, file);
        }
    }
    // Windows XP hides by this list only in the classic Control Panel.
    (void)reg_.reg_write_dword(to.root, to.prefix + key::explorer, "ForceClassicControlPanel",
                               applied_cpl_count != 0 ? "1" : "0");
}

}  // namespace britlock
