#include "startup/desktop_refresh.h"

#include <string>

namespace britlock {

void refresh_desktop(REGISTRY_MOD& reg, machine::Files& files) {
    constexpr const char* policies = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\Explorer)";
    constexpr const char* shell_folders =
        R"(Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders)";
    if (!ticks(reg.reg_read_value(HKEY_CURRENT_USER, policies, "FixedLNK"))) return;
    const std::string source = reg.reg_read_string(HKEY_CURRENT_USER, policies, "FixedLNKUrl");
    const std::string desktop = reg.reg_read_string(HKEY_CURRENT_USER, shell_folders, "Desktop");
    // The source is deleted first, odd as it looks: a user who has no right to delete it gets the copy, again
    // and again; with the right it is gone after the first logon.
    (void)files.delete_folder(source);
    (void)files.copy_folder(source, desktop);
}

}  // namespace britlock
