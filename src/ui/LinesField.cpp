#include "ui/LinesField.h"

#include <QFocusEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>

#include <algorithm>

namespace velmora {

namespace {

/// Every way to end a line becomes a line feed.
QString withLineFeeds(QString text) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    for (const char16_t other : {u'\r', u'\u2028', u'\u2029'}) {
        text.replace(QChar(other), QLatin1Char('\n'));
    }
    return text;
}

}  // namespace

LinesField::LinesField(int visibleLines, QWidget* parent) : QPlainTextEdit(parent), visibleLines_(visibleLines) {
    setTabChangesFocus(true);
    setInputMethodHints(Qt::ImhMultiLine | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QPlainTextEdit::textChanged, this, &LinesField::readTyped);
}

void LinesField::showValue(const QString& value) {
    value_ = value;
    if (telling_) {
        return;
    }
    if (!hasFocus()) {
        adopt();
    }
    if (withLineFeeds(value_) == typed()) {
        original_ = value_;
    }
}

QString LinesField::typed() const {
    return withLineFeeds(document()->toRawText());  // the plain text would turn no-break spaces into spaces
}

void LinesField::readTyped() {
    if (adopting_) {
        return;
    }
    const QScopedValueRollback guard(telling_, true);
    const QString text = typed();
    Q_EMIT edited(text == withLineFeeds(original_) ? original_ : text);
}

void LinesField::focusOutEvent(QFocusEvent* event) {
    QPlainTextEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) {  // the field's own menu
        adopt();
    }
}

void LinesField::adopt() {
    if (withLineFeeds(value_) == typed()) {
        return;
    }
    const QScopedValueRollback guard(adopting_, true);
    const int anchor = textCursor().anchor();
    const int position = textCursor().position();
    const int scrolled = verticalScrollBar()->value();
    setPlainText(value_);
    original_ = value_;
    const int end = document()->characterCount() - 1;
    QTextCursor cursor = textCursor();
    cursor.setPosition(std::min(anchor, end));
    cursor.setPosition(std::min(position, end), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    verticalScrollBar()->setValue(scrolled);
}

QSize LinesField::sizeHint() const {
    const int around = 2 * frameWidth() + 2 * static_cast<int>(document()->documentMargin());
    return {QPlainTextEdit::sizeHint().width(), around + visibleLines_ * fontMetrics().lineSpacing()};
}

QSize LinesField::minimumSizeHint() const {
    return {fontMetrics().horizontalAdvance(QLatin1Char('x')) * 20, sizeHint().height()};
}

}  // namespace velmora
