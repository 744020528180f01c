#include <cstdio>
#include <map>
#include <utility>

#include "base/text.h"
#include "toolkit/person.h"
#include "toolkit/win32/units.h"
#include "toolkit/win32/widget.h"
#include "toolkit/win32/win32_toolkit.h"
#include "toolkit/win32/window.h"

using namespace toolkit;
using win32::Widget;

namespace {

HWND window_of(const Control& control) { return static_cast<const Widget*>(control.peer)->handle(); }

LRESULT ask(const Control& control, UINT id, WPARAM w = 0, LPARAM l = 0) {
    return SendMessageA(window_of(control), id, w, l);
}

// --- keyboard and mouse

const std::map<std::string, BYTE> codes = {{"Tab", VK_TAB},     {"Return", VK_RETURN}, {"Esc", VK_ESCAPE},
                                           {"Space", VK_SPACE}, {"Up", VK_UP},         {"Down", VK_DOWN},
                                           {"Right", VK_RIGHT}, {"Del", VK_DELETE},    {"F1", VK_F1},
                                           {"F4", VK_F4},       {"F10", VK_F10}};

void move_key(BYTE code, DWORD flags) {
    keybd_event(code, static_cast<BYTE>(MapVirtualKeyA(code, 0)), flags, 0);
}

void hit_key(BYTE code, BYTE held = 0) {
    if (held) move_key(held, 0);
    move_key(code, 0);
    move_key(code, KEYEVENTF_KEYUP);
    if (held) move_key(held, KEYEVENTF_KEYUP);
}

void point_at(const Control& control, POINT at) {
    ClientToScreen(window_of(control), &at);
    SetCursorPos(at.x, at.y);
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

/// On the mark, if there is one.
POINT place_in(const Control& control, int line) {
    RECT place = area_of(control);
    const LPARAM out = reinterpret_cast<LPARAM>(&place);
    switch (control.kind()) {
        case Kind::tab:
            ask(control, TCM_GETITEMRECT, line, out);
            break;
        case Kind::list_bar:
            place = bar_item(control, line);
            break;
        case Kind::list_view:
            place.left = LVIR_BOUNDS;
            ask(control, LVM_GETITEMRECT, line, out);
            break;
        case Kind::list_box:
        case Kind::dir_list:
            if (line < ask(control, LB_GETCOUNT)) {
                ask(control, LB_GETITEMRECT, line, out);
            } else {
                place.top = place.bottom - 4;
            }
            break;
        default:
            break;
    }
    return {place.left + 7, (place.top + place.bottom) / 2};
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
        char line[260];
        ask(control, LB_GETTEXT, i, reinterpret_cast<LPARAM>(line));
        out += (ask(control, LB_GETCURSEL) == i ? "*" : "") + std::string(line) + "|";
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
        out += (state & MF_SEPARATOR ? "-" : state & MF_GRAYED ? "(" + caption + ")" : caption) + "|";
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

/// Somebody at the Win32 renderer, with a keyboard and a mouse as the system knows them.
class Win32Person : public Person {
  public:
    Win32Person()
        : screen_(german, [](Ending ending) {
              std::fputs("before the end\n", stderr);
              return ending == Ending::done ? 0 : 1;
          }) {}
    Toolkit& screen() override { return screen_; }

    void type(std::u16string_view text) override {
        for (const char16_t letter : text) {
            const SHORT key = letter < 0x80 ? VkKeyScanA(static_cast<char>(letter)) : static_cast<SHORT>(-1);
            if (key == -1) {
                PostMessageW(GetFocus(), WM_CHAR, letter, 1);
            } else {
                hit_key(LOBYTE(key), HIBYTE(key) & 1 ? VK_SHIFT : 0);
            }
            screen_.process_events();
        }
    }
    void click(const Control& control, int line) override {
        Sleep(GetDoubleClickTime());  // it is no second half of a double click
        press_mouse(control, line, 1);
    }
    void double_click(const Control& control, int line) override { press_mouse(control, line, 2); }
    void turn_wheel(const Control& control, int notches) override {
        const RECT area = area_of(control);
        point_at(control, {area.right / 2, area.bottom / 2});
        mouse_event(MOUSEEVENTF_WHEEL, 0, 0, static_cast<DWORD>(-WHEEL_DELTA * notches), 0);
        screen_.process_events();
    }
    void close_window(const Form&) override {
        hit_key(VK_F4, VK_MENU);
        screen_.process_events();
    }
    void at_next_box(const std::string& keys) override {
        for_box_ = keys;
        SetTimer(nullptr, 0, 150, &on_tick);
    }
    void wait() override {
        const DWORD start = GetTickCount();
        while (GetTickCount() - start < 100)
            screen_.process_events();
    }

    std::string sees(const Control& control) override {
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
    bool is_on_screen(const Control& control) override {
        return control.peer && IsWindowVisible(window_of(control));
    }
    bool is_grey(const Control& control) override { return !IsWindowEnabled(window_of(control)); }
    std::string sees_menu(const Form& form) override {
        HWND const window = static_cast<const win32::Window*>(form.peer)->handle();
        return entries_of(GetSubMenu(GetMenu(window), 0));
    }
    const Control* keyboard(const Form& form) override {
        const Widget* widget = Widget::of(GetFocus());
        return widget && &widget->control().form() == &form ? &widget->control() : nullptr;
    }
    unsigned colour(const Control& control) override {
        UpdateWindow(window_of(control));
        const RECT area = area_of(control);
        return colour_at(control, {area.right / 2, area.bottom / 2});
    }

  protected:
    void hit(const std::string& key) override {
        if (at_box_) {  // its keyboard is that of the moment: Tab moves it
            PostMessageA(GetFocus(), WM_KEYDOWN, codes.at(key), 1);
            PostMessageA(GetFocus(), WM_KEYUP, codes.at(key), static_cast<LPARAM>(0xc0000001));
            return;
        }
        if (key.starts_with("Alt+")) {
            hit_key(static_cast<BYTE>(key.back()), VK_MENU);
        } else if (key == "Backtab") {
            hit_key(VK_TAB, VK_SHIFT);
        } else {
            hit_key(key.size() == 1 ? static_cast<BYTE>(key.front()) : codes.at(key));
        }
    }
    void let_it_work() override {
        if (!at_box_) screen_.process_events();
    }

  private:
    void press_mouse(const Control& control, int line, int times) {
        point_at(control, place_in(control, line));
        for (; times > 0; --times) {
            mouse_event(MOUSEEVENTF_LEFTDOWN, 0, 0, 0, 0);
            mouse_event(MOUSEEVENTF_LEFTUP, 0, 0, 0, 0);
        }
        screen_.process_events();
    }
    /// The desktop's window manager takes its time to bring a box up: it is the same one at two ticks.
    static void CALLBACK on_tick(HWND, UINT, UINT_PTR id, DWORD) {
        static HWND seen = nullptr;
        HWND const active = GetForegroundWindow() == GetActiveWindow() ? GetActiveWindow() : nullptr;
        char kind[20] = "";
        GetClassNameA(active, kind, sizeof kind);
        if (std::exchange(seen, active) != active || std::string_view(kind) != "#32770") return;
        KillTimer(nullptr, id);
        seen = nullptr;
        static_cast<Win32Person&>(*the_person).meet_box(active);
    }
    void meet_box(HWND window) {
        box = {win32::text_of(window), "", {}};
        EnumChildWindows(window, &note_child, reinterpret_cast<LPARAM>(&box));
        std::fputs((box.text + "\n").c_str(), stderr);
        at_box_ = true;
        press(for_box_);
        at_box_ = false;
    }

    Win32Toolkit screen_;
    std::string for_box_;
    bool at_box_ = false;
};

}  // namespace

std::unique_ptr<Person> make_person(int&, char**) { return std::make_unique<Win32Person>(); }
