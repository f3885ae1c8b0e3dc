#include "ui/ErrorLabel.h"

#include <QApplication>
#include <QEvent>

namespace velmora {

namespace {

// Each has a contrast of 4.5 and more against the grounds that it is for.
constexpr QRgb onLight = 0xffb3261e;
constexpr QRgb onDark = 0xffff8a80;
constexpr int middleGrey = 128;

}  // namespace

ErrorLabel::ErrorLabel(QWidget* parent) : QLabel(parent) {
    setWordWrap(true);
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    adopt();
}

void ErrorLabel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::PaletteChange ||
        event->type() == QEvent::StyleChange) {
        adopt();
    }
    QLabel::changeEvent(event);
}

void ErrorLabel::adopt() {
    if (adopting_) {
        return;  // what follows is a change, too
    }
    adopting_ = true;
    QPalette colors = QApplication::palette();
    const bool isDark = colors.color(QPalette::Window).lightness() < middleGrey;
    colors.setColor(QPalette::WindowText, QColor(isDark ? onDark : onLight));
    setPalette(colors);
    adopting_ = false;
}

}  // namespace velmora
