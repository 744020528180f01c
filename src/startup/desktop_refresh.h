#pragma once

#include "machine/machine.h"
#include "platform/registry_mod.h"

namespace britlock {

/// The run at a restricted user's logon (`/icon`): brings the fixed icons onto the desktop. No window; every
/// failure is passed over.
void refresh_desktop(REGISTRY_MOD& reg, machine::Files& files);

}  // namespace britlock
