#include "ui/ErrorLabel.h"

#include "ui/Tints.h"

#include <QApplication>
#include <QEvent>

namespace velmora {

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
    colors.setColor(QPalette::WindowText, tints::error(colors));
    setPalette(colors);
    adopting_ = false;
}

}  // namespace velmora
