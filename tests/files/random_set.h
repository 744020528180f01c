#pragma once

#include <random>

#include "engine/catalogue.h"

namespace britlock {

/// A set with anything in it that a window can hold and a file can carry.
inline RestrictionSet random_set(std::mt19937& random) {
    const auto below = [&](unsigned count) { return static_cast<int>(random() % count); };
    const auto text = [&] {
        // clang-format off
        static const char* const texts[] = {"", "C:\\WINDOWS\\x.bmp", "D:\\B\xE4r & S\xF6hne, Z\xFCrich", "  two ", "line\r\nbreak",
                                            "5000000000 AG", "NO.EXE", "\x81\x9D\xFF"};
        // clang-format on
        return texts[below(std::size(texts))];
    };
    RestrictionSet set;
    set.wallpaper = text();
    set.icon_folder = text();
    set.machine = {text(), text(), text()};
    for (const Restriction& row : Get_CR()) {
        if (row.page != 0) set.boxes.set(row.box, below(3));
    }
    for (bool& hidden : set.hidden_applets)
        hidden = below(2) == 1;
    for (int i = below(5); i > 0; --i)
        set.programs.emplace_back(text());
    for (int& drive : set.drives)
        drive = below(3);
    return set;
}

}  // namespace britlock
