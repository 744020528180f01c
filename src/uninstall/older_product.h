#pragma once

#include "platform/registry_mod.h"

namespace britlock {

/// Is the older product installed, by its entry for the start at logon?
bool checkbritol(REGISTRY_MOD& reg);

}  // namespace britlock
