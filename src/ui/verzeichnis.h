#pragma once

#include "startup/program_form.h"

namespace britlock {

/// Picks the folder of shortcuts for the desktop-icon lock.
struct verzeichnis : ProgramForm {
    static constexpr const char* form_name = "verzeichnis";
    explicit verzeichnis(Program& program);

    void Form_Load() override;
    void close_by_frame() override;

    void Dir1_Change();
    void Drive1_Change();
    void Command1_Click();
    void Command2_Click();
    void Command3_Click();

    toolkit::Label Label1{*this, "Label1"};
    toolkit::DriveListBox Drive1{*this, "Drive1", program_.folders};
    toolkit::DirListBox Dir1{*this, "Dir1", program_.folders};
    toolkit::Button Command3{*this, "Command3"};
    toolkit::Button Command1{*this, "Command1"};
    toolkit::Button Command2{*this, "Command2"};

  private:
    int count_shortcuts();
};

}  // namespace britlock
