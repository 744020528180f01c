#include <QImage>
#include <QPainter>
#include <iostream>

#include "startup/pictures.h"
#include "toolkit/qt/picture.h"

/// Draws the program's icon in the sizes that desktops ask for, from the drawing that its windows bear.
///
/// usage: draw_icons FOLDER
int main(int argc, char** argv) {
    if (argc != 2) return 2;
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        toolkit::qt::draw(painter, britlock::pictures::lock, QRectF(0, 0, size, size));
        painter.end();
        const QString file = QStringLiteral("%1/%2.png").arg(QString::fromLocal8Bit(argv[1])).arg(size);
        if (image.save(file, "PNG")) continue;
        std::cerr << "cannot write " << file.toStdString() << "\n";
        return 1;
    }
    return 0;
}
