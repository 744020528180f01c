#pragma once

#include "machine/system.h"

namespace britlock {

/// How a family of Windows hides applets of the Control Panel.
enum class AppletStore {
    control_ini,             ///< section `don't load` of CONTROL.INI, for the whole machine
    dont_load,               ///< the user's key `Control Panel\don't load`
    dont_load_and_disallow,  ///< besides, the list DisallowCpl, which the classic view alone obeys
};

/// Where the profiles are looked for when Windows does not tell.
enum class ProfileFallback { none, below_windows, documents_and_settings };

/// What a family of Windows means for the program: the one place where families differ.
struct WindowsFamily {
    const char* name;  ///< as the program shows it
    bool nt;           ///< users have hives of their own; elsewhere there is the running account alone
    AppletStore applets;
    const char* command_line_key;  ///< where the command line is forbidden, below the user's branch
    const char* command_line_value;
    const char* registration_key;  ///< of owner and organisation, under HKEY_LOCAL_MACHINE
    ProfileFallback profiles;
};

const WindowsFamily& family_of(const machine::Version& version);

}  // namespace britlock
