#include <algorithm>

#include "toolkit/win32/units.h"
#include "toolkit/win32/widgets.h"

namespace toolkit::win32 {

namespace {

/// Drawn by itself: Windows' own keeps to the lower edge of the window and has a mind of its own on the
/// widths of panels.
class StatusBarWidget : public Drawn<StatusBar> {
  public:
    using Drawn::Drawn;

  private:
    static constexpr int gap = 2;
    static constexpr int text_margin = 4;

    void paint(HDC dc, const RECT& area) override {
        int left = 0;
        for (const StatusBar::Panel& panel : control_.panels()) {
            const int next = left + pixels(panel.width);
            RECT place{left, gap, std::min<int>(next - gap, area.right), area.bottom};
            DrawEdge(dc, &place, BDR_SUNKENOUTER, BF_RECT);
            place.left += text_margin;
            place.right -= text_margin;
            DrawTextA(dc, panel.text.c_str(), -1, &place,
                      DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | (panel.centred ? DT_CENTER : DT_LEFT));
            left = next;
        }
    }

    LRESULT on_message(const Message& message) override {
        const int x = twips(static_cast<short>(LOWORD(message.l)));
        switch (message.id) {
            case WM_LBUTTONDOWN:
            case WM_LBUTTONDBLCLK:
                return press(MouseButton::left, x);
            case WM_RBUTTONDOWN:
            case WM_RBUTTONDBLCLK:
                return press(MouseButton::right, x);
            case WM_MBUTTONDOWN:
            case WM_MBUTTONDBLCLK:
                return press(MouseButton::middle, x);
            default:
                return Drawn::on_message(message);
        }
    }

    LRESULT press(MouseButton button, int x) {
        act([this, button, x] { control_.press(button, x); });
        return 0;
    }
};

}  // namespace

Made make_widget(StatusBar& control, HWND parent) {
    return std::make_unique<StatusBarWidget>(control, parent);
}

}  // namespace toolkit::win32
