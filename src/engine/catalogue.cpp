#include "engine/catalogue.h"

#include "base/text.h"
#include "ui/main.h"

namespace britlock {

using namespace text::literals;

namespace {

constexpr const char* in_the_users_root = "";

constexpr Twin no_caption{"", ""};

const Restriction all[] = {
    // Start menu
    {11, &main::c11, {"Kein Beenden", "Disable ShutDown"}, "NoClose", key::explorer},
    {12, &main::c12, {"Kein Abmelden", "Disable LogOff"}, "NoLogOff", key::explorer},
    {13, &main::c13, {U"Kein Ausführen"_ansi, "Disable Run"}, "NoRun", key::explorer},
    {14, &main::c14, {"Kein Suchen", "Disable Find"}, "NoFind", key::explorer},
    {15, &main::c15, {"Keine Hilfe", "Disable Help"}, "NoHelp", key::explorer},
    {16, &main::c16, {"Keine Systemsteuerung", "Disable Settings"}, "NoSetFolders", key::explorer},
    {161, &main::c16, no_caption, "NoSetTaskbar", key::explorer},
    {162, &main::c16, no_caption, "NoControlPanel", key::explorer},
    {17, &main::c17, {"Keine Dokumente", "Disable Documents"}, "NoRecentDocsMenu", key::explorer},
    {18, &main::c18, {"Keine Favoriten", "Disable Favorites"}, "NoFavoritesMenu", key::explorer},
    {19, &main::c19, {"Keine gemeinsamen PRG", "Disable Common Groups"}, "NoCommonGroups", key::explorer},
    {110,
     &main::c110,
     {U"Kein Ändern Startmenü"_ansi, "Disable Startmenu Settings"},
     "NoChangeStartMenu",
     key::explorer},

    // Desktop
    {31,
     &main::c31,
     {U"Kein Ändern Taskbar"_ansi, "No Change Taskbar-Settings"},
     "NoSetTaskbar",
     key::explorer},
    {32, &main::c32, {U"Kein Ändern Anzeige"_ansi, "No Change Display-Settings"}, "NoDispCpl", key::system},
    {33, &main::c33, {"Keine Symbole auf dem Desktop", "No Icons on Desktop"}, "NoDesktop", key::explorer},
    {34,
     &main::c34,
     {"Kein Symbol 'Netzwerkumgebung' auf Desktop", "No Icon 'Nethood Neighborhood'"},
     "NoNetHood",
     key::explorer},
    {35,
     &main::c35,
     {"Kein 'Klicken Sie hier' in Taskleiste bei Start", "No 'Click here to start...'"},
     "NoStartBanner",
     key::explorer},
    {36,
     &main::c36,
     {"Keine Einstellungen beim Beenden speichern", "No Save Settings at exit Windows"},
     "NoSaveSettings",
     key::explorer},
    {37,
     &main::c37,
     {"Festes Hintergrundsbild:", "Fix your Background-Picture:"},
     "FixedWallpaper",
     key::explorer},
    {38,
     &main::c38,
     {"Kein Registrierungseditor / Keine Registrierung", "No Registry / Regedit available"},
     "DisableRegistryTools",
     key::system},
    {39, &main::c39, {"Desktop-Icons laden von:", "Get Desktop-Icons from:"}, "FixedLNK", key::explorer},

    // Allowed programs: the value goes by its own name, beside the list.
    {41, &main::c41, {"Nur diese Programme zulassen:", "Allow only these EXE-Files:"}, nullptr, nullptr},

    // Network and printers
    {65,
     &main::c65,
     {"Keine Eigenschaften 'Netzwerk'", "No Properties 'Network-Neighborhood'"},
     "NoNetSetup",
     key::network},
    {66,
     &main::c66,
     {"Kein Eintrag 'Gesamtes Netzwerk'", "No 'Network-Neighborhood'"},
     "NoEntireNetwork",
     key::network},
    {67,
     &main::c67,
     {"Kein Eintrag Netzwerk-Mitglieder", "No Workgroup Contents"},
     "NoWorkgroupContents",
     key::network},
    {68,
     &main::c68,
     {U"Kein Ändern des Anmelde-Kennworts"_ansi, "No Change Login Password"},
     "NoPwdPage",
     key::system},
    {69,
     &main::c69,
     {"Datei-Freigaben ausgeblendet", "Disable File-Sharing Settings"},
     "NoFileSharingControl",
     key::network},
    // Mislaid beside its key long ago: written and read in the root of the user's branch.
    {610,
     &main::c610,
     {"Drucker-Freigaben ausgeblendet", "Disable Printer-Sharing Settings"},
     "NoPrintSharingControl",
     in_the_users_root},
    {98,
     &main::c98,
     {U"Kein Hinzufügen von Druckern"_ansi, "No Add Printers"},
     "NoAddPrinter",
     key::explorer},
    {99,
     &main::c99,
     {U"Kein Löschen von Druckern"_ansi, "No Delete Printers"},
     "NoDeletePrinter",
     key::explorer},

    // Internet Explorer
    {21,
     &main::c21,
     {"Keinen Download aus IE zulassen", "Disable Downloads in IE Explorer"},
     "NoSelectDownloadDir",
     key::internet_explorer},
    {22,
     &main::c22,
     {"Keinen Rechtsklick im Browserfenster", "No Context-Menu in IE Explorer"},
     "NoBrowserContextMenu",
     key::internet_explorer},
    {23,
     &main::c23,
     {"Keine Internet-Einstellungen (Optionen)", "No Internet Explorer-Settings"},
     "NoBrowserOptions",
     key::internet_explorer},
    {24,
     &main::c24,
     {U"Keinen Quelltext anzeigen (Menü/Kontextmenü)"_ansi, "No View Source"},
     "NoViewSource",
     key::internet_explorer},
    {25,
     &main::c25,
     {"Keine Favoriten anzeigen / Favoriten sperren", "Disable Favorites"},
     "NoFavorites",
     key::internet_explorer},
    {26, &main::c26, {U"Kein Menü Datei/Neu"_ansi, "No Menu File/New"}, "NoFileNew", key::internet_explorer},
    {27,
     &main::c27,
     {U"Kein Menü Datei/Öffnen"_ansi, "No Menu File/Open"},
     "NoFileOpen",
     key::internet_explorer},
    {28,
     &main::c28,
     {U"Kein Menü Datei/Speichern"_ansi, "No Menu File/Save"},
     "NoBrowserSaveAs",
     key::internet_explorer},
    {29,
     &main::c29,
     {U"Kein Menü Datei/Drucken"_ansi, "No Menu File/Print"},
     "NoPrinting",
     key::internet_explorer},
    {210,
     &main::c210,
     {U"Kein Menü Datei/Beenden"_ansi, "No Menu File/Exit"},
     "NoBrowserClose",
     key::internet_explorer},

    // Miscellaneous; the first two are entries of the file MSDOS.SYS.
    {61,
     &main::c61,
     {U"Scandisk niemals ausführen"_ansi, "Never start 'Scandisk' at Startup..."},
     nullptr,
     nullptr},
    {62,
     &main::c62,
     {U"Kein Bootmenü (F8 gesperrt)"_ansi, "No Boot-Menu at Startup (No F8 available...)"},
     nullptr,
     nullptr},
    {63,
     &main::c63,
     {"Kein ActiveDesktop (W98/ME)", "No ActiveDesktop (W98/ME)"},
     "NoActiveDesktop",
     key::explorer},
    {64,
     &main::c64,
     {"KeineActiveDesktop-Einstellungen", "No ActiveDesktop Settings"},
     "ClassicShell",
     key::explorer},
    {90, &main::c90, {"Kein Windows Beep bei Fehler", "No Windows Beep on Error"}, "Beep", key::sound},
    {91,
     &main::c91,
     {"Rein Rechtsklick auf Desktop", "Disable right-click Desktop/Explorer"},
     "NoViewContextMenu",
     key::explorer},
    // Cleared by every save, set by no control.
    {92, nullptr, no_caption, "NoDesktop", key::explorer},
    {97, nullptr, no_caption, "NoEntireNetwork", key::network},
    {93,
     &main::c93,
     {U"Kein Rechtsklick Taskleiste/Startmenü"_ansi, "Disable right-click Taskbar"},
     "NoTrayContextMenu",
     key::explorer},
    {94,
     &main::c94,
     {"Kein NT/2000/XP Taskmanager", "Disable 2000/XP-Taskmanager"},
     "DisableTaskMgr",
     key::system},
    {95,
     &main::c95,
     {"Kein Windows-Update zulassen", "Disable Windows Update"},
     "NoWindowsUpdate",
     key::explorer},
    // This value is only cleared: the tick lies elsewhere, by the family of Windows.
    {96,
     &main::c96,
     {"Keine Kommandozeile (MS-DOS)", "Disable CommandLine (MS-DOS)"},
     "DisableCMD",
     key::system},

    // Values without a box
    {80, nullptr, no_caption, "PWHide", product_key},
    {81, nullptr, no_caption, "RegisteredOrganization", nullptr},
    {82, nullptr, no_caption, "RegisteredOwner", nullptr},
};

}  // namespace

std::span<const Restriction> catalogue() { return all; }

void main::Get_CR() {
    for (const Restriction& row : catalogue()) {
        if (!row.value_name) continue;
        reg_value_name[row.index] = row.value_name;
        if (row.key) reg_key_path[row.index] = row.key;
    }
    reg_key_path[81] = program_.reg.is_nt_family() ? R"(Software\Microsoft\Windows NT\CurrentVersion)"
                                                   : R"(Software\Microsoft\Windows\CurrentVersion)";
    reg_key_path[82] = reg_key_path[81];
}

toolkit::CheckBox& main::box_of(int index) {
    for (const Restriction& row : catalogue()) {
        if (row.index == index && row.box) return this->*row.box;
    }
    throw RuntimeError(9);
}

void main::set_boxes(std::span<const int> rows, int value) {
    for (const int index : rows)
        box_of(index).set_value(value);
}

}  // namespace britlock
