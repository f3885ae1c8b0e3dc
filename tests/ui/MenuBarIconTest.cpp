#include "ui/ManagerStand.h"
#include "ui/MenuBarIcon.h"

#include <QImage>
#include <QMenu>
#include <QPixmap>

#include <gtest/gtest.h>

#include <cmath>

namespace velmora {
namespace {

class MenuBarIconTest : public testing::Test {
protected:
    ManagerStand stand;
    QMenu menu;
    MenuBarIcon icon{stand.manager, TrayKind::embedded, menu, [] {}};
};

TEST_F(MenuBarIconTest, WithoutHostsItIsSlashed) {
    EXPECT_EQ(icon.symbol(), QStringLiteral("network-slash"));
    EXPECT_EQ(icon.toolTip(), QStringLiteral("Velmora: not connected"));
}

TEST_F(MenuBarIconTest, AConnectingOrConnectedHostIsActiveAndAnIdleOneIsNot) {
    stand.setHostsNamed({"one", "two"});
    icon.refresh();
    EXPECT_EQ(icon.symbol(), QStringLiteral("network-slash"));

    stand.manager.connect(stand.host(1));
    icon.refresh();
    EXPECT_EQ(icon.symbol(), QStringLiteral("network"));
    EXPECT_EQ(icon.toolTip(), QStringLiteral("Velmora: 1 connecting"));

    stand.scheduler.advance(std::chrono::seconds(4));
    icon.refresh();
    EXPECT_EQ(icon.symbol(), QStringLiteral("network"));
    EXPECT_EQ(icon.toolTip(), QStringLiteral("Velmora: 1 connected"));

    stand.manager.disconnect(stand.host(1));
    icon.refresh();
    EXPECT_EQ(icon.symbol(), QStringLiteral("network-slash"));
}

TEST_F(MenuBarIconTest, AHostInErrorIsNotActive) {
    stand.setHostsNamed({"one"});
    stand.makeFailed(0);
    icon.refresh();
    EXPECT_EQ(icon.symbol(), QStringLiteral("network-slash"));
    EXPECT_EQ(icon.toolTip(), QStringLiteral("Velmora: 1 failed"));
}

double luminance(const QColor& color) {
    const auto part = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
}

double contrast(const QColor& one, const QColor& two) {
    const double brighter = std::max(luminance(one), luminance(two));
    const double darker = std::min(luminance(one), luminance(two));
    return (brighter + 0.05) / (darker + 0.05);
}

/// The pixel with the most ink.
QColor strongest(const QImage& image) {
    QColor found(0, 0, 0, 0);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (const QColor color = image.pixelColor(x, y); color.alpha() > found.alpha()) {
                found = color;
            }
        }
    }
    return found;
}

TEST(MenuBarIconDrawing, IsDrawnAtEverySizeAPanelAsksFor) {
    for (const TrayKind kind : {TrayKind::menuBar, TrayKind::statusNotifier, TrayKind::embedded}) {
        const QIcon whole = MenuBarIcon::icon(QStringLiteral("network"), kind);
        const QIcon slashed = MenuBarIcon::icon(QStringLiteral("network-slash"), kind);
        for (const int side : {16, 18, 22, 24, 32, 36, 48}) {
            for (const qreal scale : {1.0, 2.0}) {
                const QImage image = whole.pixmap(QSize(side, side), scale).toImage();
                EXPECT_EQ(image.size(), QSize(side, side) * scale);
                EXPECT_GE(strongest(image).alpha(), 240) << side;
                EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
                const int corner = static_cast<int>(std::floor(side * scale * 4 / 24));
                EXPECT_LT(image.pixelColor(corner, corner).alpha(), 30) << side;
                const QImage other = slashed.pixmap(QSize(side, side), scale).toImage();
                EXPECT_GT(other.pixelColor(corner, corner).alpha(), 100) << side;
            }
        }
    }
}

TEST(MenuBarIconDrawing, CanBeSeenOnLightAndOnDarkPanels) {
    for (const TrayKind kind : {TrayKind::statusNotifier, TrayKind::embedded}) {
        const QIcon icon = MenuBarIcon::icon(QStringLiteral("network"), kind);
        EXPECT_FALSE(icon.isMask());
        const QColor ink = strongest(icon.pixmap(48).toImage());
        for (const QColor panel :
             {QColor(Qt::white), QColor(0xef, 0xf0, 0xf1), QColor(Qt::black), QColor(0x2a, 0x2e, 0x32)}) {
            EXPECT_GE(contrast(ink, panel), 3.0) << panel.name().toStdString();
        }
    }
}

TEST(MenuBarIconDrawing, IsAMaskWhereTheSystemTintsIt) {
    const QIcon icon = MenuBarIcon::icon(QStringLiteral("network"), TrayKind::menuBar);
    EXPECT_TRUE(icon.isMask());
    EXPECT_EQ(strongest(icon.pixmap(48).toImage()), QColor(Qt::black));
}

}  // namespace
}  // namespace velmora
