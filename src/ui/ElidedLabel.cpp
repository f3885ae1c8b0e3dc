#include "ui/ElidedLabel.h"

#include "ui/Metrics.h"
#include "ui/ToolTip.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>

namespace velmora {

ElidedLabel::ElidedLabel(Qt::TextElideMode leftOut, Look look, QWidget* parent)
    : QLabel(parent), leftOut_(leftOut), look_(look) {
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    adoptFont();
}

void ElidedLabel::setFullText(const QString& text) {
    if (fullText_ != text) {
        fullText_ = text;
        setAccessibleName(text);
        updateGeometry();
        fit();
    }
}

QSize ElidedLabel::sizeHint() const {
    const int edge = 2 * (margin() + frameWidth());
    return {fontMetrics().horizontalAdvance(fullText_) + edge + 1, fontMetrics().height() + edge};
}

QSize ElidedLabel::minimumSizeHint() const {
    const int edge = 2 * (margin() + frameWidth());
    constexpr int readable = 12;  // characters
    return {qMin(sizeHint().width(), fontMetrics().averageCharWidth() * readable + edge), sizeHint().height()};
}

void ElidedLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    fit();
}

void ElidedLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        adoptFont();
    }
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        updateGeometry();
        fit();
    }
}

void ElidedLabel::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy) && text() != fullText_) {
        copy();
        return;
    }
    QLabel::keyPressEvent(event);
}

void ElidedLabel::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(tr("Copy")), &QAction::triggered, this, &ElidedLabel::copy);
    menu->popup(event->globalPos());
}

void ElidedLabel::adoptFont() {
    if (look_ == Look::caption) {
        setFont(metrics::scaled(QApplication::font(), metrics::captionScale));
    }
}

void ElidedLabel::fit() {
    const QString shown = fontMetrics().elidedText(fullText_, leftOut_, contentsRect().width());
    if (shown != text()) {
        setText(shown);
    }
    setToolTip(shown == fullText_ ? QString() : toolTipOf(fullText_));
}

void ElidedLabel::copy() const {
    QGuiApplication::clipboard()->setText(fullText_);
}

}  // namespace velmora
