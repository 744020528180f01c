#pragma once

#include "startup/program_form.h"

namespace britlock {

/// Looks for a newer version of the program, fetches its installer and gives way to it.
struct Update : ProgramForm {
    static constexpr const char* form_name = "Update";
    explicit Update(Program& program);

    void Form_Load() override;
    void close_by_frame() override;

    void cmd1_Click();
    void cmd2_Click();
    void cmd_abbruch_Click();

    toolkit::PictureBox Image1{*this, "Image1"};
    toolkit::Label lbl1{*this, "lbl1"}, lbl2{*this, "lbl2"}, lbl3{*this, "lbl3"}, lbl4{*this, "lbl4"},
        lbl5{*this, "lbl5"}, lbl6{*this, "lbl6"}, lbl7{*this, "lbl7"};
    toolkit::Button cmd1{*this, "cmd1"}, cmd2{*this, "cmd2"}, cmd3{*this, "cmd3"},
        cmd_abbruch{*this, "cmd_abbruch"};

  private:
    void enable_buttons(bool enabled);
    void show_versions(const std::string& latest);
    /// False where it was cancelled.
    bool download();
    void wind_up();

    bool cancelled_ = false;
    bool downloading_ = false;
};

}  // namespace britlock
