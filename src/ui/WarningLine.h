#pragma once

#include <QWidget>

class QLabel;

namespace velmora {

/// One warning in orange below a control: a triangle and what is wrong.
class WarningLine final : public QWidget {
    Q_OBJECT

public:
    explicit WarningLine(const QString& text, QWidget* parent = nullptr);

    [[nodiscard]] QString text() const;
    void setText(const QString& text);

private:
    void changeEvent(QEvent* event) override;
    void adopt();

    QLabel* symbol_;
    QLabel* words_;
    bool adopting_ = false;
};

}  // namespace velmora
