#pragma once

#include <sstream>

#include "toolkit/gallery.h"
#include "toolkit/toolkit.h"

/// Somebody in front of a renderer's windows: what a hand can do there and an eye can see. Each renderer
/// brings one, and is held to the same promises by it.
class Person {
  public:
    virtual ~Person() = default;
    virtual toolkit::Toolkit& screen() = 0;
    PaperFolders folders;

    // --- the hand
    /// One key after the other, as "Down Alt+N Return". They go to whatever has the keyboard.
    void press(std::string_view keys) {
        std::istringstream words{std::string(keys)};
        for (std::string key; words >> key;)
            hit(key);
        let_it_work();
    }
    /// Letter by letter, those that no keyboard has included.
    virtual void type(std::u16string_view text) = 0;
    /// On its mark, or near its left upper corner. With a line: on that of a list, a tab, or an item of a
    /// list bar, from 0; beyond the last: on the empty place below.
    virtual void click(const toolkit::Control& control, int line = 0) = 0;
    virtual void double_click(const toolkit::Control& control, int line) = 0;
    /// Down where positive.
    virtual void turn_wheel(const toolkit::Control& control, int notches) = 0;
    virtual void close_window(const toolkit::Form& form) = 0;
    /// Presses these keys at the box or dialog that the next event opens.
    virtual void at_next_box(const std::string& keys) = 0;
    /// Lets the screen finish what it has begun.
    virtual void wait() = 0;

    // --- the eye
    /// The text; of a check box "[x] caption", of a list its lines, the selected one with a star, each with
    /// its mark and a bar after it.
    virtual std::string sees(const toolkit::Control& control) = 0;
    virtual bool is_on_screen(const toolkit::Control& control) = 0;
    virtual bool is_grey(const toolkit::Control& control) = 0;
    /// Entries of the form's first menu, as "&Open|-|(&Grey)|"; hidden ones are not there.
    virtual std::string sees_menu(const toolkit::Form& form) = 0;
    /// Null: the keyboard is at none of the form's controls.
    virtual const toolkit::Control* keyboard(const toolkit::Form& form) = 0;
    /// 0xRRGGBB in the middle.
    virtual unsigned colour(const toolkit::Control& control) = 0;
    /// The last box as it was when the keys of at_next_box() were pressed.
    struct Seen {
        std::string title, text;
        std::vector<std::string> buttons;
    } box;

  protected:
    /// A key by the name that stands on it in English; "Alt+N" with a letter, "Backtab" for Shift and Tab.
    virtual void hit(const std::string& key) = 0;
    /// After the keys, where they wait until somebody fetches them.
    virtual void let_it_work() {}
};

/// Made by the renderer's own part of the test program. `argc` and `argv` are those of main().
std::unique_ptr<Person> make_person(int& argc, char** argv);

/// The one of this test program.
inline std::unique_ptr<Person> the_person;
