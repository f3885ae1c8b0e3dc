#include "ui/PacTextEditor.h"

#include "ui/PlainText.h"
#include "ui/SpacedTextLayout.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QTextBlock>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace velmora {

namespace {

constexpr int pointSize = 12;
constexpr qreal lineHeight = 1.3;  ///< times the size of the font
constexpr int tabWidth = 4;        ///< in characters

QFont codeFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(pointSize);
    font.setWeight(QFont::Normal);
    font.setItalic(false);
    return font;
}

}  // namespace

PacTextEditor::PacTextEditor(QWidget* parent) : QPlainTextEdit(parent) {
    setFont(codeFont());
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setTabStopDistance(tabWidth * fontMetrics().horizontalAdvance(u' '));
    document()->setDefaultFont(font());
    layout_ = new SpacedTextLayout(document(), std::round(lineHeight * QFontInfo(font()).pixelSize()));
    document()->setDocumentLayout(layout_);
    connect(this, &QPlainTextEdit::textChanged, this, &PacTextEditor::noteChange);
}

PacTextEditor::~PacTextEditor() = default;

const QString& PacTextEditor::text() const {
    if (textIsOld_) {
        text_ = plainText(*document());
        textIsOld_ = false;
    }
    return text_;
}

void PacTextEditor::setText(const QString& text) {
    const bool isFirst = !hasFirstText_;
    hasFirstText_ = true;
    if (text == this->text()) {
        return;
    }
    const int scrolled = verticalScrollBar()->value();
    const int anchor = textCursor().anchor();
    const int position = textCursor().position();
    replacing_ = true;
    if (isFirst) {
        setPlainText(text);
    } else {
        replaceMiddle(text);
    }
    replacing_ = false;
    text_ = text;
    textIsOld_ = false;

    const int end = document()->characterCount() - 1;
    QTextCursor cursor = textCursor();
    cursor.setPosition(std::min(anchor, end));
    cursor.setPosition(std::min(position, end), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    verticalScrollBar()->setValue(scrolled);
}

/// Only what differs, so that all else keeps its layout and one undo brings the former text back.
void PacTextEditor::replaceMiddle(const QString& text) {
    const QString former = plainText(*document());
    const auto shorter = std::min(former.size(), text.size());
    const auto prefix = std::mismatch(former.begin(), former.begin() + shorter, text.begin()).first - former.begin();
    const auto suffix =
        std::mismatch(former.rbegin(), former.rbegin() + (shorter - prefix), text.rbegin()).first - former.rbegin();
    QTextCursor cursor(document());
    cursor.setPosition(static_cast<int>(prefix));
    cursor.setPosition(static_cast<int>(former.size() - suffix), QTextCursor::KeepAnchor);
    cursor.insertText(text.mid(prefix, text.size() - suffix - prefix));
}

void PacTextEditor::setHighlight(bool on) {
    if (on != highlight()) {
        coloring_ = on ? std::make_unique<PacColoring>(*document(), PacColors(palette())) : nullptr;
    }
}

void PacTextEditor::noteChange() {
    if (!replacing_) {
        textIsOld_ = true;
        Q_EMIT edited();
    }
}

void PacTextEditor::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (coloring_ && (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)) {
        coloring_->setColors(PacColors(palette()));
    }
}

bool PacTextEditor::focusNextPrevChild(bool next) {
    return next ? QPlainTextEdit::focusNextPrevChild(true) : moveFocus(next);
}

/// To the next control or the one before, also where Tab writes a tab.
bool PacTextEditor::moveFocus(bool next) {
    const bool tabMoves = tabChangesFocus();
    setTabChangesFocus(true);
    const bool moved = QPlainTextEdit::focusNextPrevChild(next);
    setTabChangesFocus(tabMoves);
    return moved;
}

void PacTextEditor::keyPressEvent(QKeyEvent* event) {
    const bool withControl = (event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier)) != 0;
    if (withControl && (event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab)) {
        moveFocus(event->key() == Qt::Key_Tab);
        return;
    }
    if (event->modifiers() == Qt::ShiftModifier && event->key() == Qt::Key_Return) {
        // Otherwise it is a line break within a paragraph, which a plain text does not have.
        QKeyEvent plain(event->type(), event->key(), Qt::NoModifier, event->text());
        QPlainTextEdit::keyPressEvent(&plain);
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

void PacTextEditor::forEachVisibleLine(const LineVisitor& visit) const {
    for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
        const QPointF top = blockBoundingGeometry(block).translated(contentOffset()).topLeft();
        for (int i = 0; i < block.layout()->lineCount(); ++i) {
            const QTextLine line = block.layout()->lineAt(i);
            const auto extent = layout_->extent(line);
            if (top.y() + extent.top > viewport()->height()) {
                return;
            }
            if (top.y() + extent.bottom >= 0) {
                visit(block, line, top);
            }
        }
    }
}

/// The base class finds no character in the space between lines.
QPointF PacTextEditor::withinLine(QPointF position) const {
    qreal y = position.y();
    forEachVisibleLine([&](const QTextBlock&, const QTextLine& line, const QPointF& top) {
        const auto extent = layout_->extent(line);
        if (position.y() >= top.y() + extent.top && position.y() < top.y() + extent.bottom) {
            y = std::clamp(position.y(), top.y() + line.y(), top.y() + line.y() + line.height() - 1);
        }
    });
    return {position.x(), y};
}

bool PacTextEditor::viewportEvent(QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove: {
            const auto& mouse = static_cast<const QMouseEvent&>(*event);
            QMouseEvent moved(mouse.type(), withinLine(mouse.position()), mouse.globalPosition(), mouse.button(),
                              mouse.buttons(), mouse.modifiers(), mouse.pointingDevice());
            moved.setTimestamp(mouse.timestamp());
            const bool handled = QPlainTextEdit::viewportEvent(&moved);
            event->setAccepted(moved.isAccepted());
            return handled;
        }
        default:
            return QPlainTextEdit::viewportEvent(event);
    }
}

void PacTextEditor::paintEvent(QPaintEvent* event) {
    if (textCursor().hasSelection()) {
        paintSelectionBetweenLines();
    }
    QPlainTextEdit::paintEvent(event);
}

/// The base class draws a selection as high as the text; this fills the space above and below.
void PacTextEditor::paintSelectionBetweenLines() {
    const QTextCursor cursor = textCursor();
    const auto group = hasFocus() ? QPalette::Active : QPalette::Inactive;
    const QBrush brush = palette().brush(group, QPalette::Highlight);
    const bool fullWidth = style()->styleHint(QStyle::SH_RichText_FullWidthSelection, nullptr, this) != 0;
    QPainter painter(viewport());
    forEachVisibleLine([&](const QTextBlock& block, const QTextLine& line, const QPointF& top) {
        const int begin = block.position() + line.textStart();
        const int end = begin + line.textLength();
        const int from = std::max(begin, cursor.selectionStart());
        const int to = std::min(end, cursor.selectionEnd());
        if (from > to || cursor.selectionEnd() == begin) {
            return;
        }
        const qreal left = top.x() + line.cursorToX(from - block.position());
        const bool goesOn = fullWidth && cursor.selectionEnd() > end;
        const qreal right = goesOn ? viewport()->width() : top.x() + line.cursorToX(to - block.position());
        const auto extent = layout_->extent(line);
        painter.fillRect(QRectF(left, top.y() + extent.top, right - left, extent.bottom - extent.top), brush);
    });
}

}  // namespace velmora
