#pragma once

#include "startup/program_form.h"

namespace britlock {

/// The entry of the process, and the form that asks for the password.
struct getpass : ProgramForm {
    static constexpr const char* form_name = "getpass";
    explicit getpass(Program& program);

    void Form_Load() override;
    void close_by_frame() override;

    void cmd_ok_Click();
    void Command2_Click();

    toolkit::PictureBox Image1{*this, "Image1"};
    toolkit::Label Label1{*this, "Label1"};
    toolkit::TextBox txt_pw{*this, "txt_pw"};
    toolkit::Button cmd_ok{*this, "cmd_ok"};
    toolkit::Button Command2{*this, "Command2"};

  private:
    void register_uninstall_command();
    void warn_without_rights();
};

}  // namespace britlock
