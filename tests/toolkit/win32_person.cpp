#include "toolkit/win32_person.h"

#include <cstdio>
#include <map>
#include <optional>
#include <utility>

#include "base/text.h"
#include "toolkit/win32/units.h"
#include "toolkit/win32/widget.h"
#include "toolkit/win32/window.h"

using namespace toolkit;
using win32::Widget;

namespace {

Win32Person* somebody = nullptr;  // the system's clock calls a plain function

HWND window_of(const Control& control) { return static_cast<const Widget*>(control.peer)->handle(); }
HWND window_of(const Form& form) { return static_cast<const win32::Window*>(form.peer)->handle(); }

LRESULT ask(const Control& control, UINT id, WPARAM w = 0, LPARAM l = 0) {
    return SendMessageA(window_of(control), id, w, l);
}

// --- keyboard and mouse

BYTE code(Key key) {
    static const std::map<Key, BYTE> codes = {
        {Key::tab, VK_TAB},     {Key::back_tab, VK_TAB}, {Key::enter, VK_RETURN}, {Key::escape, VK_ESCAPE},
        {Key::space, VK_SPACE}, {Key::up, VK_UP},        {Key::down, VK_DOWN},    {Key::left, VK_LEFT},
        {Key::right, VK_RIGHT}, {Key::home, VK_HOME},    {Key::del, VK_DELETE},   {Key::f1, VK_F1},
        {Key::f4, VK_F4},       {Key::f10, VK_F10}};
    return codes.at(key);
}

void hit(BYTE code) {
    keybd_event(code, static_cast<BYTE>(MapVirtualKeyA(code, 0)), 0, 0);
    keybd_event(code, static_cast<BYTE>(MapVirtualKeyA(code, 0)), KEYEVENTF_KEYUP, 0);
}

void hit_with(BYTE held, BYTE code) {
    keybd_event(held, static_cast<BYTE>(MapVirtualKeyA(held, 0)), 0, 0);
    hit(code);
    keybd_event(held, static_cast<BYTE>(MapVirtualKeyA(held, 0)), KEYEVENTF_KEYUP, 0);
}

void hit(Key key) { key == Key::back_tab ? hit_with(VK_SHIFT, VK_TAB) : hit(code(key)); }

void point_at(const Control& control, POINT at) {
    ClientToScreen(window_of(control), &at);
    SetCursorPos(at.x, at.y);
}

void press_mouse() {
    mouse_event(MOUSEEVENTF_LEFTDOWN, 0, 0, 0, 0);
    mouse_event(MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
}

// --- places

RECT area_of(const Control& control) {
    RECT area;
    GetClientRect(window_of(control), &area);
    return area;
}

int bar_item_height() { return 32 + 3 * 5 + win32::line_height(win32::font_of(0)); }

/// The place of an item of a list bar: as high as its picture and its caption, below the header.
RECT bar_item(const Control& bar, int item) {
    const RECT area = area_of(bar);
    const int top = 22 + item * bar_item_height() - GetScrollPos(window_of(bar), SB_VERT);
    return {area.left, top, area.right, top + bar_item_height()};
}

RECT line_place(const Control& control, int line) {
    RECT place{};
    switch (control.kind()) {
        case Kind::tab:
            ask(control, TCM_GETITEMRECT, line, reinterpret_cast<LPARAM>(&place));
            return place;
        case Kind::list_bar:
            return bar_item(control, line);
        case Kind::list_view:
            place.left = LVIR_BOUNDS;
            ask(control, LVM_GETITEMRECT, line, reinterpret_cast<LPARAM>(&place));
            return place;
        default:
            if (line >= ask(control, LB_GETCOUNT)) {
                const RECT area = area_of(control);
                return {0, area.bottom - 4, area.right, area.bottom};
            }
            ask(control, LB_GETITEMRECT, line, reinterpret_cast<LPARAM>(&place));
            return place;
    }
}

/// On the mark, if the line has one.
POINT line_at(const Control& control, int line) {
    const RECT place = line_place(control, line);
    return {place.left + 8, (place.top + place.bottom) / 2};
}

unsigned colour_at(const Control& control, POINT at) {
    HDC const dc = GetDC(window_of(control));
    const COLORREF seen = GetPixel(dc, at.x, at.y);
    ReleaseDC(window_of(control), dc);
    return GetRValue(seen) << 16 | GetGValue(seen) << 8 | GetBValue(seen);
}

// --- what stands there

const char* mark_of(LRESULT state) { return state == 1 ? "[x] " : state == 0 ? "[ ] " : "[-] "; }

std::string list_box_lines(const Control& control) {
    std::string out;
    for (int i = 0; i < ask(control, LB_GETCOUNT); ++i) {
        std::string line(static_cast<size_t>(ask(control, LB_GETTEXTLEN, i)) + 1, '\0');
        line.resize(ask(control, LB_GETTEXT, i, reinterpret_cast<LPARAM>(line.data())));
        out += (ask(control, LB_GETCURSEL) == i ? "*" : "") + line + "|";
    }
    return out;
}

std::string list_view_lines(const Control& control) {
    std::string out;
    for (int i = 0; i < ask(control, LVM_GETITEMCOUNT); ++i) {
        char text[260];
        LVITEMA item{};
        item.pszText = text;
        item.cchTextMax = sizeof text;
        ask(control, LVM_GETITEMTEXTA, i, reinterpret_cast<LPARAM>(&item));
        const UINT mark = static_cast<UINT>(ask(control, LVM_GETITEMSTATE, i, LVIS_STATEIMAGEMASK));
        out += mark_of(static_cast<LRESULT>(mark >> 12) - 1) + std::string(text) + "|";
    }
    return out;
}

/// Its texts are painted, so only the mark is seen: the ground around a picture.
std::string bar_lines(const ListBar& bar) {
    UpdateWindow(window_of(bar));
    const COLORREF face = GetSysColor(COLOR_BTNFACE);
    const unsigned lit = GetRValue(face) << 16 | GetGValue(face) << 8 | GetBValue(face);
    std::string out;
    for (int i = 0; i < static_cast<int>(bar.items().size()); ++i) {
        const RECT place = bar_item(bar, i);
        const POINT beside_picture{(place.left + place.right) / 2, place.top + 4};
        out += (colour_at(bar, beside_picture) == lit ? "*" : "") + bar.items()[i].text + "|";
    }
    return out;
}

std::string entries_of(HMENU menu) {
    std::string out;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        char text[100];
        GetMenuStringA(menu, i, text, sizeof text, MF_BYPOSITION);
        const UINT state = GetMenuState(menu, i, MF_BYPOSITION);
        const std::string caption = text;
        out += state & MF_SEPARATOR ? "-" : state & MF_GRAYED ? "(" + caption + ")" : caption;
        out += "|";
    }
    return out;
}

BOOL CALLBACK note_child(HWND child, LPARAM seen) {
    char kind[20];
    GetClassNameA(child, kind, sizeof kind);
    auto& box = *reinterpret_cast<Person::Seen*>(seen);
    if (std::string_view(kind) == "Button") box.buttons.push_back(win32::text_of(child));
    if (std::string_view(kind) == "Static") box.text += win32::text_of(child);
    return TRUE;
}

/// The desktop's window manager takes its time to bring a box up: it is the same one at two ticks.
void CALLBACK on_tick(HWND, UINT, UINT_PTR id, DWORD) {
    static HWND seen = nullptr;
    HWND const active = GetForegroundWindow() == GetActiveWindow() ? GetActiveWindow() : nullptr;
    char kind[20] = "";
    GetClassNameA(active, kind, sizeof kind);
    if (std::exchange(seen, active) != active || std::string_view(kind) != "#32770") return;
    KillTimer(nullptr, id);
    seen = nullptr;
    somebody->meet_box(active);
}

}  // namespace

