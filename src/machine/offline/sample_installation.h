#pragma once

#include <string>

#include "base/error.h"

namespace machine {

/// In the order of windows_families.
enum class SampleFamily { winnt, win2k, winxp };

/// Makes a small Windows installation to try things on: Windows directory, machine hives, the profiles of
/// Administrator, Anna and Ben beside those that are no person's, a picture, and programs and shortcuts (that
/// do nothing) to choose from. The folder is made where it is missing; a file that is there already is
/// `refused`.
base::Result<Done> make_sample_installation(const std::string& folder, SampleFamily family);

}  // namespace machine
