#include "ui/ProminentButton.h"

#include "ui/Tints.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace velmora {

namespace {

constexpr QRgb red = 0xffd9363e;
constexpr qreal radius = 5;
constexpr QSize padding(32, 12);

}  // namespace

ProminentButton::ProminentButton(QStringList words, QWidget* parent) : QPushButton(parent), words_(std::move(words)) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    setText(words_.front());
}

void ProminentButton::setLook(const QString& word, Tint tint) {
    tint_ = tint;
    setText(word);
    update();
}

QSize ProminentButton::sizeHint() const {
    QSize widest = QPushButton::sizeHint();
    for (const QString& word : words_) {
        widest = widest.expandedTo(fontMetrics().size(Qt::TextShowMnemonic, word) + padding);
    }
    return {widest.width(), QPushButton::sizeHint().height()};
}

QColor ProminentButton::fill() const {
    if (!isEnabled()) {
        return tints::mix(palette().color(QPalette::Window), palette().color(QPalette::WindowText), 0.15F);
    }
    const QColor color = tint_ == Tint::red ? QColor(red) : palette().color(QPalette::Active, QPalette::Highlight);
    const QColor readable = tints::underWhiteText(color);
    if (isDown()) {
        return tints::mix(readable, Qt::black, 0.25F);
    }
    return underMouse() ? tints::mix(readable, Qt::black, 0.1F) : readable;
}

void ProminentButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF shape = QRectF(rect()).adjusted(1, 1, -1, -1);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill());
    painter.drawRoundedRect(shape, radius, radius);
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::WindowText), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(shape.adjusted(-0.5, -0.5, 0.5, 0.5), radius, radius);
        painter.setPen(QPen(Qt::white, 1));
        painter.drawRoundedRect(shape.adjusted(1.5, 1.5, -1.5, -1.5), radius - 1.5, radius - 1.5);
    }
    painter.setPen(isEnabled() ? QColor(Qt::white) : palette().color(QPalette::Disabled, QPalette::WindowText));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextShowMnemonic, text());
}

}  // namespace velmora
