#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/applets.h"

namespace britlock {

constexpr int drive_count = 26;

/// What the settings page shows of the machine. It belongs to no user, and travels with every set.
struct MachineTexts {
    std::string organisation;   ///< as Windows is registered
    std::string owner;          ///< likewise
    std::string profiles_path;  ///< the folder of the users' profiles
    bool operator==(const MachineTexts&) const = default;
};

/// One user's restrictions, as the window shows them: a plain value that is read from a registry or a file,
/// shown, changed, written, printed. Texts are ANSI bytes without NUL.
struct RestrictionSet {
    /// What check boxes hold, by the number in their names (`c11` is 11): 0 clear, 1 ticked, 2 grey.
    class Boxes {
      public:
        static constexpr int last = 610;
        int operator[](int number) const { return values_.at(number); }
        void set(int number, int value) { values_.at(number) = static_cast<uint8_t>(value); }
        bool operator==(const Boxes&) const = default;

      private:
        std::array<uint8_t, last + 1> values_{};
    };
    Boxes boxes;
    std::array<bool, applet_count> hidden_applets{};  ///< in the order of the list
    std::vector<std::string> programs;                ///< the only ones that may run, where box 41 is ticked
    std::array<int, drive_count> drives{};            ///< 1: hidden; A comes first
    std::string wallpaper;
    std::string icon_folder;  ///< of the shortcuts that are copied to the desktop at logon
    MachineTexts machine;

    bool ticked(int number) const { return boxes[number] == 1; }
    bool operator==(const RestrictionSet&) const = default;
};

}  // namespace britlock
