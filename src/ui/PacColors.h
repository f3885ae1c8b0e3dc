#pragma once

#include "pac/PacHighlighter.h"

#include <QColor>
#include <QPalette>

#include <array>
#include <cstddef>

namespace velmora {

/// The colours of a proxy script: purple, blue, orange and green, darker on light paper and lighter on dark paper. What
/// has none of them is in the palette's colour of text.
class PacColors final {
public:
    explicit PacColors(const QPalette& palette);

    [[nodiscard]] const QColor& operator[](PacHighlighter::Kind kind) const {
        return colors_.at(static_cast<std::size_t>(kind));
    }
    bool operator==(const PacColors&) const = default;

private:
    std::array<QColor, 4> colors_;
};

}  // namespace velmora
