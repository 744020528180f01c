#pragma once

#include <string>

#include "toolkit/toolkit.h"
#include "toolkit/win32/system.h"
#include "toolkit/words.h"

namespace toolkit::win32 {

/// Windows' own dialog. "" where the person cancels.
std::string ask_file(const FileDialog& dialog, HWND owner, Language language);

}  // namespace toolkit::win32
