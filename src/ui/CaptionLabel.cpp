#include "ui/CaptionLabel.h"

#include "ui/Metrics.h"
#include "ui/Tints.h"

#include <QApplication>
#include <QEvent>

namespace velmora {

CaptionLabel::CaptionLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {
    setWordWrap(true);
    setTextFormat(Qt::PlainText);
    adopt();
}

void CaptionLabel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::ApplicationFontChange ||
        event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
        adopt();
    }
    QLabel::changeEvent(event);
}

void CaptionLabel::adopt() {
    if (adopting_) {
        return;  // what follows is a change, too
    }
    adopting_ = true;
    setFont(metrics::scaled(QApplication::font(), metrics::captionScale));
    QPalette colors = QApplication::palette();
    colors.setColor(QPalette::WindowText, tints::caption(colors));
    setPalette(colors);
    adopting_ = false;
}

}  // namespace velmora
