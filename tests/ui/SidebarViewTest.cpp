#include "ui/HostListView.h"
#include "ui/SidebarView.h"
#include "ui/WindowStand.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPointingDevice>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyleHints>
#include <QTest>
#include <QToolButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>

namespace velmora {
namespace {

using testing::ElementsAre;

class SidebarViewTest : public testing::Test {
protected:
    void open() {
        sidebar->resize(320, 400);
        sidebar->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(sidebar.get()));
        sidebar->focusList();
        QApplication::processEvents();
    }
    void openWith(const std::vector<std::string>& names) {
        stand.setHostsNamed(names);
        open();
    }
    void openWithMany(std::size_t count) {
        std::vector<std::string> names;
        for (std::size_t number = 0; number < count; ++number) {
            names.push_back("host " + std::to_string(number));
        }
        openWith(names);
    }

    HostListView& list() { return *sidebar->findChild<HostListView*>(QStringLiteral("hosts")); }
    QTimer& uptimeTimer() { return *sidebar->findChild<QTimer*>(QStringLiteral("uptime")); }
    QModelIndex row(int position) { return list().model()->index(position, 0); }
    QPoint middleOf(int position) { return list().visualRect(row(position)).center(); }
    std::vector<std::string> shown() {
        std::vector<std::string> names;
        for (int position = 0; position < list().model()->rowCount(); ++position) {
            names.push_back(row(position).data().toString().toStdString());
        }
        return names;
    }
    std::vector<int> selectedRows() {
        std::vector<int> rows;
        for (const QModelIndex& index : list().selectionModel()->selectedIndexes()) {
            rows.push_back(index.row());
        }
        return rows;
    }
    bool isActive(std::size_t position) { return stand.manager.isActive(stand.host(position)); }

    /// As many clicks at once as a user can do, in the way in which Qt tells of them.
    void click(QPoint position, int times, Qt::MouseButton button = Qt::LeftButton) {
        time += 10'000;
        for (int number = 0; number < times; ++number) {
            time += 80;
            const bool second = number % 2 == 1;
            send(second ? QEvent::MouseButtonDblClick : QEvent::MouseButtonPress, position, button, button);
            send(QEvent::MouseButtonRelease, position, button, Qt::NoButton);
        }
    }
    void send(QEvent::Type type, QPoint position, Qt::MouseButton button, Qt::MouseButtons held) {
        QMouseEvent event(type, position, list().viewport()->mapToGlobal(position), button, held, Qt::NoModifier,
                          QPointingDevice::primaryPointingDevice());
        event.setTimestamp(time);
        QApplication::sendEvent(list().viewport(), &event);
    }
    QMenu* openMenu(QContextMenuEvent::Reason reason, QPoint position) {
        QContextMenuEvent event(reason, position, list().viewport()->mapToGlobal(position));
        QApplication::sendEvent(list().viewport(), &event);
        return sidebar->findChild<QMenu*>(QStringLiteral("hostMenu"));
    }
    void type(const QString& text) { sidebar->search().setText(text); }

