#pragma once

#include <QColor>
#include <QLineEdit>

namespace velmora {

/// A line of text that shows a value kept elsewhere. While the user is in the field it is theirs; a change of the value
/// shows when they leave. `textEdited` tells what they type; line breaks of what they paste are left out. Main thread.
class TextField : public QLineEdit {
    Q_OBJECT

public:
    explicit TextField(QWidget* parent = nullptr);

    /// The value as it is now. Cursor and selection stay where they are.
    void showValue(const QString& value);

    /// A line of this colour along the lower edge; an invalid colour for none.
    void setUnderline(const QColor& color);
    [[nodiscard]] const QColor& underline() const { return underline_; }

protected:
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void adopt();

    QString value_;
    QColor underline_;
};

}  // namespace velmora
