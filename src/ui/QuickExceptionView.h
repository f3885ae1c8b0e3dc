#pragma once

#include "ui/ManagedWindow.h"

class QLineEdit;
class QPushButton;

namespace velmora {

struct WindowServices;

/// A small panel that adds one host to those that bypass every proxy. Main thread.
class QuickExceptionView final : public ManagedWindow {
    Q_OBJECT

public:
    explicit QuickExceptionView(WindowServices& services);

private:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

    void fill();
    void add();
    void updateAdd();

    WindowServices& services_;
    QLineEdit* text_;
    QPushButton* add_;
};

}  // namespace velmora
