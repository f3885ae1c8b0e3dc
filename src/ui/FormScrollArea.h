#pragma once

#include <QScrollArea>

namespace velmora {

/// Lets a form scroll up and down. The form ends where it would without the scroll bar, which stands in the margin of
/// the window. It is never narrower than its form. Main thread.
class FormScrollArea final : public QScrollArea {
    Q_OBJECT

public:
    explicit FormScrollArea(QWidget* form, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

private:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace velmora
