#include "platform/registry_mod.h"

namespace britlock {

namespace {

std::string nt_name(const machine::Version& v) {
    if (v.major == 4) return "WinNT";
    if (v.major == 5) return v.minor == 1 ? "WinXP" : "Win2K";
    return "Win???";
}

std::string name_9x(const machine::Version& v) {
    if (v.major == 4 && v.minor == 0) return "Win95";
    if (v.major == 4 && v.minor == 90) return "WinME";
    if (v.major > 4 || (v.major == 4 && v.minor == 10)) {
        return static_cast<int16_t>(v.build & 0xFFFF) == 1998 ? "Win98" : "Win98SE";
    }
    return "Win???";
}

std::string with_backslash(std::string path) {
    if (!path.ends_with('\\')) path += '\\';
    return path;
}

}  // namespace

const char* REGISTRY_MOD::pick(const Twin& twin) const {
    if (get_language() == 0) return twin.german;
    if (get_language() == 1) return twin.english;
    return "";
}

std::string REGISTRY_MOD::get_os_name() {
    const machine::Version v = machine_.system.version();
    switch (v.platform) {
        case 2:
            return nt_name(v);
        case 1:
            return name_9x(v);
        case 0:
            return "Win32S";
        default:
            return "Win???";
    }
}

bool REGISTRY_MOD::is_nt_family() {
    const std::string name = get_os_name();
    return name == "WinNT" || name == "Win2K" || name == "WinXP";
}

std::string REGISTRY_MOD::get_user_name() {
    const auto name = machine_.system.user_name();
    return name ? *name + '\0' : "NoUser";
}

std::string REGISTRY_MOD::get_windows_dir() { return with_backslash(machine_.system.windows_directory()); }

std::string REGISTRY_MOD::get_system_dir() { return with_backslash(machine_.system.system_directory()); }

std::string REGISTRY_MOD::get_profiles_dir() {
    // Without an answer the buffer of 255 blanks stays, and its last character becomes the backslash.
    return machine_.system.profiles_directory().value_or(std::string(254, ' ')) + '\\';
}

}  // namespace britlock
