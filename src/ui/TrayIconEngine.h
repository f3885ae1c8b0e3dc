#pragma once

#include <QColor>
#include <QIconEngine>
#include <QString>

namespace velmora {

/// An SVG drawing in one colour, drawn anew for each size that is asked for.
class TrayIconEngine final : public QIconEngine {
public:
    TrayIconEngine(QString svgFile, QColor color);

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal scale) override;
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override;
    QIconEngine* clone() const override;

private:
    QString svgFile_;
    QColor color_;
};

}  // namespace velmora
