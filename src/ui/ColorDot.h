#pragma once

#include <QColor>
#include <QWidget>

namespace velmora {

/// A dot of one colour, as large as those of the host list.
class ColorDot final : public QWidget {
    Q_OBJECT

public:
    explicit ColorDot(const QColor& color, QWidget* parent = nullptr);

    [[nodiscard]] const QColor& color() const { return color_; }
    void setColor(const QColor& color);

private:
    void paintEvent(QPaintEvent* event) override;

    QColor color_;
};

}  // namespace velmora
