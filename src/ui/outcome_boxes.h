#pragma once

#include <string>
#include <vector>

#include "startup/program.h"

/// What the floors below tell as values, said in boxes.
namespace britlock {

/// Why the hive `file` could not be used.
void say(Program& program, HIVER_MOD::Complaint complaint, const std::string& file);
void say(Program& program, SidProblem problem);
void say(Program& program, Engine::Written outcome);
/// Profiles whose hive files are missing or empty; nothing where there are none.
void say_unreadable(Program& program, const std::vector<std::string>& hive_files);

}  // namespace britlock
