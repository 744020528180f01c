#pragma once

#include <cstdint>

#include "machine/codes.h"

namespace machine {

/// The file statement's error for what Windows answered.
FileError file_error(uint32_t windows_code);

}  // namespace machine
