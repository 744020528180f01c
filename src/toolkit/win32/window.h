#pragma once

#include <memory>
#include <vector>

#include "toolkit/form.h"
#include "toolkit/keyboard.h"
#include "toolkit/win32/menu_bar.h"
#include "toolkit/win32/system.h"
#include "toolkit/win32/widget.h"

namespace toolkit::win32 {

class TimerPeer;

/// The window of a form: fixed in size. Made when the form is first shown; menu entries and controls that the
/// form gains later have no part in it.
class Window : public toolkit::WindowPeer {
  public:
    explicit Window(Form& form);
    ~Window() override;

    void refresh() override;
    void show();
    HWND handle() const { return handle_; }
    /// Null where the window, or the one it lies in, is not a form's.
    static Window* around(HWND window);

    /// A key on its way to this window or one in it, and its letter where it has one: true where the form has
    /// taken it.
    bool takes_key(const MSG& message, char letter);
    /// The person goes to a control. False where what came of it has swallowed the click that led there.
    bool person_goes_to(Control& control);
    /// The keyboard is this control's, as soon as the window is active and the control can be used.
    void give_keyboard(Control* control);
    /// Puts the keyboard where it belongs, after something came or went.
    void settle_keyboard();

  private:
    static LRESULT CALLBACK procedure(HWND window, UINT id, WPARAM w, LPARAM l) noexcept;
    LRESULT hear(const Message& message);
    void on_timer(UINT_PTR id);

    void make_controls();
    void make(Control& control);
    void order_controls();
    void show_size();
    void show_icon();
    void show_pointer() const;
    void show_default_button();
    void place_on_screen();

    bool is_waiting() const;
    bool takes_key_down(WPARAM key);
    bool takes_access_key(char letter);
    void use(Control& control, char letter);
    void step(Step step);
    void press(Button* button);

    Form& form_;
    HWND handle_;
    MenuBar menu_bar_;
    std::vector<std::unique_ptr<Widget>> widgets_;
    std::vector<std::unique_ptr<TimerPeer>> timers_;
    HICON icons_[2] = {};
    Control* keyboard_ = nullptr;  ///< the control that the keyboard belongs to, even while it cannot be used
};

}  // namespace toolkit::win32
