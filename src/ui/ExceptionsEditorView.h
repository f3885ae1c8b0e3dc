#pragma once

#include "base/Observable.h"
#include "ui/ManagedWindow.h"

class QLabel;
class QLineEdit;
class QPushButton;

namespace velmora {

class PacTextEditor;
struct WindowServices;

/// The list of hosts that bypass every proxy, one a line. It is read when the window opens; edits that are not saved
/// are gone when it closes. Main thread.
class ExceptionsEditorView final : public ManagedWindow {
    Q_OBJECT
    Q_PROPERTY(bool dirty READ isDirty)

public:
    explicit ExceptionsEditorView(WindowServices& services);

    /// Whether there are edits that are not saved.
    [[nodiscard]] bool isDirty() const { return dirty_; }

private:
    void fill();
    void appendQuickAdd();
    void save();
    void setDirty(bool dirty);
    void showCount();

    WindowServices& services_;
    QLineEdit* quickAdd_;
    PacTextEditor* content_;
    QLabel* count_;
    QPushButton* save_;
    bool dirty_ = false;
    Subscription changedElsewhere_;
};

}  // namespace velmora
