#pragma once

#include <map>
#include <random>
#include <string>

#include "base/text.h"
#include "program/person.h"

namespace britlock {

/// What a person has set on the window: one line for each thing, to be compared as text.
struct Marks {
    std::map<std::string, std::string> lines;

    static Marks of(MainForm& window) {
        Marks marks;
        for (const Restriction& row : Get_CR()) {
            if (row.page == 0) continue;
            const auto& box = window.box(row.box);
            marks.lines[box.name()] = std::to_string(box.value());
        }
        for (const auto& drive : window.drive_boxes)
            marks.lines[drive.name()] = std::to_string(drive.value());
        for (const auto& row : window.lv1.rows())
            marks.lines["applet " + row.text] = std::to_string(row.checked);
        for (const std::string& item : window.List1.items())
            marks.lines["List1"] += item + "|";
        marks.lines["t31"] = window.t31.text();
        marks.lines["t32"] = window.t32.text();
        return marks;
    }
};

/// A person who marks at random, by clicks and by typing.
class RandomPerson {
  public:
    RandomPerson(Person& person, uint32_t seed) : w_(person), random_(seed) {}

    void mark() {
        MainForm& window = w_.window();
        if (chance(10)) w_.click(window.mm22);
        for (const Restriction& row : Get_CR()) {
            if (row.page != 0 && chance(40)) w_.click(window.box(row.box));
        }
        for (size_t row = 1; row <= window.lv1.rows().size(); ++row) {
            if (chance(30)) w_.click_applet(row);
        }
        for (auto& drive : window.drive_boxes) {
            if (drive.enabled() && chance(40)) w_.click(drive);
        }
        if (chance(50)) type(window.t31);
        if (chance(50)) type(window.t32);
        edit_list();
    }

  private:
    bool chance(int percent) { return static_cast<int>(random_() % 100) < percent; }

    void type(toolkit::TextBox& box) {
        static const char* const texts[] = {"", "C:\\WINDOWS\\x.bmp", "D:\\B\xE4r & S\xF6hne",
                                            "  C:\\two blanks  ", "\\\\srv\\x"};
        w_.turn_to(box);
        w_.screen.act([&] { box.type(texts[random_() % std::size(texts)]); });
    }

    void edit_list() {
        static const char* const programs[] = {"C:\\a\\word.exe", "D:\\CALC.EXE", "C:\\\xFCmlaut.exe",
                                               "britlock.exe", "x.com"};
        MainForm& window = w_.window();
        for (int i = static_cast<int>(random_() % 4); i > 0; --i) {
            w_.screen.expect_file(programs[random_() % std::size(programs)]);
            w_.click(window.cm41);
        }
        if (window.List1.count() > 1 && chance(30)) {
            const int line =
                1 + static_cast<int>(random_() % static_cast<uint32_t>(window.List1.count() - 1));
            if (window.List1.item(line) == "BRITLOCK.EXE") return;
            w_.screen.act([&] {
                window.List1.click_item(line);
                window.cm42.click();
            });
        }
        if (chance(5)) w_.click(window.cm44);
    }

    Person& w_;
    std::mt19937 random_;
};

/// What a load gives back of what was marked. Each line here is a difference that is meant.
inline Marks after_a_round_trip(Marks marks, const Marks& before) {
    auto& lines = marks.lines;
    // c16 writes the value of c31 as well.
    if (lines["c16"] == "1") lines["c31"] = "1";
    // The picture is stored only with its tick, the icon folder only where one is given.
    if (lines["c37"] != "1") lines["t31"] = before.lines.at("t31");
    if (lines["t32"].empty()) lines["t32"] = before.lines.at("t32");
    // Texts come back without the blanks around them.
    for (const char* box : {"t31", "t32"})
        lines[box] = std::string(text::trim_blanks(lines[box]));
    // The program's own entry is the first after every load.
    std::string& list = lines["List1"];
    if (const size_t own = ("|" + list).find("|BRITLOCK.EXE|"); own != std::string::npos) list.erase(own, 13);
    list.insert(0, "BRITLOCK.EXE|");
    return marks;
}

}  // namespace britlock
