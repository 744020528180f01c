#include "toolkit/win32/printer.h"

#include <cmath>

#include "base/runtime_error.h"
#include "toolkit/page_printer.h"
#include "toolkit/win32/units.h"

namespace toolkit::win32 {

namespace {

constexpr double twips_per_inch = 1440;
constexpr int points_per_inch = 72;

/// Memory of the system that is read while this lives.
template <class T>
class Locked {
  public:
    explicit Locked(HGLOBAL memory) : memory_(memory), data_(static_cast<T*>(GlobalLock(memory))) {}
    ~Locked() { GlobalUnlock(memory_); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    T* get() const { return data_; }
    T* operator->() const { return data_; }

  private:
    HGLOBAL memory_;
    T* data_;
};

class GdiPrinter : public PagePrinter {
  public:
    /// Owns the device context from the first moment.
    explicit GdiPrinter(HDC dc);
    ~GdiPrinter() override;

    void set_font(const Font& font) override;
    void end_document() override;

  private:
    Metrics metrics() override;
    double draw(double x, double y, std::string_view ansi) override;
    void turn_page() override;
    /// Which of the device's resolutions: LOGPIXELSX or LOGPIXELSY.
    double dots_per_twip(int which) const { return GetDeviceCaps(dc_, which) / twips_per_inch; }

    HDC dc_;
    HFONT font_ = nullptr;
    bool is_open_ = false;
};

GdiPrinter::GdiPrinter(HDC dc) : dc_(dc) {
    DOCINFOA document{};
    document.cbSize = sizeof document;
    document.lpszDocName = "Brightlock Suite";
    is_open_ = StartDocA(dc_, &document) > 0;
    if (is_open_ && StartPage(dc_) > 0) return;
    if (is_open_) AbortDoc(dc_);
    DeleteDC(dc_);
    throw RuntimeError(482);
}

GdiPrinter::~GdiPrinter() {
    if (is_open_) AbortDoc(dc_);
    DeleteDC(dc_);
    if (font_) DeleteObject(font_);
}

PagePrinter::Metrics GdiPrinter::metrics() {
    TEXTMETRICA metrics;
    GetTextMetricsA(dc_, &metrics);
    return {metrics.tmHeight / dots_per_twip(LOGPIXELSY), metrics.tmAveCharWidth / dots_per_twip(LOGPIXELSX)};
}

void GdiPrinter::set_font(const Font& font) {
    HFONT const before = font_;
    font_ =
        CreateFontA(-MulDiv(font.points, GetDeviceCaps(dc_, LOGPIXELSY), points_per_inch), 0, 0, 0,
                    font.bold ? FW_BOLD : FW_NORMAL, FALSE, FALSE, FALSE, ANSI_CHARSET, OUT_DEFAULT_PRECIS,
                    CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH | FF_DONTCARE, font.name.c_str());
    SelectObject(dc_, font_);
    if (before) DeleteObject(before);
}

double GdiPrinter::draw(double x, double y, std::string_view ansi) {
    const auto length = static_cast<int>(ansi.size());
    const double wide = dots_per_twip(LOGPIXELSX);
    TextOutA(dc_, std::lround(x * wide), std::lround(y * dots_per_twip(LOGPIXELSY)), ansi.data(), length);
    SIZE size{};
    GetTextExtentPoint32A(dc_, ansi.data(), length, &size);
    return size.cx / wide;
}

void GdiPrinter::turn_page() {
    if (EndPage(dc_) <= 0 || StartPage(dc_) <= 0) throw RuntimeError(482);
    if (font_) SelectObject(dc_, font_);  // Windows 95 forgets it with the page
}

void GdiPrinter::end_document() {
    const bool page_is_out = EndPage(dc_) > 0;
    if (!page_is_out || EndDoc(dc_) <= 0) throw RuntimeError(482);
    is_open_ = false;
}

}  // namespace

PrinterChoice::~PrinterChoice() {
    if (settings_) GlobalFree(settings_);
    if (names_) GlobalFree(names_);
}

void PrinterChoice::ask(HWND owner) {
    PRINTDLGA wish{};
    wish.lStructSize = sizeof wish;
    wish.hwndOwner = owner;
    wish.hDevMode = settings_;
    wish.hDevNames = names_;
    wish.Flags = PD_PRINTSETUP;
    PrintDlgA(&wish);
    settings_ = wish.hDevMode;  // the dialog may have moved them, cancelled or not
    names_ = wish.hDevNames;
}

std::unique_ptr<Printer> PrinterChoice::open() {
    if (!names_) {
        PRINTDLGA usual{};
        usual.lStructSize = sizeof usual;
        usual.Flags = PD_RETURNDEFAULT | PD_NOWARNING;
        if (!PrintDlgA(&usual)) throw RuntimeError(482);
        settings_ = usual.hDevMode;
        names_ = usual.hDevNames;
    }
    if (!names_ || !settings_) throw RuntimeError(482);
    const Locked<const DEVNAMES> names(names_);
    const Locked<DEVMODEA> settings(settings_);
    settings->dmPaperSize = DMPAPER_A4;
    settings->dmFields |= DM_PAPERSIZE;
    const auto text_at = [&names](WORD offset) {
        return reinterpret_cast<const char*>(names.get()) + offset;
    };
    HDC const dc =
        CreateDCA(text_at(names->wDriverOffset), text_at(names->wDeviceOffset), nullptr, settings.get());
    if (!dc) throw RuntimeError(482);
    return std::make_unique<GdiPrinter>(dc);
}

}  // namespace toolkit::win32
