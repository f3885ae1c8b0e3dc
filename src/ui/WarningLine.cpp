#include "ui/WarningLine.h"

#include "ui/Metrics.h"
#include "ui/SymbolIcon.h"
#include "ui/Tints.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QScopedValueRollback>

namespace velmora {

WarningLine::WarningLine(const QString& text, QWidget* parent)
    : QWidget(parent), symbol_(new QLabel), words_(new QLabel) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(metrics::caption);
    row->addWidget(symbol_, 0, Qt::AlignTop);
    row->addWidget(words_, 1);
    words_->setWordWrap(true);
    words_->setTextFormat(Qt::PlainText);
    setText(text);
    adopt();
}

QString WarningLine::text() const {
    return words_->text();
}

void WarningLine::setText(const QString& text) {
    words_->setText(text);
}

void WarningLine::changeEvent(QEvent* event) {
    switch (event->type()) {
        case QEvent::ApplicationPaletteChange:
        case QEvent::ApplicationFontChange:
        case QEvent::PaletteChange:
        case QEvent::StyleChange:
            adopt();
            break;
        default:
            break;
    }
    QWidget::changeEvent(event);
}

void WarningLine::adopt() {
    if (adopting_) {
        return;  // what follows is a change, too
    }
    const QScopedValueRollback guard(adopting_, true);
    const QColor orange = tints::warning(QApplication::palette());
    QPalette colors = QApplication::palette();
    colors.setColor(QPalette::WindowText, orange);
    words_->setPalette(colors);
    words_->setFont(metrics::scaled(QApplication::font(), metrics::captionScale));
    const int side = words_->fontMetrics().height();
    symbol_->setPixmap(symbolIcon(QStringLiteral("exclamationmark-triangle-fill"), orange)
                           .pixmap(QSize(side, side), devicePixelRatioF()));
}

}  // namespace velmora
