#pragma once

#include <QProxyStyle>

class QApplication;

namespace velmora {

/// The style of the platform, with the product's own symbols where the toolkit would draw pictures of its own: they
/// take the colours of the palette, and no plugin for pictures is loaded for them (a tenth of the start with a window).
/// Colours that a theme leaves too faint are made strong enough to be read.
class ApplicationStyle final : public QProxyStyle {
    Q_OBJECT

public:
    using QProxyStyle::polish;
    /// Before there is an application nobody knows what the style of the platform is.
    explicit ApplicationStyle(const QApplication& application);

    [[nodiscard]] QIcon standardIcon(StandardPixmap icon, const QStyleOption* option = nullptr,
                                     const QWidget* widget = nullptr) const override;
    int styleHint(StyleHint hint, const QStyleOption* option = nullptr, const QWidget* widget = nullptr,
                  QStyleHintReturn* returned = nullptr) const override;
    void polish(QPalette& palette) override;
};

}  // namespace velmora
