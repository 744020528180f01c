#include "toolkit/qt/picture.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <QPolygonF>

namespace toolkit::qt {

namespace {

constexpr int drawing_units = 32;
constexpr int longest_side = 16384;  // four times the widest desktop of Windows XP's time
constexpr qint64 most_pixels = 8192 * 8192;
constexpr int allocation_megabytes = 256;  // as many pixels of 32 bits

void draw(QPainter& painter, const Shape& shape) {
    const auto& at = shape.points;
    painter.setBrush(QColor(shape.rgb));
    if (shape.kind == Shape::Kind::polygon) {
        QPolygonF polygon;
        for (size_t i = 0; i + 1 < at.size(); i += 2)
            polygon << QPointF(at[i], at[i + 1]);
        painter.drawPolygon(polygon);
        return;
    }
    if (at.size() < 4) return;
    const QRectF box(QPointF(at[0], at[1]), QPointF(at[2], at[3]));
    if (shape.kind == Shape::Kind::box) {
        painter.drawRect(box);
    } else {
        painter.drawEllipse(box);
    }
}

}  // namespace

QImage decode_picture(std::string_view bytes) {
    const auto data = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader::setAllocationLimit(allocation_megabytes);
    QImageReader reader(&buffer);
    static const QList<QByteArray> formats = {"bmp", "ico", "cur", "gif", "jpeg", "jpg"};
    if (!formats.contains(reader.format())) return {};
    const QSize size = reader.size();
    const bool too_large = qint64{size.width()} * size.height() > most_pixels;
    if (too_large || size.width() > longest_side || size.height() > longest_side) return {};
    // A file that ends early leaves the rest of the memory as it was: white, not what lay there before.
    QImage image(size, reader.imageFormat());
    image.fill(Qt::white);
    if (!reader.read(&image)) return {};
    if (image.width() > longest_side || image.height() > longest_side) return {};
    return image;
}

void draw(QPainter& painter, const Drawing& drawing, const QRectF& square) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.translate(square.topLeft());
    painter.scale(square.width() / drawing_units, square.height() / drawing_units);
    for (const Shape& shape : drawing.shapes)
        draw(painter, shape);
    painter.restore();
}

QPixmap draw(const Drawing& drawing, int size, qreal device_pixel_ratio) {
    const int side = qRound(size * device_pixel_ratio);
    QPixmap pixmap(side, side);
    pixmap.setDevicePixelRatio(device_pixel_ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    draw(painter, drawing, QRectF(0, 0, size, size));
    return pixmap;
}

QIcon icon_of(const Drawing& drawing) {
    QIcon icon;
    for (const int size : {16, 32, 48, 64})
        icon.addPixmap(draw(drawing, size));
    return icon;
}

}  // namespace toolkit::qt
