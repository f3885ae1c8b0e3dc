#include "ui/ColorDot.h"

#include <QPainter>

namespace velmora {

namespace {

constexpr int side = 9;

}  // namespace

ColorDot::ColorDot(const QColor& color, QWidget* parent) : QWidget(parent), color_(color) {
    setFixedSize(side, side);
}

void ColorDot::setColor(const QColor& color) {
    if (color != color_) {
        color_ = color;
        update();
    }
}

void ColorDot::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color_);
    painter.drawEllipse(QRectF(rect()));
}

}  // namespace velmora
