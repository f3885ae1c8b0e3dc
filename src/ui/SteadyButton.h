#pragma once

#include <QPushButton>
#include <QStringList>

namespace velmora {

/// A button whose words change and whose width does not. Main thread.
class SteadyButton final : public QPushButton {
    Q_OBJECT

public:
    /// All that it will ever say; it begins with the first.
    explicit SteadyButton(QStringList texts, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

private:
    QStringList texts_;
};

}  // namespace velmora
