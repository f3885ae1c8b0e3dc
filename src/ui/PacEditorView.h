#pragma once

#include "ui/ManagedWindow.h"

class QLabel;
class QPushButton;

namespace velmora {

class PacTextEditor;
struct WindowServices;

/// The proxy script as it is served, to be edited by hand or made anew from the hosts. It is read when the window
/// opens; edits that are not applied are gone when it closes. Main thread.
class PacEditorView final : public ManagedWindow {
    Q_OBJECT
    Q_PROPERTY(bool dirty READ isDirty)
    Q_PROPERTY(bool isCustom READ isCustom)

public:
    explicit PacEditorView(WindowServices& services);

    /// Whether there are edits that are not applied.
    [[nodiscard]] bool isDirty() const { return dirty_; }
    /// Whether the server keeps the script as it is when hosts change.
    [[nodiscard]] bool isCustom() const { return isCustom_; }

private:
    void fill();
    void copyUrl();
    void regenerate();
    void apply();
    void setDirty(bool dirty);
    void mirrorMode();

    WindowServices& services_;
    PacTextEditor* content_;
    QLabel* mode_;
    QPushButton* apply_;
    bool dirty_ = false;
    bool isCustom_ = false;
};

}  // namespace velmora