    WindowStand stand;
    SelectedHost selected;
    std::uint64_t time = 0;
    std::unique_ptr<SidebarView> sidebar = std::make_unique<SidebarView>(stand.services, selected);
};

TEST_F(SidebarViewTest, ShowsTheHostsAndSelectsTheOneClicked) {
    openWith({"web", "db"});
    EXPECT_THAT(shown(), ElementsAre("web", "db"));
    EXPECT_FALSE(selected.get());
    click(middleOf(1), 1);
    EXPECT_EQ(selected.get(), stand.host(1).id);
    EXPECT_FALSE(isActive(1));
    selected.set(stand.host(0).id);
    EXPECT_THAT(selectedRows(), ElementsAre(0));
    selected.set(std::nullopt);
    EXPECT_THAT(selectedRows(), ElementsAre());
}

TEST_F(SidebarViewTest, TypeAheadSelects) {
    openWith({"alpha", "beta", "gamma"});
    QTest::keyClicks(&list(), QStringLiteral("ga"));
    EXPECT_EQ(selected.get(), stand.host(2).id);
}

TEST_F(SidebarViewTest, TheFirstArrowKeySelectsTheFirstRow) {
    openWith({"web", "db"});
    QTest::keyClick(&list(), Qt::Key_Down);
    EXPECT_EQ(selected.get(), stand.host(0).id);
    QTest::keyClick(&list(), Qt::Key_Down);
    EXPECT_EQ(selected.get(), stand.host(1).id);
}

// ---- search ----

TEST_F(SidebarViewTest, ASearchOfPRODFindsAHostByNameAndOneByHostnameButNoneByItsTags) {
    std::vector<SSHHost> hosts(3);
    hosts[0].name = "prod-db";
    hosts[1].name = "database";
    hosts[1].hostname = "db.prod.internal";
    hosts[2].name = "web";
    hosts[2].tags = "prod";
    stand.setHosts(hosts);
    open();
    QTest::keyClicks(&sidebar->search(), QStringLiteral("PROD"));
    EXPECT_THAT(shown(), ElementsAre("prod-db", "database"));
}

TEST_F(SidebarViewTest, AnEmptySearchShowsEveryHostInStoredOrder) {
    openWith({"c", "a", "b"});
    type(QStringLiteral("b"));
    type(QString());
    EXPECT_THAT(shown(), ElementsAre("c", "a", "b"));
}

TEST_F(SidebarViewTest, TheSearchCanBeClearedByMouseOnceThereIsOne) {
    openWith({"web", "db"});
    auto* clear = sidebar->findChild<QAction*>(QStringLiteral("clearSearch"));
    EXPECT_FALSE(clear->isVisible());
    type(QStringLiteral("db"));
    EXPECT_TRUE(clear->isVisible());
    clear->trigger();
    EXPECT_THAT(shown(), ElementsAre("web", "db"));
    EXPECT_FALSE(clear->isVisible());
}

TEST_F(SidebarViewTest, ASelectedHostThatIsFilteredOutStaysSelected) {
    openWith({"web", "db"});
    click(middleOf(0), 1);
    const QSignalSpy changed(sidebar.get(), &SidebarView::changed);
    type(QStringLiteral("db"));
    EXPECT_EQ(selected.get(), stand.host(0).id);
    EXPECT_THAT(selectedRows(), ElementsAre());
    stand.makeConnected(1);
    QApplication::processEvents();
    EXPECT_EQ(selected.get(), stand.host(0).id);
    type(QString());
    EXPECT_THAT(selectedRows(), ElementsAre(0));
    EXPECT_GE(changed.count(), 2);
}

TEST_F(SidebarViewTest, TheSelectionSurvivesWhatASearchDoesToTheRowsAroundIt) {
    openWith({"a 1", "b 1", "a 2", "b 2"});
    click(middleOf(3), 1);
    const Uuid id = stand.host(3).id;
    for (const char* search : {"b", "2", "b 2", "", "a", ""}) {
        type(QString::fromLatin1(search));
        EXPECT_EQ(selected.get(), id) << search;
    }
    EXPECT_THAT(selectedRows(), ElementsAre(3));
}

TEST_F(SidebarViewTest, KeysLeadFromTheSearchToTheFirstHostFoundAndEmptyIt) {
    openWith({"web", "db 1", "db 2"});
    click(middleOf(0), 1);
    sidebar->search().setFocus();
    QTest::keyClicks(&sidebar->search(), QStringLiteral("db"));
    QTest::keyClick(&sidebar->search(), Qt::Key_Down);
    EXPECT_TRUE(list().hasFocus());
    EXPECT_EQ(selected.get(), stand.host(1).id);
    sidebar->search().setFocus();
    QTest::keyClick(&sidebar->search(), Qt::Key_Escape);
    EXPECT_THAT(shown(), ElementsAre("web", "db 1", "db 2"));
}

// ---- double click ----

TEST_F(SidebarViewTest, ADoubleClickTogglesTheHost) {
    openWith({"web", "db"});
    click(middleOf(1), 2);
    EXPECT_TRUE(isActive(1));
    EXPECT_FALSE(isActive(0));
    click(middleOf(1), 2);
    EXPECT_FALSE(isActive(1));
}

TEST_F(SidebarViewTest, TheThirdAndTheFourthClickToggleNothing) {
    openWith({"web", "db"});
    click(middleOf(0), 3);
    EXPECT_TRUE(isActive(0));
    click(middleOf(1), 4);
    EXPECT_TRUE(isActive(1));
    click(middleOf(1), 5);
    EXPECT_FALSE(isActive(1));
}

TEST_F(SidebarViewTest, DoubleClickingEmptySpaceUnderTheLastRowTogglesNothing) {
    openWith({"web", "db"});
    click(middleOf(1), 1);
    const QPoint below(100, list().visualRect(row(1)).bottom() + 30);
    ASSERT_TRUE(list().viewport()->rect().contains(below));
    click(below, 2);
    EXPECT_FALSE(isActive(0));
    EXPECT_FALSE(isActive(1));
}

TEST_F(SidebarViewTest, OnlyTheLeftButtonToggles) {
    openWith({"web"});
    click(middleOf(0), 2, Qt::RightButton);
    click(middleOf(0), 2, Qt::MiddleButton);
    EXPECT_FALSE(isActive(0));
}

TEST_F(SidebarViewTest, ReturnToggles) {
    openWith({"web", "db"});
    QTest::keyClick(&list(), Qt::Key_Return);
    EXPECT_FALSE(isActive(0));
    click(middleOf(1), 1);
    QTest::keyClick(&list(), Qt::Key_Return);
    EXPECT_TRUE(isActive(1));
    QTest::keyClick(&list(), Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_FALSE(isActive(1));
}

// ---- context menu and deletion ----

TEST_F(SidebarViewTest, TheContextMenuConnectsDisconnectsAndAsksToDelete) {
    openWith({"web", "db"});
    QMenu* menu = openMenu(QContextMenuEvent::Mouse, middleOf(1));
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 3);
    EXPECT_EQ(menu->actions()[0]->text(), QStringLiteral("Connect"));
    EXPECT_TRUE(menu->actions()[1]->isSeparator());
    EXPECT_EQ(menu->actions()[2]->text(), QStringLiteral("Delete"));
    menu->actions()[0]->trigger();
    EXPECT_TRUE(isActive(1));
    delete menu;

    menu = openMenu(QContextMenuEvent::Mouse, middleOf(1));
    EXPECT_EQ(menu->actions()[0]->text(), QStringLiteral("Disconnect"));
    menu->actions()[2]->trigger();
    ASSERT_EQ(stand.dialogs.questions.size(), 1U);
    EXPECT_EQ(stand.manager.hosts().get().size(), 2U);
    menu->actions()[0]->trigger();
    EXPECT_FALSE(isActive(1));
    delete menu;
}

TEST_F(SidebarViewTest, TheContextMenuKeyOpensTheMenuOfTheCurrentRow) {
    openWith({"web", "db"});
    click(middleOf(1), 1);
    QMenu* menu = openMenu(QContextMenuEvent::Keyboard, {});
    ASSERT_NE(menu, nullptr);
    menu->actions()[0]->trigger();
    EXPECT_TRUE(isActive(1));
    delete menu;
}

TEST_F(SidebarViewTest, EmptySpaceHasNoContextMenu) {
    openWith({"web"});
    EXPECT_EQ(openMenu(QContextMenuEvent::Mouse, QPoint(50, 200)), nullptr);
}

TEST_F(SidebarViewTest, DeletingTheSelectedHostAsksAndThenClearsTheSelection) {
    openWith({"web \"x\" %1", "db"});
    click(middleOf(0), 1);
    QTest::keyClick(&list(), Qt::Key_Delete);
    ASSERT_EQ(stand.dialogs.questions.size(), 1U);
    EXPECT_EQ(stand.dialogs.questions[0].message, QStringLiteral("Delete Tunnel"));
    EXPECT_EQ(stand.dialogs.questions[0].informativeText,
              QStringLiteral("Are you sure you want to delete \"web \"x\" %1\"? This cannot be undone."));
    EXPECT_EQ(stand.dialogs.questions[0].acceptButton, QStringLiteral("Delete"));
    EXPECT_EQ(stand.manager.hosts().get().size(), 2U);
    stand.dialogs.answer(true);
    EXPECT_FALSE(selected.get());
    QApplication::processEvents();
    EXPECT_THAT(shown(), ElementsAre("db"));
    EXPECT_THAT(selectedRows(), ElementsAre());
}

TEST_F(SidebarViewTest, DeletingAnotherHostKeepsTheSelection) {
    openWith({"web", "db"});
    click(middleOf(1), 1);
    sidebar->askToDelete(stand.host(0).id);
    stand.dialogs.answer(true);
    QApplication::processEvents();
    EXPECT_EQ(selected.get(), stand.host(0).id);
    EXPECT_THAT(selectedRows(), ElementsAre(0));
}

TEST_F(SidebarViewTest, CancellingTheDeletionLeavesTheHost) {
    openWith({"web"});
    click(middleOf(0), 1);
    QTest::keyClick(&list(), Qt::Key_Delete);
    stand.dialogs.answer(false);
    EXPECT_EQ(stand.manager.hosts().get().size(), 1U);
    EXPECT_EQ(selected.get(), stand.host(0).id);
    QTest::keyClick(&list(), Qt::Key_Delete);
    EXPECT_EQ(stand.dialogs.questions.size(), 2U);
}

TEST_F(SidebarViewTest, AsksAboutOneDeletionAtATime) {
    openWith({"web", "db"});
    sidebar->askToDelete(stand.host(0).id);
    sidebar->askToDelete(stand.host(1).id);
    EXPECT_EQ(stand.dialogs.questions.size(), 1U);
}

TEST_F(SidebarViewTest, AnAnswerThatComesAfterTheEndOfTheWindowDeletesNothing) {
    openWith({"web"});
    sidebar->askToDelete(stand.host(0).id);
    sidebar.reset();
    stand.dialogs.answer(true);
    EXPECT_EQ(stand.manager.hosts().get().size(), 1U);
}

TEST_F(SidebarViewTest, DeleteWithoutASelectionAsksNothing) {
    openWith({"web"});
    QTest::keyClick(&list(), Qt::Key_Delete);
    EXPECT_TRUE(stand.dialogs.questions.empty());
}

// ---- order ----

TEST_F(SidebarViewTest, RowsAreReorderedByDragging) {
    openWith({"a", "b", "c"});
    EXPECT_EQ(list().dragDropMode(), QAbstractItemView::InternalMove);
    click(middleOf(0), 1);
    const Uuid id = stand.host(0).id;
    ASSERT_TRUE(list().model()->moveRow({}, 0, {}, 3));
    EXPECT_THAT(shown(), ElementsAre("b", "c", "a"));
    EXPECT_EQ(selected.get(), id);
    EXPECT_THAT(selectedRows(), ElementsAre(2));
}

TEST_F(SidebarViewTest, TheSelectedHostMovesByKeyboardUnlessASearchHidesOthers) {
    openWith({"a", "b", "c"});
    EXPECT_FALSE(sidebar->canMoveSelected(1));
    click(middleOf(0), 1);
    EXPECT_FALSE(sidebar->canMoveSelected(-1));
    sidebar->moveSelected(1);
    EXPECT_THAT(shown(), ElementsAre("b", "a", "c"));
    sidebar->moveSelected(1);
    EXPECT_THAT(shown(), ElementsAre("b", "c", "a"));
    EXPECT_FALSE(sidebar->canMoveSelected(1));
    sidebar->moveSelected(-1);
    EXPECT_THAT(shown(), ElementsAre("b", "a", "c"));
    type(QStringLiteral("a"));
    EXPECT_FALSE(sidebar->canMoveSelected(-1));
}

TEST_F(SidebarViewTest, HostsThatComeAndGoAboveDoNotMoveWhatIsInSight) {
    openWithMany(200);
    click(middleOf(2), 1);
    list().verticalScrollBar()->setValue(100 * 44 + 10);
    const QString top = list().indexAt(QPoint(5, 0)).data().toString();
    const int offset = list().visualRect(list().indexAt(QPoint(5, 0))).top();
    stand.manager.hosts().edit([](auto& hosts) {
        hosts.erase(hosts.begin(), hosts.begin() + 2);
        hosts.insert(hosts.begin() + 50, 5, ManagerStand::hostNamed("new"));
    });
    QApplication::processEvents();
    EXPECT_EQ(list().indexAt(QPoint(5, 0)).data().toString(), top);
    EXPECT_EQ(list().visualRect(list().indexAt(QPoint(5, 0))).top(), offset);
    EXPECT_THAT(selectedRows(), ElementsAre(0));
}

TEST_F(SidebarViewTest, StatusesAndANewOrderDoNotScroll) {
    openWithMany(200);
    click(middleOf(2), 1);
    list().verticalScrollBar()->setValue(4000);
    stand.makeFailed(7);
    stand.manager.hosts().edit([](auto& hosts) { std::reverse(hosts.begin(), hosts.end()); });
    QApplication::processEvents();
    EXPECT_EQ(list().verticalScrollBar()->value(), 4000);
    EXPECT_THAT(selectedRows(), ElementsAre(197));
}

// ---- uptime ----

TEST_F(SidebarViewTest, TheUptimeAdvancesEvery30SecondsWhileItIsSeen) {
    openWith({"web", "db"});
    EXPECT_FALSE(uptimeTimer().isActive());
    stand.makeConnected(0);
    QApplication::processEvents();
    ASSERT_TRUE(uptimeTimer().isActive());
    EXPECT_EQ(uptimeTimer().intervalAsDuration(), std::chrono::seconds(30));
    EXPECT_EQ(row(0).data(HostListModel::StatusTextRole).toString(), QStringLiteral("Connected · < 1m"));

    stand.scheduler.advance(std::chrono::minutes(5));
    const QSignalSpy changed(list().model(), &QAbstractItemModel::dataChanged);
    QMetaObject::invokeMethod(&uptimeTimer(), "timeout");
    EXPECT_EQ(row(0).data(HostListModel::StatusTextRole).toString(), QStringLiteral("Connected · 5m"));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(1).toModelIndex().row(), 0);

