#pragma once

#include "toolkit/person.h"
#include "toolkit/win32/system.h"
#include "toolkit/win32/win32_toolkit.h"

/// Somebody at the Win32 renderer, with a keyboard and a mouse as the system knows them.
class Win32Person : public Person {
  public:
    Win32Person();

    toolkit::Toolkit& screen() override { return screen_; }
    toolkit::FolderSource& folders() override { return folders_; }

    void press(Key key) override;
    void press_access(char letter) override;
    void paste(std::string_view ansi) override;
    void type(std::u16string_view text) override;
    void click(const toolkit::Control& control) override;
    void click_line(const toolkit::Control& control, int line) override;
    void double_click_line(const toolkit::Control& control, int line) override;
    void turn_wheel(const toolkit::Control& control, int notches) override;
    void close_window(const toolkit::Form& form) override;
    void at_next_box(Keys keys) override;
    void wait() override;

    std::string sees(const toolkit::Control& control) override;
    bool sees_window(const toolkit::Form& form) override;
    bool is_on_screen(const toolkit::Control& control) override;
    bool is_grey(const toolkit::Control& control) override;
    std::string sees_menu() override;
    const toolkit::Control* keyboard(const toolkit::Form& form) override;
    unsigned colour(const toolkit::Control& control) override;
    Seen last_box() override { return box_; }

    /// Looks at it and presses the keys that are meant for it.
    void meet_box(HWND box);

  private:
    PaperFolders folders_;
    toolkit::Win32Toolkit screen_;
    Keys for_box_;
    Seen box_;
    /// The menu bar's own loop would not let the test go on: the key that opens it waits for the next one.
    bool menu_is_due_ = false;
};
