#include "ui/Tints.h"

#include <algorithm>
#include <cmath>

namespace velmora::tints {

namespace {

constexpr double readable = 4.5;
constexpr int mostSteps = 20;  // where the palette's own text is not readable, either
constexpr QRgb errorOnLight = 0xffb3261e;
constexpr QRgb errorOnDark = 0xffff8a80;
constexpr QRgb warningOnLight = 0xffa84a06;
constexpr QRgb warningOnDark = 0xffffa63d;

double linear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// The colour, as close to the ink as it must be.
QColor readableOn(const QColor& ground, const QColor& color, const QColor& ink) {
    QColor result = mix(ground, QColor(color.rgb()), color.alphaF());  // it may shine through
    for (int step = 0; step < mostSteps && contrast(result, ground) < readable; ++step) {
        result = mix(result, ink, 0.1F);
    }
    return result;
}

}  // namespace

bool isDark(const QPalette& palette) {
    return luminance(palette.color(QPalette::Window)) < luminance(palette.color(QPalette::WindowText));
}

QColor mix(const QColor& from, const QColor& to, float share) {
    const auto between = [share](float a, float b) { return a + (b - a) * share; };
    return QColor::fromRgbF(between(from.redF(), to.redF()), between(from.greenF(), to.greenF()),
                            between(from.blueF(), to.blueF()));
}

double contrast(const QColor& first, const QColor& second) {
    const double one = luminance(first);
    const double other = luminance(second);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

QColor underWhiteText(QColor fill) {
    while (contrast(fill, Qt::white) < readable) {
        fill = mix(fill, Qt::black, 0.04F);
    }
    return fill;
}

QColor caption(const QPalette& palette) {
    return readableOn(palette.color(QPalette::Window), palette.color(QPalette::PlaceholderText),
                      palette.color(QPalette::WindowText));
}

QColor placeholder(const QPalette& palette, QPalette::ColorGroup group) {
    const QColor ink = palette.color(group, QPalette::Text);
    const QColor inField =
        readableOn(palette.color(group, QPalette::Base), palette.color(group, QPalette::PlaceholderText), ink);
    return readableOn(palette.color(group, QPalette::Window), inField, ink);
}

QColor error(const QPalette& palette) {
    return QColor(isDark(palette) ? errorOnDark : errorOnLight);
}

QColor warning(const QPalette& palette) {
    return QColor(isDark(palette) ? warningOnDark : warningOnLight);
}

}  // namespace velmora::tints
