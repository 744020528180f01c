#pragma once

/// Key paths, relative to the root and prefix of the user. Upper and lower case differ on purpose.
namespace britlock::key {

constexpr const char* explorer = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\Explorer)";
constexpr const char* system = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\System)";
constexpr const char* network = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\Network)";
constexpr const char* internet_explorer = R"(SOFTWARE\Policies\Microsoft\Internet Explorer\Restrictions)";
constexpr const char* sound = R"(Control Panel\Sound)";
constexpr const char* desktop = R"(Control Panel\Desktop)";
constexpr const char* run = R"(Software\Microsoft\Windows\CurrentVersion\Run)";
constexpr const char* hide = R"(Software\Microsoft\Windows\CurrentVersion\Policies\Explorer\Hide)";
constexpr const char* restrict_run =
    R"(Software\Microsoft\Windows\CurrentVersion\Policies\Explorer\RestrictRun)";
constexpr const char* dont_load = R"(Control Panel\don't load)";
constexpr const char* disallow_cpl =
    R"(Software\Microsoft\Windows\CurrentVersion\Policies\Explorer\DisallowCpl)";

}  // namespace britlock::key
