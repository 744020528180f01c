#include <algorithm>
#include <utility>

#include "toolkit/win32/picture.h"
#include "toolkit/win32/units.h"
#include "toolkit/win32/widgets.h"

namespace toolkit::win32 {

namespace {

constexpr int picture_side = 32;
constexpr int margin = 5;
constexpr int header_height = 22;
constexpr int wheel_lines = 1;

/// The group's header above a dark column of pictures with their captions.
class ListBarWidget : public Drawn<ListBar> {
  public:
    ListBarWidget(ListBar& control, HWND parent) : Drawn(control, parent, WS_VSCROLL, WS_EX_CLIENTEDGE) {}

    bool wants_key(WPARAM key) const override { return key == VK_RETURN; }

  private:
    int scrolled_ = 0;  // pixels
    int current_ = -1;  // where the keys are
    int marked_ = -1;   // as last shown
    int pressed_ = -1;

    int count() const { return static_cast<int>(control_.items().size()); }
    int item_height() const { return picture_side + 3 * margin + line_height(font()); }
    int room() const {
        RECT area;
        GetClientRect(handle(), &area);
        return std::max<int>(1, area.bottom - header_height);
    }
    RECT place_of(int item, const RECT& area) const {
        const int top = header_height + item * item_height() - scrolled_;
        return {area.left, top, area.right, top + item_height()};
    }
    /// -1: none is there.
    int item_at(LPARAM place) const {
        const int y = static_cast<short>(HIWORD(place));
        if (y < header_height) return -1;
        const int item = (y - header_height + scrolled_) / item_height();
        return item < count() ? item : -1;
    }

    void show_place(const RECT& place) override {
        Drawn::show_place(place);
        scroll_to(scrolled_);
    }

    void show_state() override {
        if (std::exchange(marked_, control_.marked()) != marked_) show_item(marked_);
        scroll_to(scrolled_);
        Drawn::show_state();
    }

    // --- drawing

    void paint(HDC dc, const RECT& area) override {
        FillRect(dc, &area, GetSysColorBrush(COLOR_BTNSHADOW));
        for (int i = 0; i < count(); ++i)
            paint_item(dc, i, place_of(i, area));
        paint_header(dc, {area.left, area.top, area.right, header_height});
    }

    void paint_header(HDC dc, RECT place) const {
        DrawFrameControl(dc, &place, DFC_BUTTON, DFCS_BUTTONPUSH);
        SetTextColor(dc, GetSysColor(COLOR_BTNTEXT));
        DrawTextA(dc, control_.text().c_str(), -1, &place, DT_SINGLELINE | DT_CENTER | DT_VCENTER);
    }

    void paint_item(HDC dc, int item, const RECT& place) const {
        const int left = (place.left + place.right - picture_side) / 2;
        const RECT picture{left, place.top + margin, left + picture_side, place.top + margin + picture_side};
        if (item == marked_) {
            RECT around = shrunk(picture, -3);
            FillRect(dc, &around, GetSysColorBrush(COLOR_BTNFACE));
            DrawEdge(dc, &around, BDR_SUNKENOUTER, BF_RECT);
        }
        if (const Drawing* drawing = control_.items()[item].picture) draw(dc, *drawing, picture);
        RECT caption{place.left, picture.bottom + margin, place.right, place.bottom};
        SetTextColor(dc, GetSysColor(COLOR_BTNHIGHLIGHT));
        DrawTextA(dc, control_.items()[item].text.c_str(), -1, &caption,
                  DT_SINGLELINE | DT_CENTER | DT_TOP | DT_NOPREFIX);
        const RECT inside = shrunk(place, 1);
        if (item == current_ && GetFocus() == handle()) DrawFocusRect(dc, &inside);
    }

    // --- scrolling

    void scroll_to(int pixels) {
        const int whole = count() * item_height();
        scrolled_ = std::clamp(pixels, 0, std::max(0, whole - room()));
        SCROLLINFO bar{};
        bar.cbSize = sizeof bar;
        bar.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
        bar.nMax = std::max(0, whole - 1);
        bar.nPage = static_cast<UINT>(room());
        bar.nPos = scrolled_;
        SetScrollInfo(handle(), SB_VERT, &bar, TRUE);
        InvalidateRect(handle(), nullptr, FALSE);
    }

    void show_item(int item) {
        if (item < 0) return;
        const int top = item * item_height();
        scroll_to(std::min(std::max(scrolled_, top + item_height() - room()), top));
    }

    void on_scroll(WPARAM what) {
        switch (LOWORD(what)) {
            case SB_LINEUP:
                return scroll_to(scrolled_ - item_height());
            case SB_LINEDOWN:
                return scroll_to(scrolled_ + item_height());
            case SB_PAGEUP:
                return scroll_to(scrolled_ - room());
            case SB_PAGEDOWN:
                return scroll_to(scrolled_ + room());
            case SB_THUMBTRACK:
            case SB_THUMBPOSITION:
                return scroll_to(HIWORD(what));
            default:
                return;
        }
    }

    // --- the person

    LRESULT on_message(const Message& message) override {
        switch (message.id) {
            case WM_LBUTTONDOWN:
            case WM_LBUTTONDBLCLK:
                pressed_ = item_at(message.l);
                go_to(pressed_);
                return 0;
            case WM_LBUTTONUP: {
                const int item = item_at(message.l);
                if (std::exchange(pressed_, -1) == item && item >= 0) open(item);
                return 0;
            }
            case WM_KEYDOWN:
                on_key(message.w);
                return 0;
            case WM_VSCROLL:
                on_scroll(message.w);
                return 0;
            case WM_MOUSEWHEEL:
                scroll_to(scrolled_ -
                          static_cast<short>(HIWORD(message.w)) / WHEEL_DELTA * wheel_lines * item_height());
                return 0;
            case WM_SETFOCUS:
            case WM_KILLFOCUS:
                InvalidateRect(handle(), nullptr, FALSE);
                return pass_on(message);
            default:
                return Drawn::on_message(message);
        }
    }

    void on_key(WPARAM key) {
        switch (key) {
            case VK_UP:
                return go_to(std::max(0, current_ - 1));
            case VK_DOWN:
                return go_to(std::min(count() - 1, current_ + 1));
            case VK_HOME:
                return go_to(0);
            case VK_END:
                return go_to(count() - 1);
            case VK_SPACE:
            case VK_RETURN:
                if (current_ >= 0) open(current_);
                return;
            default:
                return;
        }
    }

    void go_to(int item) {
        if (item < 0 || item >= count()) return;
        current_ = item;
        show_item(item);
        InvalidateRect(handle(), nullptr, FALSE);
    }

    void open(int item) {
        act([this, item] { control_.click_item(item + 1); });
    }
};

}  // namespace

Made make_widget(ListBar& control, HWND parent) { return std::make_unique<ListBarWidget>(control, parent); }

}  // namespace toolkit::win32
