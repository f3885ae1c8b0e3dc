#include "ui/HeaderField.h"

#include "ui/Metrics.h"

#include <QApplication>
#include <QEvent>

namespace velmora {

HeaderField::HeaderField(Look look, const QString& name, QWidget* parent) : TextField(parent), look_(look) {
    setPlaceholderText(name);
    setAccessibleName(name);
    if (look_ == Look::title) {
        setFrame(false);
        setTextMargins(-2, 0, 0, 0);  // the text begins where the labels below do
        QPalette colors;
        colors.setColor(QPalette::Base, Qt::transparent);
        setPalette(colors);
    }
    adoptFont();
}

void HeaderField::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ApplicationFontChange) {
        adoptFont();
    }
    TextField::changeEvent(event);
}

void HeaderField::focusInEvent(QFocusEvent* event) {
    TextField::focusInEvent(event);
    if (look_ == Look::title) {
        setUnderline(palette().color(QPalette::Highlight));  // without a border the focus would be hard to see
    }
}

void HeaderField::focusOutEvent(QFocusEvent* event) {
    TextField::focusOutEvent(event);
    setUnderline({});
}

void HeaderField::adoptFont() {
    const bool title = look_ == Look::title;
    QFont font = metrics::scaled(QApplication::font(), title ? metrics::titleScale : metrics::captionScale);
    font.setWeight(title ? QFont::Medium : QFont::Normal);
    setFont(font);
}

}  // namespace velmora