    stand.manager.disconnect(stand.host(0));
    QApplication::processEvents();
    EXPECT_FALSE(uptimeTimer().isActive());
}

TEST_F(SidebarViewTest, NothingTicksWhileNoConnectedHostIsSeen) {
    openWith({"web", "db"});
    stand.makeConnected(0);
    QApplication::processEvents();
    type(QStringLiteral("db"));
    EXPECT_FALSE(uptimeTimer().isActive());
    type(QString());
    EXPECT_TRUE(uptimeTimer().isActive());
    sidebar->hide();
    EXPECT_FALSE(uptimeTimer().isActive());
    sidebar->show();
    EXPECT_TRUE(uptimeTimer().isActive());
}

// ---- buttons ----

TEST_F(SidebarViewTest, PlusAsksForANewHostAndTheGearOpensTheSettings) {
    openWith({});
    const QSignalSpy asked(sidebar.get(), &SidebarView::showNew);
    auto* plus = sidebar->findChild<QToolButton*>(QStringLiteral("plus"));
    auto* gear = sidebar->findChild<QToolButton*>(QStringLiteral("gear"));
    EXPECT_FALSE(plus->accessibleName().isEmpty());
    EXPECT_FALSE(gear->accessibleName().isEmpty());
    plus->click();
    EXPECT_EQ(asked.count(), 1);
    gear->click();
    EXPECT_THAT(stand.opened, ElementsAre("settings"));
}

// ---- many ----

TEST_F(SidebarViewTest, TenThousandHostsAreThereAreFilteredAndSelected) {
    openWithMany(10'000);
    EXPECT_EQ(list().model()->rowCount(), 10'000);
    EXPECT_EQ(list().findChildren<QLineEdit*>().size(), 0);
    QTest::keyClicks(&sidebar->search(), QStringLiteral("host 99"));
    EXPECT_EQ(list().model()->rowCount(), 111);
    click(middleOf(1), 1);
    EXPECT_EQ(selected.get(), stand.host(990).id);
    sidebar->search().clear();
    EXPECT_THAT(selectedRows(), ElementsAre(990));
    EXPECT_TRUE(list().viewport()->rect().contains(list().visualRect(row(990))));
}

}  // namespace
}  // namespace velmora
