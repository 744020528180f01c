#include "toolkit/win32/window.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "toolkit/spoken.h"
#include "toolkit/toolkit.h"
#include "toolkit/win32/boxes.h"
#include "toolkit/win32/picture.h"
#include "toolkit/win32/timer.h"
#include "toolkit/win32/units.h"
#include "toolkit/win32/widgets.h"

namespace toolkit::win32 {

namespace {

constexpr const char* form_class = "BrightlockForm";
constexpr DWORD form_style = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN;

template <class C>
C& as(Control& control) {
    return static_cast<C&>(control);
}

Widget* widget_of(const Control& control) {
    return control.kind() == Kind::timer ? nullptr : static_cast<Widget*>(control.peer);
}

void register_form_class(WNDPROC procedure) {
    WNDCLASSA kind{};
    kind.lpfnWndProc = procedure;
    kind.hInstance = GetModuleHandleA(nullptr);
    kind.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
    kind.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
    kind.lpszClassName = form_class;
    RegisterClassA(&kind);
}

}  // namespace

// --- creation

Window::Window(Form& form) : form_(form), handle_(nullptr), menu_bar_(form) {
    register_form_class(&procedure);
    register_drawn_class();
    handle_ = CreateWindowExA(0, form_class, "", form_style, CW_USEDEFAULT, CW_USEDEFAULT, 0, 0, nullptr,
                              nullptr, GetModuleHandleA(nullptr), nullptr);
    SetWindowLongA(handle_, GWL_USERDATA, reinterpret_cast<LONG>(this));
    form.peer = this;
    make_controls();
    order_controls();
    refresh();
    show_icon();
    place_on_screen();
    keyboard_ = next_stop(form_, nullptr, Step::forward);
}

Window::~Window() {
    timers_.clear();
    DestroyWindow(handle_);
    widgets_.clear();
    for (HICON icon : icons_) {
        if (icon) DestroyIcon(icon);
    }
    form_.peer = nullptr;
}

void Window::make_controls() {
    for (Control* control : form_.controls())
        make(*control);
}

void Window::make(Control& control) {
    if (control.peer) return;
    if (control.kind() == Kind::timer) {
        timers_.push_back(std::make_unique<TimerPeer>(as<Timer>(control), handle_));
        return;
    }
    if (control.parent()) make(*control.parent());
    HWND const parent = control.parent() ? widget_of(*control.parent())->handle() : handle_;
    widgets_.push_back(visit(control, [&](auto& any) { return make_widget(any, parent); }));
    widgets_.back()->refresh(control, Change::all);
}

/// What comes later lies above.
void Window::order_controls() {
    for (const Control* control : form_.controls()) {
        if (const Widget* widget = widget_of(*control))
            SetWindowPos(widget->handle(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
}

Window* Window::around(HWND window) {
    for (; window; window = GetParent(window)) {
        char name[32];
        GetClassNameA(window, name, sizeof name);
        if (std::string_view(name) == form_class)
            return reinterpret_cast<Window*>(GetWindowLongA(window, GWL_USERDATA));
    }
    return nullptr;
}

// --- look

void Window::refresh() {
    if (text_of(handle_) != form_.caption()) SetWindowTextA(handle_, form_.caption().c_str());
    HMENU const before = GetMenu(handle_);
    SetMenu(handle_, menu_bar_.build());
    if (before) DestroyMenu(before);
    show_size();
    show_pointer();
}

/// The client area is without the menu bar, which has two lines where the window is narrow.
void Window::show_size() {
    const int width = pixels(form_.client_width());
    const int height = pixels(form_.client_height());
    RECT frame{0, 0, width, height};
    AdjustWindowRectEx(&frame, form_style, GetMenu(handle_) != nullptr, 0);
    const auto resize = [this, &frame](int more) {
        SetWindowPos(handle_, nullptr, 0, 0, width_of(frame), height_of(frame) + more,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    };
    RECT client;
    GetClientRect(handle_, &client);
    if (width_of(client) == width && height_of(client) == height) return;
    resize(0);
    GetClientRect(handle_, &client);
    if (height_of(client) != height) resize(height - height_of(client));
}

void Window::show_icon() {
    if (!form_.icon()) return;
    static constexpr struct {
        WPARAM kind;
        int side;
    } sizes[] = {{ICON_SMALL, SM_CXSMICON}, {ICON_BIG, SM_CXICON}};
    for (size_t i = 0; i < std::size(sizes); ++i) {
        icons_[i] = icon_of(*form_.icon(), GetSystemMetrics(sizes[i].side));
        SendMessageA(handle_, WM_SETICON, sizes[i].kind, reinterpret_cast<LPARAM>(icons_[i]));
    }
}

/// Windows asks for the pointer when it moves; the person who waits may hold it still.
void Window::show_pointer() const {
    POINT at;
    GetCursorPos(&at);
    HWND const below = WindowFromPoint(at);
    if (below && around(below) == this)
        SendMessageA(below, WM_SETCURSOR, reinterpret_cast<WPARAM>(below),
                     MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
}

/// Over the window that is active, else in the middle of the desktop.
void Window::place_on_screen() {
    RECT room;
    if (const Window* active = around(GetActiveWindow())) {
        GetWindowRect(active->handle_, &room);
    } else {
        SystemParametersInfoA(SPI_GETWORKAREA, 0, &room, 0);
    }
    RECT own;
    GetWindowRect(handle_, &own);
    const int left = room.left + (width_of(room) - width_of(own)) / 2;
    const int top = room.top + (height_of(room) - height_of(own)) / 2;
    SetWindowPos(handle_, nullptr, std::max(0, left), std::max(0, top), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Window::show() {
    ShowWindow(handle_, IsIconic(handle_) ? SW_RESTORE : SW_SHOW);
    SetForegroundWindow(handle_);
    settle_keyboard();
}

// --- messages

LRESULT CALLBACK Window::procedure(HWND window, UINT id, WPARAM w, LPARAM l) noexcept {
    auto* const self = reinterpret_cast<Window*>(GetWindowLongA(window, GWL_USERDATA));
    return self ? self->hear({id, w, l}) : DefWindowProcA(window, id, w, l);
}

LRESULT Window::hear(const Message& message) {
    if (const auto answer = Widget::hand_on(message)) return *answer;
    switch (message.id) {
        case WM_CLOSE:  // the window goes when the form is unloaded
            form_.toolkit().deliver([this] { form_.close_by_frame(); });
            return 0;
        case WM_COMMAND:
            if (MenuItem* item = message.l == 0 ? menu_bar_.entry(LOWORD(message.w)) : nullptr)
                form_.toolkit().deliver([item] { item->click(); });
            return 0;
        case WM_TIMER:
            on_timer(message.w);
            return 0;
        case WM_SETFOCUS:
            settle_keyboard();
            return 0;
        case WM_SETCURSOR:
            if (form_.mouse_pointer() != MousePointer::hourglass || LOWORD(message.l) != HTCLIENT) break;
            SetCursor(LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_WAIT)));
            return TRUE;
        default:
            break;
    }
    return DefWindowProcA(handle_, message.id, message.w, message.l);
}

void Window::on_timer(UINT_PTR id) {
    for (const auto& timer : timers_) {
        if (timer->id() != id) continue;
        Timer& control = timer->control();
        form_.toolkit().deliver([&control] { control.tick(); });
        return;
    }
}

// --- keyboard

bool Window::person_goes_to(Control& control) {
    Toolkit& toolkit = form_.toolkit();
    const int boxes = boxes_shown();
    toolkit.deliver([&] { toolkit.set_focus(&control); });
    if (toolkit.focus() != &control) return false;
    give_keyboard(&control);
    return boxes == boxes_shown() && control.usable();
}

void Window::give_keyboard(Control* control) {
    keyboard_ = control;
    settle_keyboard();
}

/// While the control with the keyboard is away, the keys go to the window itself: to nobody.
void Window::settle_keyboard() {
    if (GetActiveWindow() == handle_) {
        const Widget* widget = keyboard_ && keyboard_->usable() ? widget_of(*keyboard_) : nullptr;
        HWND const target = widget ? widget->handle() : handle_;
        if (GetFocus() != target) SetFocus(target);
    }
    show_default_button();
}

bool Window::is_waiting() const { return keyboard_ && !keyboard_->usable() && form_.toolkit().busy(); }

bool Window::takes_key(const MSG& message, char letter) {
    switch (message.message) {
        case WM_KEYDOWN: {
            if (is_waiting()) return true;  // typed at a control that was there just now
            const Widget* widget = keyboard_ ? widget_of(*keyboard_) : nullptr;
            return !(widget && widget->wants_key(message.wParam)) && takes_key_down(message.wParam);
        }
        case WM_CHAR:
            return is_waiting();
        case WM_SYSCHAR:
            return takes_access_key(letter);
        default:
            return false;
    }
}

bool Window::takes_key_down(WPARAM key) {
    const bool at_button =
        keyboard_ && (keyboard_->kind() == Kind::button || keyboard_->kind() == Kind::check_box);
    switch (key) {
        case VK_TAB:
            step(GetKeyState(VK_SHIFT) < 0 ? Step::back : Step::forward);
            return true;
        case VK_LEFT:
        case VK_UP:
            if (at_button) step(Step::back);
            return at_button;
        case VK_RIGHT:
        case VK_DOWN:
            if (at_button) step(Step::forward);
            return at_button;
        case VK_RETURN:
            press(button_for_enter(form_, keyboard_));
            return true;
        case VK_ESCAPE:
            press(button_for_escape(form_));
            return true;
        case VK_F1:
            if (form_.on_help) form_.toolkit().deliver(form_.on_help);
            return true;
        default:
            return false;
    }
}

void Window::press(Button* button) {
    if (button) form_.toolkit().deliver([button] { button->press_by_key(); });
}

void Window::step(Step step) {
    Control* to = next_stop(form_, keyboard_, step);
    if (!to) to = next_stop(form_, nullptr, step);
    if (!to || !person_goes_to(*to) || to->kind() != Kind::text_box) return;
    SendMessageA(widget_of(*to)->handle(), EM_SETSEL, 0, -1);  // what is typed next replaces it
}

namespace {

/// The marked letter of a caption, as a capital; NUL: none.
char access_key(std::string_view caption) {
    for (size_t i = 0; i + 1 < caption.size(); ++i) {
        if (caption[i] == '&' && caption[++i] != '&') return text::upper(caption[i]);
    }
    return '\0';
}

/// From 0; -1: no tab bears it.
int tab_with_key(const TabContainer& tab, char letter) {
    const auto& captions = tab.captions();
    const auto found = std::find_if(captions.begin(), captions.end(),
                                    [letter](const std::string& text) { return access_key(text) == letter; });
    return found == captions.end() ? -1 : static_cast<int>(found - captions.begin());
}

/// The control that a person means by this key; null: not this one.
Control* meant_by(Control& control, char letter) {
    if (!control.usable()) return nullptr;
    switch (control.kind()) {
        case Kind::button:
        case Kind::check_box:
            return access_key(control.text()) == letter ? &control : nullptr;
        case Kind::tab:
            return tab_with_key(as<TabContainer>(control), letter) >= 0 ? &control : nullptr;
        default: {
            const Control* label = label_of(control);
            const bool is_named = label && label->kind() == Kind::label && label->on_show();
            return is_named && access_key(label->text()) == letter ? &control : nullptr;
        }
    }
}

}  // namespace

/// Several controls may bear one letter: the next one after that with the keyboard is meant.
bool Window::takes_access_key(char letter) {
    std::vector<Control*> order = form_.controls();
    const auto now = std::find(order.begin(), order.end(), keyboard_);
    if (now != order.end()) std::rotate(order.begin(), now + 1, order.end());
    for (Control* control : order) {
        if (!meant_by(*control, text::upper(letter))) continue;
        use(*control, text::upper(letter));
        return true;
    }
    return false;
}

void Window::use(Control& control, char letter) {
    if (!person_goes_to(control)) return;
    form_.toolkit().deliver([&control, letter] {
        switch (control.kind()) {
            case Kind::button:
                return as<Button>(control).click();
            case Kind::check_box:
                return as<CheckBox>(control).click();
            case Kind::tab:
                return as<TabContainer>(control).click_tab(tab_with_key(as<TabContainer>(control), letter));
            default:
                return;
        }
    });
}

void Window::show_default_button() {
    const Button* pressed_by_enter = button_for_enter(form_, keyboard_);
    for (const Control* control : form_.controls()) {
        const Widget* widget = control->kind() == Kind::button ? widget_of(*control) : nullptr;
        if (!widget) continue;
        const LONG wanted = control == pressed_by_enter ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON;
        const LONG now = GetWindowLongA(widget->handle(), GWL_STYLE) & BS_TYPEMASK;
        if (now != wanted) SendMessageA(widget->handle(), BM_SETSTYLE, static_cast<WPARAM>(wanted), TRUE);
    }
}

}  // namespace toolkit::win32
