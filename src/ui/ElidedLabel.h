#pragma once

#include <QLabel>

namespace velmora {

/// One line of plain text that leaves out its middle where there is no room for all of it; then its tooltip is the
/// whole. It can be selected, and what is copied is the whole. Main thread.
class ElidedLabel final : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    void setFullText(const QString& text);
    [[nodiscard]] const QString& fullText() const { return fullText_; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

private:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void fit();
    void copy() const;

    QString fullText_;
};

}  // namespace velmora
