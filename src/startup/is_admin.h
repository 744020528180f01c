#pragma once

#include "machine/system.h"

namespace britlock {

/// Is the local Administrators group in the token of the process? RuntimeError 9 where it is not among the
/// first 21 entries of a token with more than 20 groups: the program's table ends there.
bool is_admin(machine::System& system);

}  // namespace britlock
