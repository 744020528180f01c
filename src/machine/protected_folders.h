#pragma once

#include <vector>

#include "machine/system.h"
#include "machine/windows_path.h"

namespace machine {

/// A folder that is never deleted as a whole: a drive's root, the Windows, profiles and program folders and
/// what lies above them, a profile itself, and the system directory with all in it.
bool is_protected(const WindowsPath& folder, System& system);

/// The Windows, system, profiles and program folders, those on `drive` among them.
std::vector<WindowsPath> kept_folders(char drive, System& system);

}  // namespace machine
