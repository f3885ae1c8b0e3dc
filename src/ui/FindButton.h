#pragma once

#include "ui/IconButton.h"

namespace velmora {

/// Opens the find bar of the window that it stands in; so does the platform's shortcut, Ctrl+F. Main thread.
class FindButton final : public IconButton {
    Q_OBJECT

public:
    explicit FindButton(QWidget* parent = nullptr);

private:
    void find() const;
};

}  // namespace velmora
