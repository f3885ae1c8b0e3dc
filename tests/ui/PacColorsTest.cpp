#include "ui/PacColors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace velmora {
namespace {

using PacHighlighter::Kind;

double luminance(const QColor& color) {
    const auto linear = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

class Paper : public testing::TestWithParam<QRgb> {};

TEST_P(Paper, LetsEveryColourBeRead) {
    QPalette palette;
    palette.setColor(QPalette::Base, QColor(GetParam()));
    const PacColors colors(palette);
    for (const auto kind : {Kind::keyword, Kind::builtIn, Kind::string, Kind::comment}) {
        EXPECT_GE(contrast(colors[kind], QColor(GetParam())), 4.5) << colors[kind].name().toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(PacColors, Paper, testing::Values(0xFFFFFFFF, 0xFFF6F6F6, 0xFF2B2B2B, 0xFF1E1E1E, 0xFF000000));

TEST(PacColors, ArePurpleBlueOrangeAndGreen) {
    for (const QRgb paper : {0xFFFFFFFF, 0xFF1E1E1E}) {
        QPalette palette;
        palette.setColor(QPalette::Base, QColor(paper));
        const PacColors colors(palette);
        EXPECT_NEAR(colors[Kind::keyword].hslHue(), 280, 15);
        EXPECT_NEAR(colors[Kind::builtIn].hslHue(), 220, 15);
        EXPECT_NEAR(colors[Kind::string].hslHue(), 30, 15);
        EXPECT_NEAR(colors[Kind::comment].hslHue(), 135, 15);
    }
}

}  // namespace
}  // namespace velmora
