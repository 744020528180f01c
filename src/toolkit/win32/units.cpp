#include "toolkit/win32/units.h"

#include <map>

namespace toolkit::win32 {

namespace {

constexpr int twips_per_inch = 1440;
constexpr int points_per_inch = 72;
constexpr int usual_points = 8;

/// A device context of the whole screen.
class Screen {
  public:
    Screen() = default;
    ~Screen() { ReleaseDC(nullptr, dc_); }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    operator HDC() const { return dc_; }

  private:
    HDC dc_ = GetDC(nullptr);
};

int dots_per_inch() {
    static const int dots = GetDeviceCaps(Screen(), LOGPIXELSY);
    return dots;
}

HFONT make_font(int points) {
    return CreateFontA(-MulDiv(points, dots_per_inch(), points_per_inch), 0, 0, 0, FW_NORMAL, FALSE, FALSE,
                       FALSE, ANSI_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY,
                       VARIABLE_PITCH | FF_SWISS, "MS Sans Serif");
}

}  // namespace

int pixels(int twips) { return MulDiv(twips, dots_per_inch(), twips_per_inch); }

RECT pixels(const Rect& twips) {
    return {pixels(twips.left), pixels(twips.top), pixels(twips.left + twips.width),
            pixels(twips.top + twips.height)};
}

int twips(int pixels) { return MulDiv(pixels, twips_per_inch, dots_per_inch()); }

HFONT font_of(int points) {
    static std::map<int, HFONT> made;
    HFONT& font = made[points > 0 ? points : usual_points];
    if (!font) font = make_font(points > 0 ? points : usual_points);
    return font;
}

int line_height(HFONT font) {
    const Screen dc;
    const Chosen in_use(dc, font);
    TEXTMETRICA metrics;
    GetTextMetricsA(dc, &metrics);
    return metrics.tmHeight;
}

int text_width(HFONT font, const std::string& text) {
    const Screen dc;
    const Chosen in_use(dc, font);
    SIZE size{};
    GetTextExtentPoint32A(dc, text.data(), static_cast<int>(text.size()), &size);
    return size.cx;
}

std::string text_of(HWND window) {
    std::string text(GetWindowTextLengthA(window) + 1, '\0');
    text.resize(GetWindowTextA(window, text.data(), static_cast<int>(text.size())));
    return text;
}

}  // namespace toolkit::win32
