#include "ui/HostListWindow.h"
#include "ui/ManagerStand.h"

#include <QAction>
#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

namespace velmora {
namespace {

class HostListWindowTest : public testing::Test {
protected:
    void open() {
        window.refresh();
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    }
    QListView& list() { return *window.findChild<QListView*>(QStringLiteral("hosts")); }
    QLabel& placeholder() { return *window.findChild<QLabel*>(QStringLiteral("placeholder")); }

    ManagerStand stand;
    int quits = 0;
    HostListWindow window{stand.manager, "/home/a&b/<x>/hosts.json", [this] { ++quits; }};
};

TEST_F(HostListWindowTest, IsCalledVelmora) {
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Velmora"));
    EXPECT_EQ(window.objectName(), QStringLiteral("main"));
}

TEST_F(HostListWindowTest, WithoutHostsItSaysWhereTheyAreDescribed) {
    open();
    EXPECT_TRUE(placeholder().isVisible());
    EXPECT_TRUE(placeholder().text().contains(QStringLiteral("/home/a&amp;b/&lt;x&gt;/hosts.json")));
    stand.setHostsNamed({"web"});
    window.refresh();
    EXPECT_FALSE(placeholder().isVisible());
    EXPECT_TRUE(list().isVisible());
}

TEST_F(HostListWindowTest, ReturnAndDoubleClickToggleAHost) {
    stand.setHostsNamed({"web", "db"});
    open();
    list().setCurrentIndex(list().model()->index(1, 0));
    QTest::keyClick(&list(), Qt::Key_Return);
    EXPECT_TRUE(stand.manager.isActive(stand.host(1)));
    EXPECT_FALSE(stand.manager.isActive(stand.host(0)));

    const QPoint row = list().visualRect(list().model()->index(1, 0)).center();
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, row);
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, row);
    EXPECT_FALSE(stand.manager.isActive(stand.host(1)));
}

TEST_F(HostListWindowTest, TheSelectionStaysWhileStatusesChange) {
    stand.setHostsNamed({"web", "db"});
    open();
    list().setCurrentIndex(list().model()->index(1, 0));
    stand.makeConnected(0);
    stand.makeFailed(1);
    window.refresh();
    EXPECT_EQ(list().currentIndex().row(), 1);
}

TEST_F(HostListWindowTest, HasAWayOut) {
    window.findChild<QAction*>(QStringLiteral("quit"))->trigger();
    EXPECT_EQ(quits, 1);
}

}  // namespace
}  // namespace velmora
