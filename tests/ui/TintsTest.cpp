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

TEST(Tints, ACaptionIsReadOnLightAndOnDark) {
    QPalette shining = paletteOf(0xffefefef, 0xff000000);
    shining.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
    QPalette pale = paletteOf(0xff2d2d2d, 0xffffffff);
    pale.setColor(QPalette::PlaceholderText, QColor(0xff606060U));
    QPalette strong = paletteOf(0xffefefef, 0xff000000);
    strong.setColor(QPalette::PlaceholderText, QColor(0xff404040U));
    for (const QPalette& palette : {shining, pale, strong}) {
        EXPECT_GE(tints::contrast(tints::caption(palette), palette.color(QPalette::Window)), 4.5);
    }
    EXPECT_EQ(tints::caption(strong), QColor(0xff404040U)) << "stays as it is where it can be read";
    EXPECT_LT(tints::contrast(tints::caption(shining), QColor(0xffefefefU)), 7)
        << "and faded where it must be stronger";
    const QPalette unreadable = paletteOf(0xff808080, 0xff808080);
    EXPECT_LT(tints::contrast(tints::caption(unreadable), QColor(0xff808080U)), 4.5) << "comes to an end all the same";
}

TEST(Tints, WarningsAndErrorsAreReadOnLightAndOnDark) {
    for (const QPalette& palette : {paletteOf(0xffefefef, 0xff000000), paletteOf(0xff2d2d2d, 0xffffffff)}) {
        EXPECT_GE(tints::contrast(tints::warning(palette), palette.color(QPalette::Window)), 4.5);
        EXPECT_GE(tints::contrast(tints::error(palette), palette.color(QPalette::Window)), 4.5);
    }
}

}  // namespace
}  // namespace velmora
