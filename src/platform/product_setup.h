#pragma once

#include "machine/registry.h"

namespace britlock {

/// What a set-up does when the program comes to a machine: makes the product's key and its entry in the list
/// of installed programs. Nothing else makes the first, and a password set before the first Apply would be
/// lost.
void prepare_installation(machine::Registry& registry);

}  // namespace britlock