std::unique_ptr<Person> make_person(int&, char**) { return std::make_unique<Win32Person>(); }

Win32Person::Win32Person()
    : screen_(german, [](Ending ending) {
          std::fputs("before the end\n", stderr);
          return ending == Ending::done ? 0 : 1;
      }) {
    somebody = this;
}

// --- the hand

void Win32Person::wait() {
    const DWORD start = GetTickCount();
    while (GetTickCount() - start < 100)
        screen_.process_events();
}

void Win32Person::press(Key key) {
    menu_is_due_ = key == Key::f10;
    if (menu_is_due_) return;
    hit(key);
    screen_.process_events();
}

void Win32Person::press_access(char letter) {
    hit_with(VK_MENU, static_cast<BYTE>(letter));
    screen_.process_events();
}

void Win32Person::paste(std::string_view ansi) {
    HGLOBAL const copy = GlobalAlloc(GMEM_MOVEABLE, ansi.size() + 1);
    ansi.copy(static_cast<char*>(GlobalLock(copy)), ansi.size());
    static_cast<char*>(GlobalLock(copy))[ansi.size()] = '\0';
    GlobalUnlock(copy);
    OpenClipboard(GetActiveWindow());
    EmptyClipboard();
    SetClipboardData(CF_TEXT, copy);
    CloseClipboard();
    hit_with(VK_CONTROL, 'V');
    screen_.process_events();
}

