#pragma once

#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QRectF>
#include <string_view>

#include "toolkit/drawing.h"

class QPainter;

namespace toolkit::qt {

/// Decodes BMP, ICO, CUR, GIF or JPEG. Null for other formats, damaged files and pictures too large to be
/// meant for a desktop: whoever owns the user's hive chooses the file.
QImage decode_picture(std::string_view bytes);

/// Draws into a square of this place.
void draw(QPainter& painter, const Drawing& drawing, const QRectF& square);
QPixmap draw(const Drawing& drawing, int size, qreal device_pixel_ratio = 1);
/// In the sizes that window managers ask for.
QIcon icon_of(const Drawing& drawing);

}  // namespace toolkit::qt
