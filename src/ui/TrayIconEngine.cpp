#include "ui/TrayIconEngine.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <utility>

namespace velmora {

TrayIconEngine::TrayIconEngine(QString svgFile, QColor color) : svgFile_(std::move(svgFile)), color_(color) {}

void TrayIconEngine::paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) {
    const qreal scale = painter->device()->devicePixelRatioF();
    QPixmap pixels = pixmap(rect.size() * scale, mode, state);
    pixels.setDevicePixelRatio(scale);
    painter->drawPixmap(rect.topLeft(), pixels);
}

QPixmap TrayIconEngine::pixmap(const QSize& size, QIcon::Mode /*mode*/, QIcon::State /*state*/) {
    QPixmap pixels(size);
    pixels.fill(Qt::transparent);
    const int side = qMin(size.width(), size.height());
    QPainter painter(&pixels);
    painter.setRenderHint(QPainter::Antialiasing);
    QSvgRenderer(svgFile_).render(&painter,
                                  QRectF((size.width() - side) / 2.0, (size.height() - side) / 2.0, side, side));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixels.rect(), color_);
    return pixels;
}

QPixmap TrayIconEngine::scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal /*scale*/) {
    return pixmap(size, mode, state);
}

QList<QSize> TrayIconEngine::availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) {
    QList<QSize> sizes;
    for (const int side : {16, 18, 22, 24, 32, 36, 48}) {
        sizes.append(QSize(side, side));
    }
    return sizes;
}

QIconEngine* TrayIconEngine::clone() const {
    return new TrayIconEngine(*this);
}

}  // namespace velmora
