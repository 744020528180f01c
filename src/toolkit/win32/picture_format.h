#pragma once

#include <optional>
#include <string_view>

/// What the head of a picture file says, before anything is decoded: whoever owns the user's hive chooses the
/// file.
namespace toolkit::win32 {

struct PictureSize {
    unsigned width = 0;
    unsigned height = 0;
};

/// BMP, ICO, CUR, GIF, JPEG, WMF, EMF; none where it is no such file or ends too early. A picture of lines
/// (WMF, EMF) and an icon have no size that could be too large: 0 by 0.
std::optional<PictureSize> picture_size(std::string_view bytes);

/// Is it one of those, and not too large to be meant for a desktop?
bool is_sane_picture(std::string_view bytes);

}  // namespace toolkit::win32
