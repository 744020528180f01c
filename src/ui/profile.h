#pragma once

#include "startup/program_form.h"

namespace britlock {

/// A bench for the SID directory. No command of the menus leads here.
struct profile : ProgramForm {
    static constexpr const char* form_name = "profile";
    explicit profile(Program& program);

    void Form_Load() override {}
    void close_by_frame() override;

    void Command1_Click();
    void Command2_Click();

    toolkit::ListBox List1{*this, "List1"};
    toolkit::Button Command1{*this, "Command1"};
    toolkit::Button Command2{*this, "Command2"};
    toolkit::Button Command3{*this, "Command3"};
};

}  // namespace britlock
