#include "toolkit/win32/printer.h"

#include "base/runtime_error.h"
#include "toolkit/win32/units.h"

namespace toolkit::win32 {

namespace {

constexpr int twips_per_inch = 1440;
constexpr int points_per_inch = 72;
/// Lines end above this; a text with a place of its own may stand below.
constexpr int bottom = 15480;

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

class PagePrinter : public Printer {
  public:
    /// Owns the device context from the first moment.
    explicit PagePrinter(HDC dc);
    ~PagePrinter() override;

    void set_font(const Font& font) override;
    void set_left(int twips) override { left_ = -twips; }
    void print(std::string_view ansi) override;
    void tab(int column) override;
    void end_line() override;
    void set_position(int x, int y) override;
    void new_page() override;
    void end_document() override;

  private:
    int wide(int twips) const { return MulDiv(twips, GetDeviceCaps(dc_, LOGPIXELSX), twips_per_inch); }
    int high(int twips) const { return MulDiv(twips, GetDeviceCaps(dc_, LOGPIXELSY), twips_per_inch); }
    int twips_wide(int dots) const { return MulDiv(dots, twips_per_inch, GetDeviceCaps(dc_, LOGPIXELSX)); }
    int twips_high(int dots) const { return MulDiv(dots, twips_per_inch, GetDeviceCaps(dc_, LOGPIXELSY)); }
    TEXTMETRICA metrics() const;
    int line_height() const { return twips_high(metrics().tmHeight); }
    void make_room();

    HDC dc_;
    HFONT font_ = nullptr;
    bool is_open_ = false;
    int left_ = 0;
    int x_ = 0, y_ = 0;    // twips; x_ from the beginning of the line
    bool placed_ = false;  // the next text stands where it was put, on whatever page this is
};

PagePrinter::PagePrinter(HDC dc) : dc_(dc) {
    DOCINFOA document{};
    document.cbSize = sizeof document;
    document.lpszDocName = "Brightlock Suite";
    is_open_ = StartDocA(dc_, &document) > 0;
    if (is_open_ && StartPage(dc_) > 0) return;
    if (is_open_) AbortDoc(dc_);
    DeleteDC(dc_);
    throw RuntimeError(482);
}

PagePrinter::~PagePrinter() {
    if (is_open_) AbortDoc(dc_);
    DeleteDC(dc_);
    if (font_) DeleteObject(font_);
}

TEXTMETRICA PagePrinter::metrics() const {
    TEXTMETRICA metrics;
    GetTextMetricsA(dc_, &metrics);
    return metrics;
}

void PagePrinter::set_font(const Font& font) {
    HFONT const before = font_;
    font_ =
        CreateFontA(-MulDiv(font.points, GetDeviceCaps(dc_, LOGPIXELSY), points_per_inch), 0, 0, 0,
                    font.bold ? FW_BOLD : FW_NORMAL, FALSE, FALSE, FALSE, ANSI_CHARSET, OUT_DEFAULT_PRECIS,
                    CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH | FF_DONTCARE, font.name.c_str());
    SelectObject(dc_, font_);
    if (before) DeleteObject(before);
}

void PagePrinter::make_room() {
    if (!placed_ && y_ + line_height() > bottom) new_page();
}

void PagePrinter::print(std::string_view ansi) {
    make_room();
    const auto length = static_cast<int>(ansi.size());
    TextOutA(dc_, wide(left_ + x_), high(y_), ansi.data(), length);
    SIZE size{};
    GetTextExtentPoint32A(dc_, ansi.data(), length, &size);
    x_ += twips_wide(size.cx);
}

void PagePrinter::tab(int column) {
    const int place = (column - 1) * twips_wide(metrics().tmAveCharWidth);
    if (x_ > place) end_line();
    x_ = place;
}

void PagePrinter::end_line() {
    make_room();
    x_ = 0;
    y_ += line_height();
    placed_ = false;
}

void PagePrinter::set_position(int x, int y) {
    x_ = x;
    y_ = y;
    placed_ = true;
}

void PagePrinter::new_page() {
    if (EndPage(dc_) <= 0 || StartPage(dc_) <= 0) throw RuntimeError(482);
    if (font_) SelectObject(dc_, font_);  // Windows 95 forgets it with the page
    x_ = y_ = 0;
}

void PagePrinter::end_document() {
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
    return std::make_unique<PagePrinter>(dc);
}

}  // namespace toolkit::win32
