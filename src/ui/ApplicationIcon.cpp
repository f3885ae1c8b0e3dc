#include "ui/ApplicationIcon.h"

#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace velmora {

namespace {

/// Every window asks for the same few sizes: each is drawn once.
class ApplicationIconEngine final : public QIconEngine {
public:
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const qreal scale = painter->device()->devicePixelRatioF();
        QPixmap pixels = pixmap(rect.size() * scale, mode, state);
        pixels.setDevicePixelRatio(scale);
        painter->drawPixmap(rect.topLeft(), pixels);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        const int side = qMin(size.width(), size.height());
        QPixmap& pixels = drawn_[side];
        if (pixels.isNull()) {
            pixels = QPixmap(side, side);
            pixels.fill(Qt::transparent);
            QPainter painter(&pixels);
            painter.setRenderHint(QPainter::Antialiasing);
            QSvgRenderer(QStringLiteral(":/icons/velmora.svg")).render(&painter, QRectF(0, 0, side, side));
        }
        return pixels;
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal /*scale*/) override {
        return pixmap(size, mode, state);
    }

    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        return {QSize(16, 16), QSize(32, 32), QSize(48, 48), QSize(128, 128)};
    }

    [[nodiscard]] QIconEngine* clone() const override { return new ApplicationIconEngine(*this); }

private:
    QHash<int, QPixmap> drawn_;  ///< by the length of a side
};

}  // namespace

QIcon applicationIcon() {
    return QIcon(new ApplicationIconEngine);
}

}  // namespace velmora
