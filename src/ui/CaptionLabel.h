#pragma once

#include <QLabel>

namespace velmora {

/// Smaller text in a secondary colour below a control. It wraps, and follows palette and font. Main thread.
class CaptionLabel final : public QLabel {
    Q_OBJECT

public:
    explicit CaptionLabel(const QString& text = {}, QWidget* parent = nullptr);

private:
    void changeEvent(QEvent* event) override;
    void adopt();

    bool adopting_ = false;
};

}  // namespace velmora
