#pragma once

#include "ui/TextMatches.h"

#include <QPlainTextEdit>
#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>

class QLabel;
class QLineEdit;

namespace velmora {

class IconButton;

/// Finds text in the editor below it while the user types what to look for, in any case. It slides in when it is
/// opened. Main thread.
///
/// Return, F3 and the button with the arrow down go to the next match, with Shift or upward to the one before, round
/// the end of the text. Escape closes the bar, here and in the editor.
class FindBar final : public QWidget {
    Q_OBJECT

public:
    /// The editor outlives the bar. F3 and Shift+F3 work in the editor's whole window.
    explicit FindBar(QPlainTextEdit& editor, QWidget* parent = nullptr);

    /// Looks for what is selected if that is within a line, otherwise for the same as last time.
    void open();
    /// Gives the focus back to the editor, with the match selected.
    void close();
    [[nodiscard]] bool isOpen() const { return isOpen_; }

    void findNext();
    void findPrevious();

private:
    bool eventFilter(QObject* object, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

    void fillContent();
    void addShortcuts();
    void slideTo(int height);
    void patternChanged();
    void updateMatches();
    void select(int start);
    void showState();
    void showMatches();

    QPlainTextEdit& editor_;
    QWidget* content_;
    QLineEdit* field_;
    QLabel* state_;
    IconButton* previous_;
    IconButton* next_;
    QVariantAnimation slide_;
    QTimer lookSoon_;  ///< after edits of the text
    TextMatches matches_;
    QString matchesPattern_;
    QString text_;
    int textRevision_ = -1;
    int tintedAt_ = 0;  ///< how far the editor was scrolled then
    bool isOpen_ = false;
};

}  // namespace velmora
