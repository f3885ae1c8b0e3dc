#pragma once

#include <QFont>

/// The grid that every window keeps to, in device-independent pixels.
namespace velmora::metrics {

inline constexpr int margin = 16;         ///< around the content of a window
inline constexpr int related = 8;         ///< between controls that belong together
inline constexpr int group = 16;          ///< between groups
inline constexpr int section = 24;        ///< between sections
inline constexpr int caption = 4;         ///< between a control and its caption
inline constexpr int widestColumn = 720;  ///< wider windows grow margins, not fields

[[nodiscard]] inline QFont scaled(QFont font, qreal factor) {
    font.setPointSizeF(font.pointSizeF() * factor);
    return font;
}

inline constexpr qreal captionScale = 0.85;
inline constexpr qreal titleScale = 1.4;

}  // namespace velmora::metrics
