#pragma once

#include <QColor>
#include <QIcon>
#include <QIconEngine>
#include <QString>

#include <optional>

namespace velmora {

/// Draws an SVG file as a mask, at whatever size is asked for: in one colour, or in the palette's colour of the moment.
class SymbolIconEngine final : public QIconEngine {
public:
    /// Without a colour it is the text colour of the application's palette: the highlighted text where an item is
    /// selected, the disabled text where it is disabled.
    explicit SymbolIconEngine(QString svgFile, std::optional<QColor> color = {});

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal scale) override;
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override;
    [[nodiscard]] QIconEngine* clone() const override;

private:
    [[nodiscard]] QColor color(QIcon::Mode mode) const;

    QString svgFile_;
    std::optional<QColor> color_;
};

/// One of the program's own symbols, such as "plus" or "network-slash". It follows the palette.
[[nodiscard]] QIcon symbolIcon(const QString& name);

/// The same in a colour of its own.
[[nodiscard]] QIcon symbolIcon(const QString& name, const QColor& color);

}  // namespace velmora
