#pragma once

#include <QLabel>

namespace velmora {

/// One line of caption text. What does not fit ends in an ellipsis, and the whole text is in the tooltip then.
class ElidingLabel final : public QLabel {
    Q_OBJECT

public:
    explicit ElidingLabel(QWidget* parent = nullptr);

    void setWholeText(const QString& text);
    [[nodiscard]] const QString& wholeText() const { return whole_; }

    [[nodiscard]] QSize minimumSizeHint() const override;

private:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void tellWhole();

    QString whole_;
};

}  // namespace velmora
