#pragma once

#include <QPlainTextEdit>

namespace velmora {

/// Plain text of several lines that shows a value kept elsewhere, on the terms of a text field. Main thread.
class LinesField final : public QPlainTextEdit {
    Q_OBJECT

public:
    /// As high as this many lines.
    explicit LinesField(int visibleLines, QWidget* parent = nullptr);

    /// The value as it is now; shown when the user is not in the field. Cursor and selection stay where they are.
    void showValue(const QString& value);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user typed this; lines end with a line feed. A value that is typed back is the value again, byte for byte,
    /// however its own lines ended.
    void edited(const QString& value);

private:
    void focusOutEvent(QFocusEvent* event) override;
    void adopt();
    void readTyped();
    [[nodiscard]] QString typed() const;

    int visibleLines_;
    QString value_;
    QString original_;  ///< the last one that was not typed here
    bool adopting_ = false;
    bool telling_ = false;
};

}  // namespace velmora
