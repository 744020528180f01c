#include "base/product.h"
#include "base/text.h"
#include "ui/main_form.h"

namespace britlock {

using namespace text::literals;
using toolkit::Icon;

namespace {

/// A null caption keeps the one of the design.
struct ControlCaption {
    std::string_view control;
    Twin caption;
};

constexpr ControlCaption control_captions[] = {
    {"L_gen", {"Allgemein:", "General Help:"}},
    {"Label1", {nullptr, "Press F1 to get a context sensitive help for this tab."}},
    {"cm01", {"&Abbrechen", "&Cancel"}},
    {"cm02", {"&OK", "&OK"}},
    {"cmd_set", {nullptr, "&Apply"}},
    {"f1", {U"Startmenü Einschränkungen ..."_ansi, "Disable some entries in your Startmenu..."}},
    {"f2", {U"Systemsteuerung Einschränkungen ..."_ansi, "Restrict your Control Panel..."}},
    {"l21",
     {"Markieren Sie hier die Elemente in der Liste, welche nicht in der Systemsteuerung erscheinen sollen:",
      "Mark here your applets you don't want to show in your Control Panel section:"}},
    {"cmd21", {"Alle", "All"}},
    {"cmd22", {"Keine", "None"}},
    {"f3", {U"Desktop/Oberfläche Einschränkungen ..."_ansi, "Restrict your Desktop..."}},
    {"cm31", {"...", "..."}},
    {"cm32", {"...", "..."}},
    {"f4", {U"Zensur - Nur bestimmte Programme ausführen ..."_ansi, "Restrict Apps, run these apps only:"}},
    {"cm41", {U"Zufügen"_ansi, "Add"}},
    {"cm42", {U"Löschen"_ansi, "Remove"}},
    {"cm43", {"Vorschlag", "Suggestions"}},
    {"cm44", {U"Alle löschen"_ansi, "Remove all"}},
    {"cm45", {"Alle EXE's", "All EXE-Files"}},
    {"f5", {"Laufwerke aus dem Arbeitsplatz/Explorer ausblenden...", "Hide the following drives..."}},
    {"l51",
     {"Folgende Laufwerke sollen aus dem Arbeitsplatz, dem Explorer und den Dateidialogen ausgeblendet "
      "werden:",
      "Mark the drives below, you want to hide for the user in Explorer or in My Computer:"}},
    {"cm51", {"Alle", "All"}},
    {"cm52", {"Keine", "None"}},
    {"f6", {"Netzwerk und Drucker", "Win 9X/ME Restrictions..."}},
    {"f7",
     {U"IE Explorer (ab 5.01) Einschränkungen ..."_ansi, "IE Explorer (5.01 and higher) Restrictions ..."}},
    {"f8", {U"Diverse Einschränkungen"_ansi, "General Windows-Settings"}},
    {"f9", {"Allgemeine Programmeinstellungen ...", "Misc. Settings"}},
    {"l83", {U"Einstellung(en) prüfen"_ansi, "Check Settings"}},
    {"l81", {"Win-Registrierte Firma:", "Registered Organisation:"}},
    {"l82", {"Win-Registrierter Name:", "Registered Name:"}},
    {"l810", {U"Pfad für Benutzerprofile:"_ansi, "Path User Profiles:"}},
};

/// In English the entries of the window menu are shifted against the pages from the eighth on.
struct MenuCaption {
    toolkit::MenuItem MainForm::*item;
    Twin caption;
};

const MenuCaption menu_captions[] = {
    {&MainForm::mm1, {"&Datei", "&File"}},
    {&MainForm::mm11, {U"&Öffnen"_ansi, "&Open"}},
    {&MainForm::mm12, {"&Speichern...", "&Save..."}},
    {&MainForm::mm13, {"Speichern &unter", "Save as"}},
    {&MainForm::mm132, {"De-&Installieren", "&Uninstall"}},
    {&MainForm::mm14, {"&Drucken", "&Print"}},
    {&MainForm::mm15, {"Drucker &einrichten", "&Setup Printer"}},
    {&MainForm::mm16, {"&Beenden", "&Exit"}},
    {&MainForm::mm2, {"&Bearbeiten", "&Edit"}},
    {&MainForm::mm21, {"&Alles markieren", "&Mark all"}},
    {&MainForm::mm22, {"Alles &entmarkieren", "AUnmark all"}},
    {&MainForm::mm23, {U"&Passwort ändern"_ansi, "&Change Password"}},
    {&MainForm::mm24, {U"&Vorschläge"_ansi, "&Suggestions"}},
    {&MainForm::mm3, {"&Fenster", "&Windows"}},
    {&MainForm::mm31, {U"&Startmenü"_ansi, "&Startmenu"}},
    {&MainForm::mm32, {"S&ystemsteuerung", "&Control Panel"}},
    {&MainForm::mm33, {"&Desktop", "&Desktop"}},
    {&MainForm::mm34, {"&Zensur", "Ce&nsor List"}},
    {&MainForm::mm35, {"&Laufwerke", "&Drives"}},
    {&MainForm::mm36, {"&Netz und Drucker", "&Win 9X/ME"}},
    {&MainForm::mm37, {"&IE Explorer", "&IE Explorer"}},
    {&MainForm::mm38, {"&Diverses", "&Settings"}},
    {&MainForm::mm39, {"&Einstellungen", "&Help"}},
    {&MainForm::mm4, {"&Sprache", "&Language"}},
    {&MainForm::mm41, {"Deutsch", "&German"}},
    {&MainForm::mm42, {"English", "&English"}},
    {&MainForm::mm5, {"&Hilfe", "&Help"}},
    {&MainForm::mm51, {"&Hilfethemen", "&HConent"}},
    {&MainForm::mm52, {"&Inhalt und Index", "&Inhalt und Index"}},
    {&MainForm::mm53, {"Inter&net-Hilfe", "Inter&net-Help"}},
    {&MainForm::mm54, {"&Versions-Info", "&Windows-Version"}},
    {&MainForm::mm55, {"&Online-Update", "&Online-Update"}},
    {&MainForm::mm57, {U"&Über..."_ansi, "&About"}},
};

constexpr Twin help_lines[] = {
    {U"Schränken Sie das Startmenü auf benötigte Punkte ein und blenden Sie Einträge aus..."_ansi,
     "Restrict your Startmenu and hide some entries you not want to entered by your users."},
    {U"Beschränken Sie die Systemsteuerung auf die Punkte, die Ihre User wirklich brauchen."_ansi,
     "Restrict your Control Panel and hide applets you don't want to share to your users."},
    {U"Verunstaltungen am Desktop gehören mit diesen Einschränkungen zur Vergangenheit."_ansi,
     "Changing settings on your desktop now secured. Never allow a user to change wallpapers..."},
    {U"Erlauben Sie nur gewisse Programme. Alle anderen Programme sind für den User tabu."_ansi,
     "Restrict the availability to run programs for the user. Only this programs can be runned."},
    {U"Verstecken Sie Laufwerke, Netzlaufwerke auf der Arbeitsoberfläche und im Explorer."_ansi,
     "Hide drives, network mapped drives and others in this section."},
    {U"Hier können Sie spezielle Sicherheitslöcher (vorallem Netzwerk )in W9X/ME schliessen."_ansi,
     "More Security for your Win 9X/ME-PC, especially in Network Properties and Settings."},
    {U"Im Internet surfen gehört dazu. Downloads, Ausdrucke Einstellungen aber nicht. Siehe links."_ansi,
     "Restrict your Inter Explorer (5.01 requiered). Allow surfing the web, disallow downloads..."},
    {U"Legen Sie hier diverse Schutzmechanismen für Win9X/ME und auch für Win 2000/XP fest."_ansi,
     "Misc. Restrictions to your System. Disable some commands in Win 2000/XP and more..."},
    {U"Allgemeine Einstellungen zum Programm. Ändern Sie hier registrierten Namen, Firma und Profilpfad."_ansi,
     "General settings to this program. Change Registered User and Company and set Your Password."},
};

/// One of the two language commands: the number that is stored, and what is said of it.
struct LanguageCommand {
    const char* country;
    Notice notice;
};

constexpr LanguageCommand to_german{
    "0",
    {Icon::information,
     {"Deutsch...", "Language German..."},
     {U"Sprache wurde auf Deutsch gesetzt.\r\nDie Einstellungen werden erst nach Neustart des Programms geändert."_ansi,
      "Language was set to german.\r\nYou need to restart the program to set this changes."}}};
constexpr LanguageCommand to_english{
    "1",
    {Icon::information,
     {"Englisch...", "Language English..."},
     {U"Sprache wurde auf Englisch gesetzt.\r\nDie Einstellungen werden erst nach Neustart des Programms geändert."_ansi,
      "Language was set to English.\r\nYou need to restart the program to set this changes."}}};

/// The language is that of the edition: nothing reads what is stored here. The menu of the two commands is
/// hidden.
void store_country(Program& program, const LanguageCommand& command) {
    (void)program.reg.reg_write_string(HKEY_LOCAL_MACHINE, product::key, "Country", command.country);
    Notice notice = command.notice;
    if (program.reg.get_language() == english) notice.icon = Icon::critical;
    program.say(notice);
}

}  // namespace

void MainForm::localize() {
    if (program_.reg.get_language() == german) localize_german();
    if (program_.reg.get_language() == english) localize_us();
}

void MainForm::localize_german() { caption_all(german); }

void MainForm::localize_us() { caption_all(english); }

void MainForm::caption_all(int language) {
    for (size_t i = 0; i < std::size(help_lines); ++i)
        page_help_text[i + 1] = pick(help_lines[i], language);
    for (const ControlCaption& row : control_captions) {
        if (const char* caption = pick(row.caption, language)) find(row.control)->set_text(caption);
    }
    for (const Restriction& row : Get_CR()) {
        if (row.page != 0) box(row.box).set_text(pick(row.caption, language));
    }
    // What stands beside no label has a name for those who cannot see it.
    Combo_user.set_spoken_name(pick({"Benutzer", "User"}, language));
    cm31.set_spoken_name(pick({U"Bild auswählen"_ansi, "Choose a picture"}, language));
    cm32.set_spoken_name(pick({U"Ordner auswählen"_ansi, "Choose a folder"}, language));
    fill_syslist(language);
    for (const MenuCaption& row : menu_captions)
        (this->*row.item).set_caption(pick(row.caption, language));
}

void MainForm::mm41_Click() { store_country(program_, to_german); }

void MainForm::mm42_Click() { store_country(program_, to_english); }

}  // namespace britlock
