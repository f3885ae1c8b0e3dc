#include "ui/ContentView.h"
#include "ui/WindowStand.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QTest>

#include <gtest/gtest.h>

namespace velmora {
namespace {

class ContentViewTest : public testing::Test {
protected:
    ~ContentViewTest() override { delete window; }

    void open() {
        QApplication::processEvents();
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    }
    QListView& list() { return *window->findChild<QListView*>(QStringLiteral("hosts")); }

    WindowStand stand;
    QPointer<ContentView> window = new ContentView(stand.services);
};

TEST_F(ContentViewTest, IsCalledVelmora) {
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Velmora"));
    EXPECT_EQ(window->objectName(), QStringLiteral("main"));
}

TEST_F(ContentViewTest, ReturnAndDoubleClickToggleAHost) {
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

TEST_F(ContentViewTest, TheSelectionStaysWhileStatusesChange) {
    stand.setHostsNamed({"web", "db"});
    open();
    list().setCurrentIndex(list().model()->index(1, 0));
    stand.makeConnected(0);
    stand.makeFailed(1);
    QApplication::processEvents();
    EXPECT_EQ(list().currentIndex().row(), 1);
}

TEST_F(ContentViewTest, HasAWayOut) {
    window->findChild<QAction*>(QStringLiteral("quit"))->trigger();
    EXPECT_EQ(stand.quits, 1);
}

TEST_F(ContentViewTest, RemembersItsSize) {
    open();
    window->resize(700, 500);
    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_TRUE(window.isNull());
    window = new ContentView(stand.services);
    EXPECT_EQ(window->size(), QSize(700, 500));
}

}  // namespace
}  // namespace velmora
