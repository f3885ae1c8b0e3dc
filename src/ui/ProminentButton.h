#pragma once

#include <QPushButton>
#include <QStringList>

namespace velmora {

/// A button filled with a colour, for what a window is there to do. It is as wide as the widest of its words.
class ProminentButton final : public QPushButton {
    Q_OBJECT

public:
    enum class Tint : std::uint8_t { accent, red };

    explicit ProminentButton(QStringList words, QWidget* parent = nullptr);

    void setLook(const QString& word, Tint tint);
    [[nodiscard]] Tint tint() const { return tint_; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

private:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] QColor fill() const;

    QStringList words_;
    Tint tint_ = Tint::accent;
};

}  // namespace velmora
