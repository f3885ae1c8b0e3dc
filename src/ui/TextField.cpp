#include "ui/TextField.h"

#include <QFocusEvent>
#include <QPainter>
#include <QValidator>

#include <algorithm>
#include <limits>

namespace velmora {

namespace {

constexpr int underlineWidth = 2;

bool isLineBreak(QChar character) {
    return character == QLatin1Char('\n') || character == QLatin1Char('\r') ||
           character == QChar(QChar::LineSeparator) || character == QChar(QChar::ParagraphSeparator);
}

/// Leaves out the line breaks of what is pasted. They would stay in the value, and nobody would see them.
class OneLine final : public QValidator {
public:
    using QValidator::QValidator;

    State validate(QString& text, int& cursor) const override {
        cursor -= static_cast<int>(std::count_if(text.cbegin(), text.cbegin() + cursor, isLineBreak));
        text.removeIf(isLineBreak);
        return Acceptable;
    }
};

}  // namespace

TextField::TextField(QWidget* parent) : QLineEdit(parent) {
    setMaxLength(std::numeric_limits<int>::max());  // the usual limit would cut off a long value
    setValidator(new OneLine(this));
}

void TextField::showValue(const QString& value) {
    value_ = value;
    if (!hasFocus()) {
        adopt();
    }
}

void TextField::setUnderline(const QColor& color) {
    if (color != underline_) {
        underline_ = color;
        update();
    }
}

void TextField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) {  // the field's own menu
        adopt();
    }
}

void TextField::adopt() {
    if (text() == value_) {
        return;
    }
    const int cursor = cursorPosition();
    const int start = selectionStart();
    const int end = selectionEnd();
    setText(value_);
    const int length = static_cast<int>(value_.size());
    if (start < 0 || start >= length) {
        setCursorPosition(cursor);
    } else if (cursor == start) {
        setSelection(std::min(end, length), start - std::min(end, length));
    } else {
        setSelection(start, std::min(end, length) - start);
    }
}

void TextField::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    if (underline_.isValid()) {
        QPainter painter(this);
        const int frame = hasFrame() ? 1 : 0;
        painter.fillRect(QRect(frame, height() - frame - underlineWidth, width() - 2 * frame, underlineWidth),
                         underline_);
    }
}

}  // namespace velmora
