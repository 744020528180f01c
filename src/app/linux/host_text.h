#pragma once

#include <string>

#include "machine/offline/host_file.h"

/// The bytes of a file of this Linux system, as a person has named it.
machine::FileResult<std::string> read_host_file(const std::string& name);
