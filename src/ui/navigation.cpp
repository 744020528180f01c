#include <cstdio>

#include "base/product.h"
#include "base/text.h"
#include "startup/pictures.h"
#include "ui/main_form.h"

namespace britlock {

using namespace text::literals;

namespace {

constexpr int page_count = 9;
constexpr int help_item = 10;
constexpr int first_help_context = 10;
constexpr int clock_panel = 5;
constexpr int homepage_zone = 1500;  // twips from the left edge of the status bar

struct Page {
    Twin name;
    const toolkit::Drawing* picture;
};

constexpr Page pages[] = {
    {{U"Startmenü"_ansi, "Start"}, &pictures::start_menu},
    {{"Sys-Steuerung", "Control Panel"}, &pictures::control_panel},
    {{"Desktop", "Desktop"}, &pictures::desktop},
    {{"Zensur", "Restrict EXEs"}, &pictures::programs},
    {{"Laufwerke", "Hide Drives"}, &pictures::drives},
    {{"Netz/Drucker", "Net/Printer"}, &pictures::network},
    {{"IE Explorer", "IE Explorer"}, &pictures::internet},
    {{"Diverses", "Misc."}, &pictures::miscellaneous},
    {{"Einstellungen", "Settings"}, &pictures::settings},
    {{"Hilfe", "Help"}, &pictures::help},
};

constexpr Twin homepage_address{product::german_homepage, product::homepage};

/// Twips, by language.
struct PanelWidth {
    int german;
    int english;
};
constexpr PanelWidth panel_widths[] = {{1850, 1850}, {3200, 2900}, {2000, 1800}, {800, 800}, {1000, 1500}};

}  // namespace

void MainForm::menu1() {
    SSListBar1.set_group("PAuto", program_.pick({U"Einschränkungen"_ansi, "Restrictions"}));
    for (int i = 1; i <= help_item; ++i) {
        page_name[i] = program_.pick(pages[i - 1].name);
        SSListBar1.add({"L" + std::to_string(i), page_name[i], pages[i - 1].picture});
    }
}

void MainForm::status_init() {
    const std::string texts[] = {program_.pick(homepage_address), "", program_.reg.get_user_name(),
                                 program_.reg.get_os_name(), "12:00:00"};
    StatusBar.set_font_size(7);
    for (int i = 1; i <= clock_panel; ++i) {
        const PanelWidth& width = panel_widths[i - 1];
        StatusBar.add({texts[i - 1], program_.reg.get_language() == german ? width.german : width.english,
                       i == clock_panel});
    }
}

void MainForm::go_to_page(int page) {
    tab.set_current(page - 1);
    program_.toolkit.show(*this);
}

void MainForm::SSListBar1_Click(int item) {
    if (item == help_item) return open_help();
    if (item < 1 || item > page_count) return;
    l01.set_text(SSListBar1.items()[item - 1].text);
    go_to_page(item);
}

void MainForm::tab_Click() {
    help_context = first_help_context + tab.current();
    l01.set_text(page_name[tab.current() + 1]);
    l02.set_text(page_help_text[tab.current() + 1]);
}

void MainForm::homepage() { program_.toolkit.message_box({.text = "Hier kommt link zur Page"}); }

void MainForm::StatusBar_MouseDown(toolkit::MouseButton button, int x) {
    if (button == toolkit::MouseButton::left && x < homepage_zone) homepage();
}

void MainForm::Timer1_Timer() {
    machine::System& system = program_.machine.system;
    if (program_.reg.get_language() == german) {
        const machine::ClockTime now = system.local_time();
        char text[16];
        std::snprintf(text, sizeof text, "%02d:%02d:%02d", now.hour % 24, now.minute % 60, now.second % 61);
        StatusBar.set_panel_text(clock_panel, text);
    }
    if (program_.reg.get_language() == english) StatusBar.set_panel_text(clock_panel, system.long_time());
}

void MainForm::cm02_Click() {
    hive(hive_save);
    program_.toolkit.end_process();
}

}  // namespace britlock
