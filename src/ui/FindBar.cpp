#include "ui/FindBar.h"

#include "ui/IconButton.h"
#include "ui/Metrics.h"
#include "ui/PlainText.h"
#include "ui/SymbolIcon.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>

namespace velmora {

namespace {

constexpr int longestSlide = 150;        // milliseconds
constexpr int pauseInTyping = 100;       // milliseconds
constexpr int mostTintedMatches = 2000;  // of those in view

QColor tint(const QPalette& palette) {
    const bool dark = palette.color(QPalette::Active, QPalette::Base).lightness() < 128;
    return dark ? QColor(0x5A, 0x4B, 0x00) : QColor(0xFF, 0xF0, 0xB3);
}

bool isMatch(const QTextCursor& cursor, const TextMatches& matches) {
    return cursor.hasSelection() && cursor.selectionEnd() - cursor.selectionStart() == matches.length();
}

}  // namespace

FindBar::FindBar(QPlainTextEdit& editor, QWidget* parent)
    : QWidget(parent),
      editor_(editor),
      content_(new QWidget(this)),
      field_(new QLineEdit),
      state_(new QLabel),
      previous_(new IconButton(QStringLiteral("chevron-up"), tr("Find Previous"), Qt::SHIFT | Qt::Key_F3)),
      next_(new IconButton(QStringLiteral("chevron-down"), tr("Find Next"), Qt::Key_F3)) {
    fillContent();
    addShortcuts();
    hide();

    connect(&slide_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& height) { setFixedHeight(height.toInt()); });
    connect(&slide_, &QVariantAnimation::finished, this, [this] { setVisible(isOpen_); });
    connect(field_, &QLineEdit::textEdited, this, &FindBar::patternChanged);

    lookSoon_.setSingleShot(true);
    lookSoon_.setInterval(pauseInTyping);
    connect(&lookSoon_, &QTimer::timeout, this, &FindBar::updateMatches);
    connect(&editor_, &QPlainTextEdit::textChanged, this, [this] {
        if (isOpen_) {
            lookSoon_.start();
        }
    });
    connect(&editor_, &QPlainTextEdit::selectionChanged, this, &FindBar::showState);
    // The scroll bar keeps silent where the editor scrolls to show its cursor.
    connect(&editor_, &QPlainTextEdit::updateRequest, this, [this] {
        if (editor_.verticalScrollBar()->value() != tintedAt_) {
            showMatches();
        }
    });
    connect(editor_.verticalScrollBar(), &QScrollBar::rangeChanged, this, &FindBar::showMatches);
    editor_.installEventFilter(this);
    field_->installEventFilter(this);
}

void FindBar::fillContent() {
    field_->setObjectName(QStringLiteral("find"));
    field_->setPlaceholderText(tr("Find"));
    field_->setAccessibleName(tr("Find"));
    field_->setClearButtonEnabled(true);
    field_->addAction(symbolIcon(QStringLiteral("magnifyingglass")), QLineEdit::LeadingPosition);
    state_->setObjectName(QStringLiteral("findState"));
    state_->setTextFormat(Qt::PlainText);
    state_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    state_->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("1000 of 1000")));
    auto* done = new IconButton(QStringLiteral("xmark"), tr("Close Find Bar"), Qt::Key_Escape);
    for (auto* button : {previous_, next_, done}) {
        button->setAutoRaise(true);
    }
    connect(previous_, &IconButton::clicked, this, &FindBar::findPrevious);
    connect(next_, &IconButton::clicked, this, &FindBar::findNext);
    connect(done, &IconButton::clicked, this, &FindBar::close);

    auto* row = new QHBoxLayout(content_);
    row->setContentsMargins(0, 0, 0, metrics::related);
    row->setSpacing(metrics::related);
    row->addWidget(field_, 1);
    row->addWidget(state_);
    row->addWidget(previous_);
    row->addWidget(next_);
    row->addWidget(done);
}

void FindBar::addShortcuts() {
    const auto add = [this](QKeySequence::StandardKey key, const QKeySequence& always, void (FindBar::*go)()) {
        auto* action = new QAction(this);
        QList<QKeySequence> keys = QKeySequence::keyBindings(key);
        if (!keys.contains(always)) {
            keys.append(always);
        }
        action->setShortcuts(keys);
        connect(action, &QAction::triggered, this, go);
        editor_.addAction(action);  // the bar's own do not count while it is hidden
    };
    add(QKeySequence::FindNext, Qt::Key_F3, &FindBar::findNext);
    add(QKeySequence::FindPrevious, Qt::SHIFT | Qt::Key_F3, &FindBar::findPrevious);
}

void FindBar::open() {
    const QString selected = editor_.textCursor().selectedText();
    if (!selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator) &&
        !selected.contains(QChar::LineSeparator)) {
        field_->setText(selected);
    }
    if (!isOpen_) {
        isOpen_ = true;
        show();
        slideTo(content_->sizeHint().height());
    }
    field_->setFocus(Qt::ShortcutFocusReason);
    field_->selectAll();
    updateMatches();
}

