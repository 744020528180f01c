#pragma once

#include "machine/files.h"
#include "machine/internet.h"
#include "machine/registry.h"
#include "machine/system.h"

namespace machine {

/// The machine being worked on. The entry of an edition makes one; nothing else asks what stands behind it.
struct Machine {
    Registry& registry;
    Files& files;
    Processes& processes;
    System& system;
    Internet& internet;
};

}  // namespace machine
