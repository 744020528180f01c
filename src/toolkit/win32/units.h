#pragma once

#include <string>

#include "toolkit/controls.h"
#include "toolkit/win32/system.h"

/// The one place where units of the program become those of the screen, and back.
namespace toolkit::win32 {

int pixels(int twips);
/// By its edges: what ends at the same twip ends at the same pixel.
RECT pixels(const Rect& twips);
int twips(int pixels);

/// The system's font of the time; 0 points: 8. Shared, never deleted.
HFONT font_of(int points);
/// The height of a line in it.
int line_height(HFONT font);
int text_width(HFONT font, const std::string& text);

inline int width_of(const RECT& r) { return r.right - r.left; }
inline int height_of(const RECT& r) { return r.bottom - r.top; }
inline RECT shrunk(RECT r, int by) { return {r.left + by, r.top + by, r.right - by, r.bottom - by}; }

std::string text_of(HWND window);

/// A tool of GDI that is chosen into a device context while this lives.
class Chosen {
  public:
    Chosen(HDC dc, HGDIOBJ tool) : dc_(dc), before_(SelectObject(dc, tool)) {}
    ~Chosen() { SelectObject(dc_, before_); }
    Chosen(const Chosen&) = delete;
    Chosen& operator=(const Chosen&) = delete;

  private:
    HDC dc_;
    HGDIOBJ before_;
};

}  // namespace toolkit::win32
