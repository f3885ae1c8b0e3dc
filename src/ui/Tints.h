#pragma once

#include <QColor>
#include <QPalette>

/// Colours that are worked out from the palette, so that they hold on light and on dark.
namespace velmora::tints {

[[nodiscard]] bool isDark(const QPalette& palette);

/// The way from one colour to the other, 0 to 1.
[[nodiscard]] QColor mix(const QColor& from, const QColor& to, float share);

/// How well one colour is read on the other: 1 to 21.
[[nodiscard]] double contrast(const QColor& first, const QColor& second);

/// The colour, as dark as it must be for white text of any size to be read on it.
[[nodiscard]] QColor underWhiteText(QColor fill);

/// The faded colour that the palette has for placeholders, as strong as it must be for small text on a window to be
/// read.
[[nodiscard]] QColor caption(const QPalette& palette);

/// The same, as strong as it must be to be read in a field, too.
[[nodiscard]] QColor placeholder(const QPalette& palette, QPalette::ColorGroup group);

/// Red text that is read on a window of this palette.
[[nodiscard]] QColor error(const QPalette& palette);

/// Orange text that is read on a window of this palette.
[[nodiscard]] QColor warning(const QPalette& palette);

}  // namespace velmora::tints
