#pragma once

#include <QLabel>

namespace velmora {

/// What went wrong, in a red that reads well on light and on dark. It wraps and can be selected. Main thread.
class ErrorLabel final : public QLabel {
    Q_OBJECT

public:
    explicit ErrorLabel(QWidget* parent = nullptr);

private:
    void changeEvent(QEvent* event) override;
    void adopt();

    bool adopting_ = false;
};

}  // namespace velmora
