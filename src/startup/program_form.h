#pragma once

#include "startup/program.h"
#include "toolkit/form.h"

namespace britlock {

/// A form of the program. Each type tells its name as `form_name`.
class ProgramForm : public toolkit::Form {
  public:
    ProgramForm(Program& program, std::string_view name) : Form(program.toolkit, name), program_(program) {}

    /// Runs once, before the form is shown for the first time.
    virtual void Form_Load() = 0;

  protected:
    Program& program_;
};

}  // namespace britlock
