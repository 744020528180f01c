#include "toolkit/qt/picture.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <QPolygonF>

namespace toolkit::qt {

namespace {

constexpr int drawing_units = 32;
constexpr int longest_side = 16384;        // four times the widest desktop of Windows XP's time
constexpr int allocation_megabytes = 256;  // a picture of 8192 by 8192 at 32 bits

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
    QImage image = reader.read();
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

}  // namespace toolkit::qt
