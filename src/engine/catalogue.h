#pragma once

#include <span>
#include <string_view>

#include "platform/registry_mod.h"
#include "toolkit/controls.h"

namespace britlock {

struct main;

/// Key paths, relative to the root and prefix of the user. The capitals differ on purpose.
namespace key {
constexpr const char* explorer = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\Explorer)";
constexpr const char* system = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\System)";
constexpr const char* network = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\Network)";
constexpr const char* internet_explorer = R"(SOFTWARE\Policies\Microsoft\Internet Explorer\Restrictions)";
constexpr const char* sound = R"(Control Panel\Sound)";
constexpr const char* desktop = R"(Control Panel\Desktop)";
constexpr const char* win_old_app = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\WinOldApp)";
constexpr const char* command_line = R"(Software\Policies\Microsoft\Windows\System)";
constexpr const char* run = R"(Software\Microsoft\Windows\CurrentVersion\Run)";
constexpr const char* hide = R"(Software\Microsoft\Windows\CurrentVersion\Policies\Explorer\Hide)";
constexpr const char* restrict_run =
    R"(Software\Microsoft\Windows\CurrentVersion\Policies\Explorer\RestrictRun)";
constexpr const char* dont_load = R"(Control Panel\don't load)";
constexpr const char* disallow_cpl =
    R"(Software\Microsoft\Windows\CurrentVersion\Policies\Explorer\DisallowCpl)";
}  // namespace key

/// Holds the start options of Windows 9X in its section `Options`.
constexpr const char* boot_file = "C:\\MSDOS.SYS";

/// One restriction: its control, its captions, its value.
struct Restriction {
    int index;  ///< the number in the control's name; 161 and 162 are further values of c16
    toolkit::CheckBox main::*box;
    Twin caption;
    const char* value_name;  ///< null: not a value of the table
    const char* key;
};

std::span<const Restriction> catalogue();

/// Rows by index, in the order in which they are read and their ticks written.
namespace rows {
constexpr int start_menu[] = {11, 12, 13, 14, 15, 16, 161, 162, 17, 18, 19, 110};
constexpr int internet_explorer[] = {21, 22, 23, 24, 25, 26, 27, 28, 29, 210};
constexpr int system_and_network[] = {63, 64, 65, 66, 67, 68, 69, 610};
constexpr int shell[] = {91, 93, 94, 95};
constexpr int printers[] = {98, 99};
}  // namespace rows

}  // namespace britlock
