#include "ui/ElidingLabel.h"

#include "ui/Metrics.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>

namespace velmora {

ElidingLabel::ElidingLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setFont(metrics::scaled(QApplication::font(), metrics::captionScale));
}

void ElidingLabel::setWholeText(const QString& text) {
    if (text != whole_) {
        whole_ = text;
        setText(text);
        tellWhole();
    }
}

QSize ElidingLabel::minimumSizeHint() const {
    return {fontMetrics().horizontalAdvance(QLatin1Char('x')) * 12, QLabel::minimumSizeHint().height()};
}

void ElidingLabel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(metrics::scaled(QApplication::font(), metrics::captionScale));
        tellWhole();
    }
    QLabel::changeEvent(event);
}

void ElidingLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    tellWhole();
}

void ElidingLabel::tellWhole() {
    const bool fits = fontMetrics().horizontalAdvance(whole_) <= contentsRect().width();
    setToolTip(fits ? QString() : QStringLiteral("<p>%1</p>").arg(whole_.toHtmlEscaped()));  // as a paragraph it wraps
}

void ElidingLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(contentsRect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(whole_, Qt::ElideRight, contentsRect().width()));
}

}  // namespace velmora
