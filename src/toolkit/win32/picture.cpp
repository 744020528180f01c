#include "toolkit/win32/picture.h"

#include <cmath>
#include <cstring>
#include <vector>

#include "toolkit/win32/picture_format.h"
#include "toolkit/win32/units.h"
// after Windows' own
#include <ocidl.h>

namespace toolkit::win32 {

namespace {

constexpr int drawing_units = 32;

// Bound when the first picture is shown: the program starts without OLE.
using CreateStream = HRESULT WINAPI(HGLOBAL, BOOL, IStream**);
using LoadPicture = HRESULT WINAPI(IStream*, LONG, BOOL, REFIID, void**);

LoadPicture* load_picture() {
    static LoadPicture* const newer = bind<LoadPicture>("oleaut32.dll", "OleLoadPicture");
    if (newer) return newer;
    static LoadPicture* const older = bind<LoadPicture>("olepro32.dll", "OleLoadPicture");
    return older;
}

bool start_ole() {
    static auto* const initialize = bind<HRESULT WINAPI(void*)>("ole32.dll", "OleInitialize");
    static const bool started = initialize && SUCCEEDED(initialize(nullptr));
    return started;
}

/// A stream that owns a copy of the bytes; null where there is no room.
IStream* stream_of(std::string_view bytes) {
    static auto* const create = bind<CreateStream>("ole32.dll", "CreateStreamOnHGlobal");
    HGLOBAL const memory = create ? GlobalAlloc(GMEM_MOVEABLE, bytes.size()) : nullptr;
    if (!memory) return nullptr;
    std::memcpy(GlobalLock(memory), bytes.data(), bytes.size());
    GlobalUnlock(memory);
    IStream* stream = nullptr;
    if (SUCCEEDED(create(memory, TRUE, &stream))) return stream;
    GlobalFree(memory);
    return nullptr;
}

}  // namespace

// --- files

Picture::Picture(std::string_view bytes) {
    if (!is_sane_picture(bytes) || !start_ole() || !load_picture()) return;
    IStream* const stream = stream_of(bytes);
    if (!stream) return;
    void* loaded = nullptr;
    const auto length = static_cast<LONG>(bytes.size());
    if (SUCCEEDED(load_picture()(stream, length, FALSE, IID_IPicture, &loaded)))
        picture_.reset(static_cast<IPicture*>(loaded));
    stream->Release();
}

void Picture::Release::operator()(IPicture* picture) const { picture->Release(); }

SIZE Picture::size() const {
    SIZE size{};
    picture_->get_Width(&size.cx);
    picture_->get_Height(&size.cy);
    return size;
}

void Picture::draw(HDC dc, const RECT& place) const {
    const SIZE whole = size();  // its own y goes upwards
    SetStretchBltMode(dc, COLORONCOLOR);
    picture_->Render(dc, place.left, place.top, width_of(place), height_of(place), 0, whole.cy, whole.cx,
                     -whole.cy, nullptr);
}

RECT fitted(SIZE picture, const RECT& room) {
    const int most_wide = width_of(room);
    const int most_high = height_of(room);
    if (picture.cx <= 0 || picture.cy <= 0) return room;
    const bool is_wide = int64_t{picture.cx} * most_high > int64_t{picture.cy} * most_wide;
    const int wide = is_wide ? most_wide : MulDiv(most_high, picture.cx, picture.cy);
    const int high = is_wide ? MulDiv(most_wide, picture.cy, picture.cx) : most_high;
    const int left = room.left + (most_wide - wide) / 2;
    const int top = room.top + (most_high - high) / 2;
    return {left, top, left + wide, top + high};
}

// --- drawings

namespace {

void draw(HDC dc, const Shape& shape, const RECT& square) {
    const auto x = [&](float at) {
        return square.left + std::lround(at * static_cast<float>(width_of(square)) / drawing_units);
    };
    const auto y = [&](float at) {
        return square.top + std::lround(at * static_cast<float>(height_of(square)) / drawing_units);
    };
    const auto& at = shape.points;
    if (shape.kind == Shape::Kind::polygon) {
        std::vector<POINT> corners;
        for (size_t i = 0; i + 1 < at.size(); i += 2)
            corners.push_back({x(at[i]), y(at[i + 1])});
        Polygon(dc, corners.data(), static_cast<int>(corners.size()));
        return;
    }
    if (at.size() < 4) return;
    // Without a pen the last row and column stay free.
    const auto place = shape.kind == Shape::Kind::box ? &Rectangle : &Ellipse;
    place(dc, x(at[0]), y(at[1]), x(at[2]) + 1, y(at[3]) + 1);
}

COLORREF colour_of(uint32_t rgb) { return RGB(rgb >> 16 & 0xff, rgb >> 8 & 0xff, rgb & 0xff); }

/// What an icon lets through: white where nothing is drawn.
HBITMAP mask_of(const Drawing& drawing, int side) {
    HDC const dc = CreateCompatibleDC(nullptr);
    HBITMAP const mask = CreateBitmap(side, side, 1, 1, nullptr);
    {
        const Chosen canvas(dc, mask);
        PatBlt(dc, 0, 0, side, side, WHITENESS);
        const Chosen pen(dc, GetStockObject(NULL_PEN));
        const Chosen brush(dc, GetStockObject(BLACK_BRUSH));
        for (const Shape& shape : drawing.shapes)
            draw(dc, shape, {0, 0, side, side});
    }
    DeleteDC(dc);
    return mask;
}

HBITMAP colours_of(const Drawing& drawing, int side) {
    HDC const screen = GetDC(nullptr);
    HDC const dc = CreateCompatibleDC(screen);
    HBITMAP const bitmap = CreateCompatibleBitmap(screen, side, side);
    {
        const Chosen canvas(dc, bitmap);
        PatBlt(dc, 0, 0, side, side, BLACKNESS);  // what shows through adds nothing
        toolkit::win32::draw(dc, drawing, {0, 0, side, side});
    }
    DeleteDC(dc);
    ReleaseDC(nullptr, screen);
    return bitmap;
}

}  // namespace

void draw(HDC dc, const Drawing& drawing, const RECT& square) {
    const Chosen pen(dc, GetStockObject(NULL_PEN));
    for (const Shape& shape : drawing.shapes) {
        HBRUSH const brush = CreateSolidBrush(colour_of(shape.rgb));
        {
            const Chosen in_use(dc, brush);
            draw(dc, shape, square);
        }
        DeleteObject(brush);
    }
}

HICON icon_of(const Drawing& drawing, int side) {
    ICONINFO parts{};
    parts.fIcon = TRUE;
    parts.hbmMask = mask_of(drawing, side);
    parts.hbmColor = colours_of(drawing, side);
    HICON const icon = CreateIconIndirect(&parts);
    DeleteObject(parts.hbmMask);
    DeleteObject(parts.hbmColor);
    return icon;
}

}  // namespace toolkit::win32
