#include "engine/applets.h"

#include "base/text.h"
#include "platform/numbers.h"
#include "ui/main.h"

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

void main::CPL_All() {
    cpl_count = applet_count;
    lv1.clear();
    for (int i = 1; i <= cpl_count; ++i) {
        cpl_file[i] = applets[i - 1].file;
        cpl_label[i] = program_.pick(applets[i - 1].label);
        lv1.add(cpl_label[i], "K" + std::to_string(i));
    }
}

void main::cmd21_Click() {
    for (int i = 1; i <= cpl_count; ++i)
        lv1.set_checked(i - 1, true);
}

void main::cmd22_Click() {
    for (int i = 1; i <= cpl_count; ++i)
        lv1.set_checked(i - 1, false);
}

bool main::is_xp() { return program_.reg.get_os_name().substr(3, 2) == "XP"; }

void main::read_applets(const Target& from) {
    cmd22_Click();
    const bool nt = program_.reg.is_nt_family();
    for (int j = 1; j <= cpl_count; ++j) {
        const bool hidden =
            nt ? text::upper(program_.reg.reg_read_string(from.root, from.prefix + key::dont_load,
                                                          cpl_file[j])) == "NO"
               : !program_.machine.files.read_profile(ini_section, cpl_file[j], "CONTROL.INI").empty();
        if (!hidden) continue;
        for (size_t row = 0; row < lv1.rows().size(); ++row) {
            if (lv1.rows()[row].text == cpl_label[j]) lv1.set_checked(row, true);
        }
    }
}

void main::write_applets(const Target& to) {
    REGISTRY_MOD& reg = program_.reg;
    const bool nt = reg.is_nt_family();
    const bool xp = is_xp();
    auto empty_key = [&](const char* path) {
        reg.reg_delete_key(to.root, to.prefix + path);
        reg.reg_create_key(to.root, to.prefix + path);
    };
    if (nt) empty_key(key::dont_load);
    if (xp) empty_key(key::disallow_cpl);

    int16_t applied_cpl_count = 0;
    auto write_one = [&](const std::string& file, bool hidden) {
        if (!nt) {
            using Entry = std::optional<std::string_view>;
            program_.machine.files.write_profile(ini_section, file, hidden ? Entry("no") : Entry(),
                                                 "control.ini");
        } else if (hidden) {
            (void)reg.reg_write_string(to.root, to.prefix + key::dont_load, file, "No");
            if (!xp) return;
            ++applied_cpl_count;
            (void)reg.reg_write_string(to.root, to.prefix + key::disallow_cpl, number_text(applied_cpl_count),
                                       file);
        } else if (!xp) {
            (void)reg.reg_write_string(to.root, to.prefix + key::dont_load, file, "");
        }
    };
    for (const auto& row : lv1.rows()) {
        for (int j = 1; j <= cpl_count; ++j) {
            if (cpl_label[j] == row.text) write_one(cpl_file[j], row.checked);
        }
    }
    // Windows XP hides by this list only in the classic Control Panel.
    const bool force_classic = applied_cpl_count != 0 && xp;
    (void)reg.reg_write_dword(to.root, to.prefix + key::explorer, "ForceClassicControlPanel",
                              force_classic ? "1" : "0");
}

}  // namespace britlock
