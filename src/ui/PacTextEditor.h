#pragma once

#include "ui/PacColoring.h"

#include <QPlainTextEdit>
#include <QString>

#include <functional>
#include <memory>

namespace velmora {

class SpacedTextLayout;

/// A text to edit, plain and in a monospaced font; a proxy script in colours. Main thread.
///
/// Tab writes a tab unless `setTabChangesFocus` says otherwise; Shift+Tab and Ctrl+Tab always move on.
class PacTextEditor final : public QPlainTextEdit {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY edited)
    Q_PROPERTY(bool highlight READ highlight WRITE setHighlight)

public:
    explicit PacTextEditor(QWidget* parent = nullptr);
    ~PacTextEditor() override;

    /// What was set, exactly, until the user edits it; then what the view holds, its lines separated by LF.
    [[nodiscard]] const QString& text() const;
    /// Replaces the text if it differs. Selection and scroll position stay where they are, as far as the new text
    /// reaches. The first text is what undo goes back to; another one can be undone.
    void setText(const QString& text);

    [[nodiscard]] bool highlight() const { return coloring_ != nullptr; }
    /// Whether the text is shown as a proxy script; off at first.
    void setHighlight(bool on);

Q_SIGNALS:
    /// The user changed the text: typed, pasted, undid something.
    void edited();

protected:
    void changeEvent(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    using LineVisitor = std::function<void(const QTextBlock& block, const QTextLine& line, const QPointF& blockTop)>;

    bool moveFocus(bool next);
    void noteChange();
    void replaceMiddle(const QString& text);
    void forEachVisibleLine(const LineVisitor& visit) const;
    [[nodiscard]] QPointF withinLine(QPointF position) const;
    void paintSelectionBetweenLines();

    SpacedTextLayout* layout_ = nullptr;
    std::unique_ptr<PacColoring> coloring_;
    mutable QString text_;
    mutable bool textIsOld_ = false;
    bool hasFirstText_ = false;
    bool replacing_ = false;
};

}  // namespace velmora
