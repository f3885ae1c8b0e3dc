#pragma once

#include "ui/ManagedWindow.h"

class QLabel;
class QTextBrowser;

namespace velmora {

struct WindowServices;

/// What this program is, and what has changed from version to version. Main thread.
class AboutView final : public ManagedWindow {
    Q_OBJECT

public:
    explicit AboutView(WindowServices& services);

private:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    /// Takes over font and colours.
    void adopt();

    QLabel* name_;
    QTextBrowser* changes_;
    bool adopting_ = false;
};

}  // namespace velmora
