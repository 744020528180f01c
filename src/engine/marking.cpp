#include "base/text.h"
#include "ui/main.h"

namespace britlock {

using namespace text::literals;
using toolkit::Icon;

namespace {

constexpr int start_menu_boxes[] = {11, 12, 13, 14, 15, 16, 17, 18, 19, 110};
constexpr int desktop_boxes[] = {31, 32, 33, 34, 35, 36, 37, 38};
constexpr int boot_and_network_boxes[] = {61, 62, 63, 64, 65, 66, 67, 68, 69, 610};
constexpr int other_boxes[] = {90, 91, 93, 94, 95, 96, 98, 99};
constexpr int suggested_boxes[] = {16, 17, 18, 110, 31, 32, 35, 36, 66, 67, 68, 98, 99, 23, 90, 91, 93};

constexpr Notice all_marked{Icon::information,
                            {"", ""},
                            {U"Alle Einschränkungen ausser der Zensur wurden aktiviert."_ansi,
                             "All restrictions exp. the restriction-list are activated..."}};

constexpr Notice suggestions_set{
    Icon::information,
    {U"Vorschläge..."_ansi, "Suggestions..."},
    {U"Vorschläge des Autors wurden gesetzt."_ansi, "Suggestions by the author are set..."}};

}  // namespace

/// Leaves out the allowed programs and the icon lock: both need a list of their own first.
void main::mm21_Click() {
    set_boxes(start_menu_boxes, 1);
    set_boxes(rows::internet_explorer, 1);
    cmd21_Click();
    set_boxes(desktop_boxes, 1);
    cm51_Click();
    set_boxes(boot_and_network_boxes, 1);
    set_boxes(other_boxes, 1);
    program_.say(all_marked);
}

/// Also the reset of the window before another user is shown; unlike mm21 it reaches the allowed programs.
void main::mm22_Click() {
    set_boxes(start_menu_boxes, 0);
    set_boxes(rows::internet_explorer, 0);
    cmd22_Click();
    set_boxes(desktop_boxes, 0);
    c41.set_value(0);
    cm52_Click();
    set_boxes(boot_and_network_boxes, 0);
    set_boxes(other_boxes, 0);
}

void main::mm24_Click() {
    set_boxes(suggested_boxes, 1);
    program_.say(suggestions_set);
}

}  // namespace britlock
