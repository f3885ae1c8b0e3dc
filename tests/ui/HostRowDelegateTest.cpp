#include "ui/HostListModel.h"
#include "ui/HostRowDelegate.h"
#include "ui/ManagerStand.h"
#include "ui/StatusLook.h"

#include <QApplication>
#include <QImage>
#include <QListView>
#include <QPainter>

#include <gtest/gtest.h>

namespace velmora {
namespace {

class HostRowDelegateTest : public testing::Test {
protected:
    HostRowDelegateTest() {
        stand.setHostsNamed({"a host with a name"});
        model.refresh();
        list.setModel(&model);
        option.initFrom(&list);
        option.font = QApplication::font();
        option.palette.setColor(QPalette::Base, Qt::white);
        option.palette.setColor(QPalette::Highlight, QColor(0x30, 0x8c, 0xc6));
        option.rect = QRect(0, 0, 300, 44);
    }

    QImage painted() {
        QImage image(option.rect.size(), QImage::Format_ARGB32);
        image.fill(option.palette.color(QPalette::Base));
        QPainter painter(&image);
        delegate.paint(&painter, option, model.index(0));
        return image;
    }

    ManagerStand stand;
    HostListModel model{stand.manager};
    QListView list;
    HostRowDelegate delegate;
    QStyleOptionViewItem option;
};

TEST_F(HostRowDelegateTest, ARowIs44HighAndGrowsWithTheFont) {
    option.font.setPointSizeF(9);
    EXPECT_EQ(delegate.sizeHint(option, model.index(0)).height(), 44);
    option.font.setPointSizeF(30);
    EXPECT_GT(delegate.sizeHint(option, model.index(0)).height(), 80);
}

TEST_F(HostRowDelegateTest, TheDotHasTheColourOfTheStatus) {
    EXPECT_EQ(painted().pixelColor(20, 22), QColor(0x8c, 0x8c, 0x8c));
    stand.makeConnected(0);
    model.refresh();
    const QColor green = painted().pixelColor(20, 22);
    EXPECT_GT(green.green(), green.red() + 50);
    EXPECT_GT(green.green(), green.blue() + 50);
}

TEST_F(HostRowDelegateTest, TheDotOfASelectedRowStandsInARing) {
    stand.makeConnected(0);
    model.refresh();
    const QColor green = painted().pixelColor(20, 22);
    option.state |= QStyle::State_Selected | QStyle::State_Active;
    const QImage image = painted();
    EXPECT_EQ(image.pixelColor(20, 22), green);
    EXPECT_GT(image.pixelColor(14, 22).lightness(), 200);
    EXPECT_LT(image.pixelColor(10, 22).lightness(), 200);
}

TEST_F(HostRowDelegateTest, FromRightToLeftTheDotIsOnTheRight) {
    option.direction = Qt::RightToLeft;
    EXPECT_EQ(painted().pixelColor(299 - 20, 22), QColor(0x8c, 0x8c, 0x8c));
}

}  // namespace
}  // namespace velmora
