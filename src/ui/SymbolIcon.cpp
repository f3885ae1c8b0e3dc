#include "ui/SymbolIcon.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>

#include <utility>

namespace velmora {

SymbolIconEngine::SymbolIconEngine(QString svgFile, std::optional<QColor> color)
    : svgFile_(std::move(svgFile)), color_(color) {}

void SymbolIconEngine::paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) {
    const qreal scale = painter->device()->devicePixelRatioF();
    QPixmap pixels = pixmap(rect.size() * scale, mode, state);
    pixels.setDevicePixelRatio(scale);
    painter->drawPixmap(rect.topLeft(), pixels);
}

QPixmap SymbolIconEngine::pixmap(const QSize& size, QIcon::Mode mode, QIcon::State /*state*/) {
    QPixmap pixels(size);
    pixels.fill(Qt::transparent);
    const int side = qMin(size.width(), size.height());
    QPainter painter(&pixels);
    painter.setRenderHint(QPainter::Antialiasing);
    QSvgRenderer(svgFile_).render(&painter,
                                  QRectF((size.width() - side) / 2.0, (size.height() - side) / 2.0, side, side));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixels.rect(), color(mode));
    return pixels;
}

QPixmap SymbolIconEngine::scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal /*scale*/) {
    return pixmap(size, mode, state);
}

QList<QSize> SymbolIconEngine::availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) {
    QList<QSize> sizes;
    for (const int side : {16, 18, 22, 24, 32, 36, 48}) {
        sizes.append(QSize(side, side));
    }
    return sizes;
}

QColor SymbolIconEngine::color(QIcon::Mode mode) const {
    if (color_) {
        return *color_;
    }
    const QPalette palette = QGuiApplication::palette();
    switch (mode) {
        case QIcon::Disabled:
            return palette.color(QPalette::Disabled, QPalette::Text);
        case QIcon::Selected:
            return palette.color(QPalette::Active, QPalette::HighlightedText);
        default:
            return palette.color(QPalette::Active, QPalette::Text);
    }
}

QIconEngine* SymbolIconEngine::clone() const {
    return new SymbolIconEngine(*this);
}

QIcon symbolIcon(const QString& name) {
    return QIcon(new SymbolIconEngine(QStringLiteral(":/icons/%1.svg").arg(name)));
}

QIcon symbolIcon(const QString& name, const QColor& color) {
    return QIcon(new SymbolIconEngine(QStringLiteral(":/icons/%1.svg").arg(name), color));
}

}  // namespace velmora
