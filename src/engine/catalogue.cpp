#include "engine/catalogue.h"

#include <algorithm>

#include "base/product.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "engine/keys.h"

namespace britlock {

using namespace text::literals;

namespace {

constexpr const char* in_the_users_root = "";

constexpr Twin no_caption{"", ""};

constexpr StoredText wallpaper{key::desktop, "Wallpaper", &RestrictionSet::wallpaper,
                               StoredText::When::ticked};
constexpr StoredText icon_folder{key::explorer, "FixedLNKUrl", &RestrictionSet::icon_folder,
                                 StoredText::When::not_empty};

// clang-format off
constexpr Restriction all[] = {
    // row, box, page, step, roles, captions, value, key, a text beside it
    // Start menu
    // The first is not cleared: the probe has written it.
    {11, 11, 1, Step::start_menu, plain | marked | at_start, {"Kein Beenden", "Disable ShutDown"},
     "NoClose", key::explorer},
    {12, 12, 1, Step::start_menu, usual | at_start, {"Kein Abmelden", "Disable LogOff"},
     "NoLogOff", key::explorer},
    {13, 13, 1, Step::start_menu, usual | at_start, {U"Kein Ausführen"_ansi, "Disable Run"},
     "NoRun", key::explorer},
    {14, 14, 1, Step::start_menu, usual | at_start, {"Kein Suchen", "Disable Find"},
     "NoFind", key::explorer},
    {15, 15, 1, Step::start_menu, usual, {"Keine Hilfe", "Disable Help"}, "NoHelp", key::explorer},
    {16, 16, 1, Step::start_menu, usual | suggested | at_start, {"Keine Systemsteuerung", "Disable Settings"},
     "NoSetFolders", key::explorer},
    // Further values of box 16; on reading the last has the last word.
    {161, 16, 0, Step::start_menu, plain, no_caption, "NoSetTaskbar", key::explorer},
    {162, 16, 0, Step::start_menu, plain | cleared | cleared_twice, no_caption, "NoControlPanel", key::explorer},
    {17, 17, 1, Step::start_menu, usual | suggested | at_start, {"Keine Dokumente", "Disable Documents"},
     "NoRecentDocsMenu", key::explorer},
    {18, 18, 1, Step::start_menu, usual | suggested | at_start, {"Keine Favoriten", "Disable Favorites"},
     "NoFavoritesMenu", key::explorer},
    {19, 19, 1, Step::start_menu, usual | at_start, {"Keine gemeinsamen PRG", "Disable Common Groups"},
     "NoCommonGroups", key::explorer},
    {110, 110, 1, Step::start_menu, usual | suggested | at_start, {U"Kein Ändern Startmenü"_ansi, "Disable Startmenu Settings"},
     "NoChangeStartMenu", key::explorer},

    // Internet Explorer
    {21, 21, 7, Step::internet_explorer, usual | at_start, {"Keinen Download aus IE zulassen", "Disable Downloads in IE Explorer"},
     "NoSelectDownloadDir", key::internet_explorer},
    {22, 22, 7, Step::internet_explorer, usual | at_start, {"Keinen Rechtsklick im Browserfenster", "No Context-Menu in IE Explorer"},
     "NoBrowserContextMenu", key::internet_explorer},
    {23, 23, 7, Step::internet_explorer, usual | suggested | at_start, {"Keine Internet-Einstellungen (Optionen)", "No Internet Explorer-Settings"},
     "NoBrowserOptions", key::internet_explorer},
    {24, 24, 7, Step::internet_explorer, usual | at_start, {U"Keinen Quelltext anzeigen (Menü/Kontextmenü)"_ansi, "No View Source"},
     "NoViewSource", key::internet_explorer},
    {25, 25, 7, Step::internet_explorer, usual | at_start, {"Keine Favoriten anzeigen / Favoriten sperren", "Disable Favorites"},
     "NoFavorites", key::internet_explorer},
    {26, 26, 7, Step::internet_explorer, usual | at_start, {U"Kein Menü Datei/Neu"_ansi, "No Menu File/New"},
     "NoFileNew", key::internet_explorer},
    {27, 27, 7, Step::internet_explorer, usual | at_start, {U"Kein Menü Datei/Öffnen"_ansi, "No Menu File/Open"},
     "NoFileOpen", key::internet_explorer},
    {28, 28, 7, Step::internet_explorer, usual | at_start, {U"Kein Menü Datei/Speichern"_ansi, "No Menu File/Save"},
     "NoBrowserSaveAs", key::internet_explorer},
    {29, 29, 7, Step::internet_explorer, usual | at_start, {U"Kein Menü Datei/Drucken"_ansi, "No Menu File/Print"},
     "NoPrinting", key::internet_explorer},
    {210, 210, 7, Step::internet_explorer, usual | at_start, {U"Kein Menü Datei/Beenden"_ansi, "No Menu File/Exit"},
     "NoBrowserClose", key::internet_explorer},

    // Desktop
    {31, 31, 3, Step::desktop, usual | suggested | at_start, {U"Kein Ändern Taskbar"_ansi, "No Change Taskbar-Settings"},
     "NoSetTaskbar", key::explorer},
    {32, 32, 3, Step::desktop, usual | suggested | at_start, {U"Kein Ändern Anzeige"_ansi, "No Change Display-Settings"},
     "NoDispCpl", key::system},
    {33, 33, 3, Step::desktop, usual | at_start, {"Keine Symbole auf dem Desktop", "No Icons on Desktop"},
     "NoDesktop", key::explorer},
    {34, 34, 3, Step::desktop, usual | at_start, {"Kein Symbol 'Netzwerkumgebung' auf Desktop", "No Icon 'Nethood Neighborhood'"},
     "NoNetHood", key::explorer},
    {35, 35, 3, Step::desktop, usual | suggested | at_start, {"Kein 'Klicken Sie hier' in Taskleiste bei Start", "No 'Click here to start...'"},
     "NoStartBanner", key::explorer},
    {36, 36, 3, Step::desktop, usual | suggested | at_start, {"Keine Einstellungen beim Beenden speichern", "No Save Settings at exit Windows"},
     "NoSaveSettings", key::explorer},
    {37, 37, 3, Step::desktop, usual | at_start, {"Festes Hintergrundsbild:", "Fix your Background-Picture:"},
     "FixedWallpaper", key::explorer, &wallpaper},
    {38, 38, 3, Step::desktop, usual | at_start, {"Kein Registrierungseditor / Keine Registrierung", "No Registry / Regedit available"},
     "DisableRegistryTools", key::system},
    {39, 39, 3, Step::desktop, plain | cleared, {"Desktop-Icons laden von:", "Get Desktop-Icons from:"},
     "FixedLNK", key::explorer, &icon_folder},

    // Allowed programs
    {41, 41, 4, Step::allowed_programs, plain | cleared, {"Nur diese Programme zulassen:", "Allow only these EXE-Files:"},
     "RestrictRun", key::explorer},

    // Drives
    {0, 0, 0, Step::drives, cleared, no_caption, "NoDrives", key::explorer},

    // Boot options: entries of the file MSDOS.SYS
    {61, 61, 8, Step::boot_file, marked, {U"Scandisk niemals ausführen"_ansi, "Never start 'Scandisk' at Startup..."},
     nullptr, nullptr},
    {62, 62, 8, Step::boot_file, marked, {U"Kein Bootmenü (F8 gesperrt)"_ansi, "No Boot-Menu at Startup (No F8 available...)"},
     nullptr, nullptr},

    // Active Desktop, network
    {63, 63, 8, Step::network, usual | at_start, {"Kein ActiveDesktop (W98/ME)", "No ActiveDesktop (W98/ME)"},
     "NoActiveDesktop", key::explorer},
    {64, 64, 8, Step::network, usual | at_start, {"KeineActiveDesktop-Einstellungen", "No ActiveDesktop Settings"},
     "ClassicShell", key::explorer},
    {65, 65, 6, Step::network, usual | at_start, {"Keine Eigenschaften 'Netzwerk'", "No Properties 'Network-Neighborhood'"},
     "NoNetSetup", key::network},
    {66, 66, 6, Step::network, usual | suggested | at_start, {"Kein Eintrag 'Gesamtes Netzwerk'", "No 'Network-Neighborhood'"},
     "NoEntireNetwork", key::network},
    {67, 67, 6, Step::network, usual | suggested | at_start, {"Kein Eintrag Netzwerk-Mitglieder", "No Workgroup Contents"},
     "NoWorkgroupContents", key::network},
    {68, 68, 6, Step::network, usual | suggested | at_start, {U"Kein Ändern des Anmelde-Kennworts"_ansi, "No Change Login Password"},
     "NoPwdPage", key::system},
    {69, 69, 6, Step::network, usual | at_start, {"Datei-Freigaben ausgeblendet", "Disable File-Sharing Settings"},
     "NoFileSharingControl", key::network},
    // Mislaid beside its key long ago: written and read in the root of the user's branch.
    {610, 610, 6, Step::network, usual | at_start, {"Drucker-Freigaben ausgeblendet", "Disable Printer-Sharing Settings"},
     "NoPrintSharingControl", in_the_users_root},

    // Miscellaneous, printers
    {90, 90, 8, Step::beep, cleared | marked | suggested, {"Kein Windows Beep bei Fehler", "No Windows Beep on Error"},
     "Beep", key::sound},
    {91, 91, 8, Step::shell, usual | suggested, {"Rein Rechtsklick auf Desktop", "Disable right-click Desktop/Explorer"},
     "NoViewContextMenu", key::explorer},
    // Two that are cleared by every save and set by no control.
    {92, 0, 0, Step::shell, cleared, no_caption, "NoDesktop", key::explorer},
    {93, 93, 8, Step::shell, usual | suggested, {U"Kein Rechtsklick Taskleiste/Startmenü"_ansi, "Disable right-click Taskbar"},
     "NoTrayContextMenu", key::explorer},
    {94, 94, 8, Step::shell, usual, {"Kein NT/2000/XP Taskmanager", "Disable 2000/XP-Taskmanager"},
     "DisableTaskMgr", key::system},
    {95, 95, 8, Step::shell, usual, {"Kein Windows-Update zulassen", "Disable Windows Update"},
     "NoWindowsUpdate", key::explorer},
    // Of this value nothing but the clearing is left: the tick lies elsewhere, by the family of Windows.
    {96, 96, 8, Step::command_line, cleared | marked, {"Keine Kommandozeile (MS-DOS)", "Disable CommandLine (MS-DOS)"},
     "DisableCMD", key::system},
    {97, 0, 0, Step::shell, cleared, no_caption, "NoEntireNetwork", key::network},
    {98, 98, 6, Step::printers, usual | suggested, {U"Kein Hinzufügen von Druckern"_ansi, "No Add Printers"},
     "NoAddPrinter", key::explorer},
    {99, 99, 6, Step::printers, usual | suggested, {U"Kein Löschen von Druckern"_ansi, "No Delete Printers"},
     "NoDeletePrinter", key::explorer},

    // Values without a box
    {80, 0, 0, Step::own_values, 0, no_caption, "PWHide", product::key},
    {81, 0, 0, Step::own_values, 0, no_caption, "RegisteredOrganization", nullptr},
    {82, 0, 0, Step::own_values, 0, no_caption, "RegisteredOwner", nullptr},
};
// clang-format on

}  // namespace

std::span<const Restriction> Get_CR() { return all; }

const Restriction& restriction(int index) {
    const auto* at = std::find_if(std::begin(all), std::end(all),
                                  [&](const Restriction& row) { return row.index == index; });
    if (at == std::end(all)) throw RuntimeError(9);
    return *at;
}

std::vector<int> boxes_of_page(int page) {
    std::vector<int> boxes;
    for (const Restriction& row : all) {
        if (page != 0 && row.page == page) boxes.push_back(row.box);
    }
    return boxes;
}

}  // namespace britlock
