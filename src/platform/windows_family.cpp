#include "platform/windows_family.h"

#include <algorithm>
#include <iterator>

namespace britlock {

namespace {

using machine::Version;

constexpr const char* system_policies = R"(Software\Policies\Microsoft\Windows\System)";
constexpr const char* dos_policies = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\WinOldApp)";
constexpr const char* registration_nt = R"(Software\Microsoft\Windows NT\CurrentVersion)";
constexpr const char* registration_9x = R"(Software\Microsoft\Windows\CurrentVersion)";

constexpr WindowsFamily nt(const char* name, AppletStore applets, ProfileFallback profiles) {
    return {name, true, applets, system_policies, "DisableCMD", registration_nt, profiles};
}
constexpr WindowsFamily other(const char* name) {
    return {name,       false,           AppletStore::control_ini, dos_policies,
            "Disabled", registration_9x, ProfileFallback::none};
}

/// Windows NT counts as platform 2, Windows 9X as 1, Win32s as 0.
template <int platform, int major, int minor>
bool is(const Version& v) {
    return v.platform == platform && v.major == major && v.minor == minor;
}
template <int major>
bool is_nt(const Version& v) {
    return v.platform == 2 && v.major == major;
}
bool is_98_or_later(const Version& v) {
    return v.platform == 1 && (v.major > 4 || (v.major == 4 && v.minor == 10));
}
/// The upper half of the build number repeats the version.
bool is_first_98(const Version& v) { return is_98_or_later(v) && (v.build & 0xFFFF) == 1998; }
bool is_win32s(const Version& v) { return v.platform == 0; }
bool is_any(const Version&) { return true; }

struct Row {
    bool (*is)(const Version&);
    WindowsFamily family;
};

/// The first row that fits counts.
constexpr Row families[] = {
    {is_nt<4>, nt("WinNT", AppletStore::dont_load, ProfileFallback::below_windows)},
    {is<2, 5, 1>, nt("WinXP", AppletStore::dont_load_and_disallow, ProfileFallback::documents_and_settings)},
    {is_nt<5>, nt("Win2K", AppletStore::dont_load, ProfileFallback::documents_and_settings)},
    {is<1, 4, 0>, other("Win95")},
    {is<1, 4, 90>, other("WinME")},
    {is_first_98, other("Win98")},
    {is_98_or_later, other("Win98SE")},
    {is_win32s, other("Win32S")},
    {is_any, other("Win???")},
};

}  // namespace

const WindowsFamily& family_of(const Version& version) {
    return std::find_if(std::begin(families), std::end(families),
                        [&](const Row& row) { return row.is(version); })
        ->family;
}

}  // namespace britlock