void FindBar::close() {
    if (!isOpen_) {
        return;
    }
    isOpen_ = false;
    lookSoon_.stop();
    showMatches();
    editor_.setFocus(Qt::OtherFocusReason);
    slideTo(0);
}

void FindBar::slideTo(int height) {
    slide_.stop();
    slide_.setStartValue(isOpen_ ? 0 : this->height());
    slide_.setEndValue(height);
    slide_.setDuration(
        std::clamp(style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this), 0, longestSlide));
    slide_.start();
}

void FindBar::findNext() {
    updateMatches();
    if (field_->text().isEmpty()) {
        open();
    } else if (!matches_.empty()) {
        const QTextCursor cursor = editor_.textCursor();
        select(matches_.atOrAfter(isMatch(cursor, matches_) ? cursor.selectionEnd() : cursor.selectionStart()));
    }
}

void FindBar::findPrevious() {
    updateMatches();
    if (field_->text().isEmpty()) {
        open();
    } else if (!matches_.empty()) {
        select(matches_.before(editor_.textCursor().selectionStart()));
    }
}

void FindBar::patternChanged() {
    updateMatches();
    if (!matches_.empty()) {
        select(matches_.atOrAfter(editor_.textCursor().selectionStart()));
    }
}

void FindBar::updateMatches() {
    lookSoon_.stop();
    const int revision = editor_.document()->revision();
    const bool textChanged = textRevision_ != revision;
    if (textChanged) {
        textRevision_ = revision;
        text_ = plainText(*editor_.document());
    }
    if (textChanged || matchesPattern_ != field_->text()) {
        matchesPattern_ = field_->text();
        matches_ = TextMatches(text_, matchesPattern_);
    }
    showState();
    showMatches();
}

void FindBar::select(int start) {
    QTextCursor cursor(editor_.document());
    cursor.setPosition(start);
    cursor.setPosition(start + matches_.length(), QTextCursor::KeepAnchor);
    editor_.setTextCursor(cursor);
    showState();
}

void FindBar::showState() {
    const bool missing = !matchesPattern_.isEmpty() && matches_.empty();
    const QTextCursor cursor = editor_.textCursor();
    const auto number = isMatch(cursor, matches_) ? matches_.numberAt(cursor.selectionStart()) : std::nullopt;
    const QString total = QString::number(matches_.count()) + (matches_.hasMore() ? QStringLiteral("+") : QString());
    if (matchesPattern_.isEmpty()) {
        state_->clear();
    } else if (missing) {
        state_->setText(tr("Not found"));
    } else if (number) {
        state_->setText(tr("%1 of %2").arg(QString::number(*number), total));
    } else {
        state_->setText(total == QStringLiteral("1") ? tr("1 match") : tr("%1 matches").arg(total));
    }
    field_->setAccessibleDescription(state_->text());
    previous_->setEnabled(!matches_.empty());
    next_->setEnabled(!matches_.empty());
}

/// Tints the matches in view.
void FindBar::showMatches() {
    tintedAt_ = editor_.verticalScrollBar()->value();
    QList<QTextEdit::ExtraSelection> selections;
    if (isOpen_ && !matches_.empty()) {
        const QRect view = editor_.viewport()->rect();
        const int begin = editor_.cursorForPosition(view.topLeft()).position();
        const int end = editor_.cursorForPosition(view.bottomRight()).position();
        QTextCharFormat format;
        format.setBackground(tint(editor_.palette()));
        for (const int start : matches_.between(begin - matches_.length(), end + 1, mostTintedMatches)) {
            QTextCursor cursor(editor_.document());
            cursor.setPosition(std::max(0, start));
            cursor.setPosition(start + matches_.length(), QTextCursor::KeepAnchor);
            selections.append({cursor, format});
        }
    }
    editor_.setExtraSelections(selections);
}

bool FindBar::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return QWidget::eventFilter(object, event);
    }
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (key.key() == Qt::Key_Escape && isOpen_) {
        close();
        return true;
    }
    if (object == field_ && (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter)) {
        if ((key.modifiers() & Qt::ShiftModifier) != 0) {
            findPrevious();
        } else {
            findNext();
        }
        return true;
    }
    return QWidget::eventFilter(object, event);
}

void FindBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void FindBar::resizeEvent(QResizeEvent* event) {
    // While the bar slides, its content comes down from above with the lower edge first.
    const int contentHeight = content_->sizeHint().height();
    content_->setGeometry(0, height() - contentHeight, width(), contentHeight);
    QWidget::resizeEvent(event);
}

void FindBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        showMatches();
    } else if (event->type() == QEvent::FontChange && isOpen_) {
        setFixedHeight(content_->sizeHint().height());
    }
}

}  // namespace velmora
