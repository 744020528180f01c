#include "platform/registry_mod.h"

namespace britlock {

namespace {

std::string with_backslash(std::string path) {
    if (!path.ends_with('\\')) path += '\\';
    return path;
}

}  // namespace

std::string REGISTRY_MOD::get_os_name() { return family().name; }

bool REGISTRY_MOD::is_nt_family() { return family().nt; }

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
