#pragma once

#include <string>

#include "engine/engine.h"
#include "machine/machine.h"
#include "platform/registry_mod.h"

/// How the product takes itself off a machine. Its own key is left to the set-up program.
namespace britlock {

/// Sets everything that a box of the window can restrict to 0, for this user: the mounted hive of that name
/// on Windows NT, the running account elsewhere.
Engine::Written Deinstall_Registry(REGISTRY_MOD& reg, const std::string& user);

/// Takes the product's entry off what Windows starts at logon.
void remove_autostart(REGISTRY_MOD& reg);

/// The hive file in the program's folder, if there is one: a former design kept it there.
void remove_former_hive(const machine::Machine& machine, REGISTRY_MOD& reg);

/// The program that takes the files away. It lies in the Windows directory.
std::string setup_program(REGISTRY_MOD& reg);

}  // namespace britlock
