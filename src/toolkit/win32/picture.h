#pragma once

#include <memory>
#include <string_view>

#include "toolkit/drawing.h"
#include "toolkit/win32/system.h"

struct IPicture;

namespace toolkit::win32 {

/// A decoded picture file.
class Picture {
  public:
    Picture() = default;
    /// Empty where the system cannot show these bytes.
    explicit Picture(std::string_view bytes);

    explicit operator bool() const { return picture_ != nullptr; }
    SIZE size() const;  ///< in units of its own
    void draw(HDC dc, const RECT& place) const;

  private:
    struct Release {
        void operator()(IPicture* picture) const;
    };
    std::unique_ptr<IPicture, Release> picture_;
};

/// The largest place of this shape in the middle of the room.
RECT fitted(SIZE picture, const RECT& room);

void draw(HDC dc, const Drawing& drawing, const RECT& square);
/// The caller destroys it.
HICON icon_of(const Drawing& drawing, int side);

}  // namespace toolkit::win32
