#pragma once

#include "startup/program_form.h"

namespace britlock {

/// Sets the first password of the tool, or another one.
struct setpass : ProgramForm {
    static constexpr const char* form_name = "setpass";
    explicit setpass(Program& program);

    void Form_Load() override;
    void close_by_frame() override;

    void cmd_ok_Click();
    void cmd_abbrechen_Click();

    toolkit::PictureBox Image1{*this, "Image1"};
    toolkit::Label Label2{*this, "Label2"};
    toolkit::TextBox txt_newpw{*this, "txt_newpw"};
    toolkit::Label Label3{*this, "Label3"};
    toolkit::TextBox txt_wdh{*this, "txt_wdh"};
    toolkit::Button cmd_ok{*this, "cmd_ok"};
    toolkit::Button cmd_abbrechen{*this, "cmd_abbrechen"};

  private:
    void refuse(const Notice& why);
    bool handle_error(const RuntimeError& error);
};

}  // namespace britlock
