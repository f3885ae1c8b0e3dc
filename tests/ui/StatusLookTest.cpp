#include "ui/StatusLook.h"

#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace velmora {
namespace {

using State = ConnectionStatus::State;

QColor middleOf(const QIcon& icon) {
    return icon.pixmap(16).toImage().pixelColor(8, 8);
}

TEST(StatusLook, SaysTheStatusInWords) {
    EXPECT_EQ(statusText(ConnectionStatus::disconnected()).toStdString(), "Not Connected");
    EXPECT_EQ(statusText(ConnectionStatus::connecting()).toStdString(), "Connecting...");
    EXPECT_EQ(statusText(ConnectionStatus::connected()).toStdString(), "Connected");
    EXPECT_EQ(statusText(ConnectionStatus::connected(), "2h 14m").toStdString(), "Connected · 2h 14m");
    EXPECT_EQ(statusText(ConnectionStatus::error("no\nroute")).toStdString(), "Error: no route");
    EXPECT_EQ(statusText(ConnectionStatus::error("x"), "3m").toStdString(), "Connected · 3m");
}

double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

TEST(StatusLook, ColoursStandOutFromLightAndFromDarkBackgrounds) {
    for (const QColor background : {QColor(0xff, 0xff, 0xff), QColor(0xef, 0xef, 0xef), QColor(0x80, 0x80, 0x80),
                                    QColor(0x30, 0x8c, 0xc6), QColor(0x2b, 0x2b, 0x2b), QColor(0, 0, 0)}) {
        for (const State state : {State::disconnected, State::connecting, State::connected, State::error}) {
            const double one = luminance(statusColor(state, background));
            const double other = luminance(background);
            EXPECT_GE((std::max(one, other) + 0.05) / (std::min(one, other) + 0.05), 3.0)
                << background.name().toStdString() << ", " << static_cast<int>(state);
        }
    }
}

TEST(StatusLook, ColoursThatStandOutAnywayStayAsTheyAre) {
    EXPECT_EQ(statusColor(State::disconnected, Qt::white), QColor(0x8c, 0x8c, 0x8c));
    EXPECT_EQ(statusColor(State::error, Qt::white), statusColor(State::error));
    EXPECT_EQ(statusColor(State::connecting, Qt::black), statusColor(State::connecting));
    EXPECT_EQ(statusColor(State::connected, Qt::black), statusColor(State::connected));
}

TEST(StatusLook, DotsOfTheMenu) {
    StatusDots dots;
    const QColor green = middleOf(dots.icon(State::connected));
    EXPECT_GT(green.green(), green.red());
    EXPECT_GT(green.green(), green.blue());
    const QColor yellow = middleOf(dots.icon(State::connecting));
    EXPECT_GT(yellow.red(), 200);
    EXPECT_GT(yellow.green(), 150);
    EXPECT_LT(yellow.blue(), 80);
    const QColor red = middleOf(dots.icon(State::error));
    EXPECT_GT(red.red(), 200);
    EXPECT_LT(red.green(), 100);
    EXPECT_EQ(middleOf(dots.icon(State::disconnected)), QColor(Qt::white));
}

TEST(StatusLook, AWhiteDotCanBeSeenOnWhite) {
    StatusDots dots;
    const QImage image = dots.icon(State::disconnected).pixmap(16).toImage();
    EXPECT_LT(image.pixelColor(4, 8).lightness(), 200);
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
}

TEST(StatusLook, DotsAreSharpAtTwiceTheSize) {
    StatusDots dots;
    for (const State state : {State::disconnected, State::connecting, State::connected, State::error}) {
        EXPECT_TRUE(dots.icon(state).availableSizes().contains(QSize(16, 16)));
        EXPECT_EQ(dots.icon(state).pixmap(QSize(16, 16), 2.0).size(), QSize(32, 32));
    }
}

}  // namespace
}  // namespace velmora
