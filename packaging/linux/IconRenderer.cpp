// usage: velmora_icon_renderer DRAWING FOLDER SIDE...
//
// Draws an SVG picture as FOLDER/SIDE.png, once for each length of a side in pixels.

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    QSvgRenderer drawing(QString::fromLocal8Bit(argc > 1 ? argv[1] : ""));
    if (argc < 4 || !drawing.isValid()) {
        std::fprintf(stderr, "usage: velmora_icon_renderer DRAWING FOLDER SIDE...\n");
        return EXIT_FAILURE;
    }
    const QDir folder(QString::fromLocal8Bit(argv[2]));
    for (int argument = 3; argument < argc; ++argument) {
        const int side = std::atoi(argv[argument]);
        QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        drawing.render(&painter);
        painter.end();
        const QString file = folder.filePath(QString::number(side) + QStringLiteral(".png"));
        if (!picture.save(file)) {
            std::fprintf(stderr, "velmora_icon_renderer: cannot write %s\n", argv[2]);
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}
