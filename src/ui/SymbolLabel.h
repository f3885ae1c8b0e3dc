#pragma once

#include <QIcon>
#include <QWidget>

namespace velmora {

/// One of the program's symbols, as large as the text around it and in its colour.
class SymbolLabel final : public QWidget {
    Q_OBJECT

public:
    explicit SymbolLabel(const QString& symbol, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

private:
    void paintEvent(QPaintEvent* event) override;

    QIcon icon_;
};

}  // namespace velmora
