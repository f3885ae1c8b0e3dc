#pragma once

#include <QLabel>

namespace velmora {

/// One line of plain text that leaves out a part of it where there is no room for all; then its tooltip is the whole.
/// It can be selected, and what is copied is the whole. Main thread.
class ElidedLabel final : public QLabel {
    Q_OBJECT

public:
    enum class Look { text, caption };

    /// The middle is for paths: their beginning and their end tell most.
    explicit ElidedLabel(Qt::TextElideMode leftOut = Qt::ElideMiddle, Look look = Look::text,
                         QWidget* parent = nullptr);

    void setFullText(const QString& text);
    [[nodiscard]] const QString& fullText() const { return fullText_; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

private:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void adoptFont();
    void fit();
    void copy() const;

    Qt::TextElideMode leftOut_;
    Look look_;
    QString fullText_;
};

}  // namespace velmora
