#include "ui/ProminentButton.h"
#include "ui/Tints.h"

#include <QGuiApplication>
#include <QPalette>

#include <gtest/gtest.h>

namespace velmora {
namespace {

QPalette paletteOf(QRgb window, QRgb text) {
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(window));
    palette.setColor(QPalette::WindowText, QColor(text));
    return palette;
}

TEST(Tints, ContrastIsThatOfTheAccessibilityGuidelines) {
    EXPECT_NEAR(tints::contrast(Qt::black, Qt::white), 21, 0.01);
    EXPECT_NEAR(tints::contrast(QColor(0xff767676U), Qt::white), 4.54, 0.01);
    EXPECT_NEAR(tints::contrast(Qt::red, Qt::red), 1, 0.001);
}

TEST(Tints, WhiteTextIsReadOnAnyAccent) {
    for (const QRgb accent : {0xffffffffU, 0xffffd60aU, 0xff308cc6U, 0xff0a84ffU, 0xffd9363eU, 0xff000000U}) {
        EXPECT_GE(tints::contrast(tints::underWhiteText(QColor(accent)), Qt::white), 4.5) << accent;
    }
    EXPECT_EQ(tints::underWhiteText(Qt::black), QColor(Qt::black));
}

TEST(Tints, AWarningIsReadOnLightAndOnDark) {
    for (const QPalette& palette : {paletteOf(0xffefefef, 0xff000000), paletteOf(0xff2d2d2d, 0xffffffff)}) {
        EXPECT_GE(tints::contrast(tints::warning(palette), palette.color(QPalette::Window)), 4.5);
    }
}

}  // namespace
}  // namespace velmora
