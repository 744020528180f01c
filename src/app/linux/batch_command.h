#pragma once

#include <string>
#include <vector>

#include "base/twin.h"

/// Runs a command line whose first word is a verb: restricts users, shows or saves their restrictions, all
/// without a window. `executables` is the folder of this program and the hive tool. Gives the exit code.
int run_batch(const std::vector<std::string>& words, const std::string& executables, Language language);