void Win32Person::type(std::u16string_view text) {
    if (std::exchange(menu_is_due_, false)) {
        hit(Key::f10);
        hit(Key::down);
    }
    for (const char16_t letter : text) {
        const SHORT key = letter < 0x80 ? VkKeyScanA(static_cast<char>(letter)) : static_cast<SHORT>(-1);
        if (key == -1) {
            PostMessageW(GetFocus(), WM_CHAR, letter, 1);
        } else if (HIBYTE(key) & 1) {
            hit_with(VK_SHIFT, LOBYTE(key));
        } else {
            hit(LOBYTE(key));
        }
        screen_.process_events();
    }
}

void Win32Person::click(const Control& control) {
    point_at(control, {5, area_of(control).bottom / 2});
    press_mouse();
    screen_.process_events();
}

void Win32Person::click_line(const Control& control, int line) {
    Sleep(GetDoubleClickTime());  // it is no second half of a double click
    point_at(control, line_at(control, line));
    press_mouse();
    screen_.process_events();
}

void Win32Person::double_click_line(const Control& control, int line) {
    point_at(control, line_at(control, line));
    press_mouse();
    press_mouse();
    screen_.process_events();
}

void Win32Person::turn_wheel(const Control& control, int notches) {
    const RECT area = area_of(control);
    point_at(control, {area.right / 2, area.bottom / 2});
    mouse_event(MOUSEEVENTF_WHEEL, 0, 0, static_cast<DWORD>(-WHEEL_DELTA * notches), 0);
    screen_.process_events();
}

void Win32Person::close_window(const Form&) {
    hit_with(VK_MENU, VK_F4);
    screen_.process_events();
}

void Win32Person::at_next_box(Keys keys) {
    for_box_ = std::move(keys);
    SetTimer(nullptr, 0, 150, &on_tick);
}

void Win32Person::meet_box(HWND box) {
    box_ = {win32::text_of(box), "", {}};
    EnumChildWindows(box, &note_child, reinterpret_cast<LPARAM>(&box_));
    std::fputs((box_.text + "\n").c_str(), stderr);
    // The keyboard of a box is that of the moment: Tab moves it.
    for (const Key key : std::exchange(for_box_, {})) {
        PostMessageA(GetFocus(), WM_KEYDOWN, code(key), 1);
        PostMessageA(GetFocus(), WM_KEYUP, code(key), static_cast<LPARAM>(0xc0000001));
    }
}

// --- the eye

std::string Win32Person::sees(const Control& control) {
    switch (control.kind()) {
        case Kind::check_box:
            return mark_of(ask(control, BM_GETCHECK)) + win32::text_of(window_of(control));
        case Kind::text_box: {
            const std::string text = win32::text_of(window_of(control));
            const auto mask = static_cast<char>(ask(control, EM_GETPASSWORDCHAR));
            return mask ? std::string(text.size(), mask) : text;
        }
        case Kind::list_box:
        case Kind::dir_list:
        case Kind::file_list:
            return list_box_lines(control);
        case Kind::list_view:
            return list_view_lines(control);
        case Kind::list_bar:
            return bar_lines(static_cast<const ListBar&>(control));
        default:
            return win32::text_of(window_of(control));
    }
}

bool Win32Person::sees_window(const Form& form) { return form.peer && IsWindowVisible(window_of(form)); }

bool Win32Person::is_on_screen(const Control& control) { return IsWindowVisible(window_of(control)); }

bool Win32Person::is_grey(const Control& control) { return !IsWindowEnabled(window_of(control)); }

std::string Win32Person::sees_menu() {
    return menu_is_due_ ? entries_of(GetSubMenu(GetMenu(GetActiveWindow()), 0)) : "";
}

const Control* Win32Person::keyboard(const Form& form) {
    const Widget* widget = Widget::of(GetFocus());
    return widget && &widget->control().form() == &form ? &widget->control() : nullptr;
}

unsigned Win32Person::colour(const Control& control) {
    UpdateWindow(window_of(control));
    const RECT area = area_of(control);
    return colour_at(control, {area.right / 2, area.bottom / 2});
}
