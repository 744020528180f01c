#include "ui/main.h"

namespace britlock {

namespace {

/// A row as it is read at the start: by names of its own, in the root of the running account, since the paths
/// were never filled in. So these boxes start unticked, unless a value of that very name lies there.
struct StartRow {
    toolkit::CheckBox main::*box;
    const char* value_name;
};

constexpr StartRow start_menu_rows[] = {
    {&main::c11, "NoClose"},         {&main::c12, "NoLogOff"},       {&main::c13, "NoRun"},
    {&main::c14, "NoFind"},          {&main::c16, "NoSetFolders"},   {&main::c17, "NoRecentDocsMenu"},
    {&main::c18, "NoFavoritesMenu"}, {&main::c19, "NoCommonGroups"}, {&main::c110, "NoChangeStartmenu"},
};
constexpr StartRow desktop_rows[] = {
    {&main::c31, "NoSetTaskbar"},
    {&main::c32, "NoDispCpl"},
    {&main::c33, "NoDesktop"},
    {&main::c34, "NoNetHood"},
    {&main::c35, "NoStartBanner"},
    {&main::c36, "NoSaveSettings"},
    {&main::c38, "DisableRegistryTools"},
    {&main::c37, "FixedWallpaper"},
};
constexpr StartRow last_rows[] = {
    {&main::c63, "NoActiveDesktop"},      {&main::c64, "ClassicShell"},           {&main::c65, "NoNetSetup"},
    {&main::c66, "NoEntireNetwork"},      {&main::c67, "NoWorkgroupContents"},    {&main::c68, "NoPwdPage"},
    {&main::c69, "NoFileSharingControl"}, {&main::c610, "NoPrintSharingControl"},
};

}  // namespace

/// The first filling of the window, from the account that runs the program and from the machine's own keys.
void main::settings_get() {
    REGISTRY_MOD& reg = program_.reg;
    auto read_here = [&](const char* name) { return reg.reg_read_value(HKEY_CURRENT_USER, "", name); };
    auto read_row = [&](const StartRow& row) {
        (this->*row.box).set_value(ticks(read_here(row.value_name)) ? 1 : 0);
    };

    for (const StartRow& row : start_menu_rows)
        read_row(row);
    for (const int i : rows::internet_explorer) {
        box_of(i).set_value(ticks(reg.ie_policy_read(reg_value_name[i])) ? 1 : 0);
    }
    for (const StartRow& row : desktop_rows)
        read_row(row);

    // From here on a failure skips its statement.
    ignoring_errors(
        [&] {
            t31.set_text(ticks(read_here("FixedWallpaper"))
                             ? reg.reg_read_string(HKEY_CURRENT_USER, "", "WallpaperName")
                             : reg.reg_read_string(HKEY_CURRENT_USER, key::desktop, "Wallpaper"));
        },
        [&] {
            if (reg.file_has_content(t31.text())) load_picture(t31.text());
        },
        [&] { c61.set_value(0); }, [&] { c62.set_value(0); },  //
        [&] { make_boot_file_writable(); }, [&] { read_boot_file(); });
    for (const StartRow& row : last_rows) {
        ignoring_errors([&] { read_row(row); });
    }
    const std::string family = reg.get_os_name();
    const bool nt = family == "Win2K" || family == "WinNT" || family == "WinXP";
    const char* registration = nt ? R"(Software\Microsoft\Windows NT\CurrentVersion)"
                                  : R"(Software\Microsoft\Windows\CurrentVersion)";
    t81.set_text(reg.reg_read_string(HKEY_LOCAL_MACHINE, registration, "RegisteredOrganization"));
    t82.set_text(reg.reg_read_string(HKEY_LOCAL_MACHINE, registration, "RegisteredOwner"));
}

}  // namespace britlock
