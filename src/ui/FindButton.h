#pragma once

#include <QToolButton>

namespace velmora {

/// Opens the find bar of the window that it stands in; so does the platform's shortcut, Ctrl+F. Main thread.
class FindButton final : public QToolButton {
    Q_OBJECT

public:
    explicit FindButton(QWidget* parent = nullptr);

private:
    void find() const;
};

}  // namespace velmora
