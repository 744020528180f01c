#pragma once

#include "machine/system.h"
#include "machine/windows_path.h"

namespace machine {

/// A folder that is never deleted as a whole: a drive's root, the Windows, profiles and program folders and
/// what lies above them, a profile itself, and the system directory with all in it.
bool is_protected(const WindowsPath& folder, System& system);

}  // namespace machine
