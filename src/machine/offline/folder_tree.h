#pragma once

#include <string>

#include "machine/offline/host_file.h"

namespace machine {

/// Both stop at the first error and never leave the file system on which they began.

/// Removes all that a folder holds. Links are removed themselves, never what they lead to.
FileError delete_content(const Descriptor& folder);

/// Copies all that a folder holds into another one, over what bears the same name there. Links are left out,
/// and so is the target itself where it lies in the source.
FileError copy_content(const Descriptor& from, const Descriptor& to);

}  // namespace machine
