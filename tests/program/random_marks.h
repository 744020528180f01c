#pragma once

#include <random>

#include "files/restriction_file.h"
#include "program/person.h"

namespace britlock {

inline void PrintTo(const RestrictionSet& set, std::ostream* out) { *out << brl_text(set); }

/// A person who marks at random, by clicks and by typing.
inline void mark_at_random(Person& person, uint32_t seed) {
    // clang-format off
    static const char* const texts[] = {"", "C:\\WINDOWS\\x.bmp", "D:\\B\xE4r & S\xF6hne", "  C:\\two blanks  ", "\\\\srv\\x"};
    static const char* const programs[] = {"C:\\a\\word.exe", "D:\\CALC.EXE", "C:\\\xFCmlaut.exe", "britlock.exe", "x.com"};
    // clang-format on
    std::mt19937 random(seed);
    const auto chance = [&](unsigned percent) { return random() % 100 < percent; };
    MainForm& window = person.window();
    if (chance(10)) person.click(window.mm22);
    for (const Restriction& row : Get_CR()) {
        if (row.page != 0 && chance(40)) person.click(window.box(row.box));
    }
    for (size_t row = 1; row <= applet_count; ++row) {
        if (chance(30)) person.click_applet(row);
    }
    for (auto& drive : window.drive_boxes) {
        if (drive.enabled() && chance(40)) person.click(drive);
    }
    for (auto* box : {&window.t31, &window.t32}) {
        if (chance(50)) person.type(*box, texts[random() % std::size(texts)]);
    }
    for (unsigned more = random() % 4; more > 0; --more)
        person.choosing_file(programs[random() % std::size(programs)]).click(window.cm41);
    if (const int line = static_cast<int>(random() % 9);
        line < window.List1.count() && window.List1.item(line) != "BRITLOCK.EXE") {
        person.click(window.List1, line);
        person.click(window.cm42);
    }
    if (chance(5)) person.click(window.cm44);
}

/// What a load gives back of what was marked. Each line here is a difference that is meant.
inline RestrictionSet after_a_round_trip(RestrictionSet set, const RestrictionSet& before) {
    // c16 writes the value of c31 as well.
    if (set.ticked(16)) set.boxes.set(31, 1);
    // The picture is stored only with its tick, the icon folder only where one is given.
    if (!set.ticked(37)) set.wallpaper = before.wallpaper;
    if (set.icon_folder.empty()) set.icon_folder = before.icon_folder;
    // Texts come back without the blanks around them.
    for (std::string* text : {&set.wallpaper, &set.icon_folder})
        *text = text::trim_blanks(*text);
    // The program's own entry is the first after every load.
    std::erase(set.programs, "BRITLOCK.EXE");
    set.programs.insert(set.programs.begin(), "BRITLOCK.EXE");
    return set;
}

}  // namespace britlock
