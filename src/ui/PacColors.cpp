#include "ui/PacColors.h"

namespace velmora {

namespace {

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Base).lightness() < 128;
}

// In the order of the kinds: keyword, built-in, string, comment.
constexpr std::array<QRgb, 4> onLight{0xFF8944AB, 0xFF0040DD, 0xFFB23A00, 0xFF007D1B};
constexpr std::array<QRgb, 4> onDark{0xFFDA8FFF, 0xFF64A9FF, 0xFFFFB340, 0xFF4CD964};

}  // namespace

PacColors::PacColors(const QPalette& palette) {
    const auto& source = isDark(palette) ? onDark : onLight;
    for (std::size_t i = 0; i < colors_.size(); ++i) {
        colors_.at(i) = QColor::fromRgb(source.at(i));
    }
}

}  // namespace velmora
