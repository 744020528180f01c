#include "toolkit/win32/widget.h"

#include "toolkit/win32/units.h"
#include "toolkit/win32/window.h"

namespace toolkit::win32 {

namespace {

constexpr const char* property = "BrightlockWidget";

bool on_its_page(const Control& control) {
    const Control* parent = control.parent();
    return !parent || parent->kind() != Kind::tab ||
           static_cast<const TabContainer*>(parent)->current() == control.page();
}

/// The window that a message to its parent is about; null: none.
HWND subject_of(const Message& message) {
    switch (message.id) {
        case WM_COMMAND:
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLORSTATIC:
            return reinterpret_cast<HWND>(message.l);
        case WM_NOTIFY:
            return reinterpret_cast<const NMHDR*>(message.l)->hwndFrom;
        case WM_DRAWITEM:
            return reinterpret_cast<const DRAWITEMSTRUCT*>(message.l)->hwndItem;
        default:
            return nullptr;
    }
}

}  // namespace

const char* const drawn_class = "BrightlockDrawn";

void register_drawn_class() {
    WNDCLASSA kind{};
    kind.style = CS_DBLCLKS;
    kind.lpfnWndProc = DefWindowProcA;
    kind.hInstance = GetModuleHandleA(nullptr);
    kind.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
    kind.lpszClassName = drawn_class;
    RegisterClassA(&kind);
}

void paint_aside(HWND window, HFONT font, const std::function<void(HDC, const RECT&)>& paint) {
    RECT area;
    GetClientRect(window, &area);
    PAINTSTRUCT painting;
    HDC const screen = BeginPaint(window, &painting);
    HDC const aside = CreateCompatibleDC(screen);
    HBITMAP const bitmap = CreateCompatibleBitmap(screen, width_of(area), height_of(area));
    {
        const Chosen canvas(aside, bitmap);
        const Chosen letters(aside, font);
        FillRect(aside, &area, GetSysColorBrush(COLOR_BTNFACE));
        SetBkMode(aside, TRANSPARENT);
        SetTextColor(aside, GetSysColor(COLOR_BTNTEXT));
        paint(aside, area);
        BitBlt(screen, 0, 0, width_of(area), height_of(area), aside, 0, 0, SRCCOPY);
    }
    DeleteObject(bitmap);
    DeleteDC(aside);
    EndPaint(window, &painting);
}

Widget::Widget(Control& control, HWND parent, const Creation& creation)
    : control_(control),
      handle_(CreateWindowExA(creation.extended_style, creation.window_class, "",
                              creation.style | WS_CHILD | WS_CLIPSIBLINGS, 0, 0, 0, 0, parent, nullptr,
                              GetModuleHandleA(nullptr), nullptr)),
      own_procedure_(reinterpret_cast<WNDPROC>(GetWindowLongA(handle_, GWL_WNDPROC))) {
    control.peer = this;
    SetPropA(handle_, property, this);
    SetWindowLongA(handle_, GWL_WNDPROC, reinterpret_cast<LONG>(&procedure));
}

Widget::~Widget() { control_.peer = nullptr; }

Widget* Widget::of(HWND window) { return static_cast<Widget*>(GetPropA(window, property)); }

Window& Widget::window() const { return *static_cast<Window*>(control_.form().peer); }

HFONT Widget::font() const { return font_of(control_.font_size()); }

// --- the control's way to the screen

void Widget::refresh(const Control&, Change change) {
    ++refreshing_;
    if (change == Change::appended) {
        show_appended();
    } else {
        if (change != Change::content) show_common(change);
        if (change == Change::all || change == Change::content) show_state();
    }
    --refreshing_;
    window().settle_keyboard();
}

void Widget::show_common(Change change) {
    const auto is_new = [change](Change one) { return change == Change::all || change == one; };
    if (is_new(Change::font)) send(WM_SETFONT, reinterpret_cast<WPARAM>(font()), TRUE);
    if (is_new(Change::place)) show_place(pixels(control_.place()));
    if (is_new(Change::enabled)) EnableWindow(handle_, control_.responsive());
    if (is_new(Change::visible)) {
        ShowWindow(handle_, control_.visible() && on_its_page(control_) ? SW_SHOWNA : SW_HIDE);
    }
}

void Widget::show_place(const RECT& place) {
    SetWindowPos(handle_, nullptr, place.left, place.top, width_of(place), height_of(place),
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

// --- the person's way to the control

LRESULT CALLBACK Widget::procedure(HWND window, UINT id, WPARAM w, LPARAM l) noexcept {
    Widget* const widget = of(window);
    return widget ? widget->hear({id, w, l}) : DefWindowProcA(window, id, w, l);
}

LRESULT Widget::hear(const Message& message) {
    if (message.id == WM_NCDESTROY) RemovePropA(handle_, property);
    if (const auto answer = hand_on(message)) return *answer;
    if (message.id == WM_LBUTTONDOWN || message.id == WM_LBUTTONDBLCLK) {
        const POINT at{static_cast<short>(LOWORD(message.l)), static_cast<short>(HIWORD(message.l))};
        if (takes_focus_at(at) && !window().person_goes_to(control_)) return 0;
    }
    return on_message(message);
}

std::optional<LRESULT> Widget::hand_on(const Message& message) {
    HWND const subject = subject_of(message);
    Widget* const widget = subject ? of(subject) : nullptr;
    if (!widget) return {};
    const bool is_news = message.id == WM_COMMAND || message.id == WM_NOTIFY;
    if (is_news && refreshing_ > 0) return {};
    return widget->on_notification(message);
}

LRESULT Widget::pass_on(const Message& message) const {
    return CallWindowProcA(own_procedure_, handle_, message.id, message.w, message.l);
}

}  // namespace toolkit::win32
