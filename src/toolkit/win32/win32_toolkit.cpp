#include "toolkit/win32/win32_toolkit.h"

#include <cstdlib>
#include <utility>
#include <vector>

#include "toolkit/win32/boxes.h"
#include "toolkit/win32/file_dialog.h"
#include "toolkit/win32/message_queue.h"
#include "toolkit/win32/picture.h"
#include "toolkit/win32/printer.h"
#include "toolkit/win32/window.h"

namespace toolkit {

namespace {

using win32::Modal;
using win32::Window;

constexpr DWORD longest_nap_ms = 10;

Window* window_of(const Form& form) { return static_cast<Window*>(form.peer); }

/// What a question lies over: a window of ours also while another program is active.
HWND in_front(const Toolkit& toolkit) {
    if (const Window* active = Window::around(GetActiveWindow())) return active->handle();
    return toolkit.forms().empty() ? nullptr : window_of(*toolkit.forms().back())->handle();
}

}  // namespace

struct Win32Toolkit::Private {
    Private(Language its_language, std::function<int(Ending)> at_end)
        : language(its_language), before_end(std::move(at_end)) {}

    Language language;
    std::function<int(Ending)> before_end;
    win32::IdleCalls idle;
    win32::PrinterChoice printer;
};

Win32Toolkit::Win32Toolkit(Language language, std::function<int(Ending)> before_end)
    : Toolkit(language), d_(std::make_unique<Private>(language, std::move(before_end))) {
    InitCommonControls();
}

Win32Toolkit::~Win32Toolkit() = default;

void Win32Toolkit::run(const Event& first) {
    deliver(first);
    while (!forms().empty() && win32::pump_next()) {
    }
    end_process();
}

void Win32Toolkit::end_process(Ending ending) {
    const int code = d_->before_end ? d_->before_end(ending) : EXIT_SUCCESS;
    std::_Exit(code);
}

// --- questions

Answer Win32Toolkit::show_box(const Box& box) {
    HWND const owner = in_front(*this);
    const Modal modal(*this, owner);
    return win32::ask(box, owner, d_->language);
}

std::string Win32Toolkit::show_input_box(const std::string& title, const std::string& prompt) {
    HWND const owner = in_front(*this);
    const Modal modal(*this, owner);
    return win32::ask_line(title, prompt, owner, d_->language);
}

std::string Win32Toolkit::ask_file(const FileDialog& dialog) {
    HWND const owner = in_front(*this);
    const Modal modal(*this, owner);
    return win32::ask_file(dialog, owner, d_->language);
}

std::unique_ptr<Printer> Win32Toolkit::open_printer() { return d_->printer.open(); }

void Win32Toolkit::set_up_printer() {
    HWND const owner = in_front(*this);
    const Modal modal(*this, owner);
    d_->printer.ask(owner);
}

void Win32Toolkit::beep() { MessageBeep(MB_OK); }

bool Win32Toolkit::can_show_picture(std::string_view bytes) {
    return static_cast<bool>(win32::Picture(bytes));
}

// --- events

void Win32Toolkit::process_events() {
    win32::pump_waiting();
    // The caller waits for something in a loop: a nap for it, until something happens here.
    MsgWaitForMultipleObjects(0, nullptr, FALSE, longest_nap_ms, QS_ALLINPUT);
}

void Win32Toolkit::when_idle(const Event& call) { d_->idle.add(call); }

// --- windows

void Win32Toolkit::show_window(Form& form) {
    if (!form.peer) new Window(form);
    window_of(form)->show();
}

void Win32Toolkit::hide_window(Form& form) {
    if (form.peer) ShowWindow(window_of(form)->handle(), SW_HIDE);
}

void Win32Toolkit::destroy_window(Form& form) { delete window_of(form); }

void Win32Toolkit::show_focus(Control* control) {
    if (control && control->form().peer) window_of(control->form())->give_keyboard(control);
}

}  // namespace toolkit
