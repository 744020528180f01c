#pragma once

namespace britlock {

class Program;

/// Makes the forms of this folder known to the program.
void add_forms(Program& program);

}  // namespace britlock
