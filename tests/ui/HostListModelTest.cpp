#include "base/AtomicFile.h"
#include "model/HostJson.h"
#include "ui/HostListModel.h"
#include "ui/ManagerStand.h"

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>
#include <QSignalSpy>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace velmora {
namespace {

using testing::ElementsAre;

class HostListModelTest : public testing::Test {
protected:
    std::vector<std::string> names() {
        std::vector<std::string> found;
        for (int row = 0; row < model.rowCount(); ++row) {
            found.push_back(model.index(row).data().toString().toStdString());
        }
        return found;
    }
    std::vector<std::string> savedNames() {
        std::vector<std::string> found;
        const auto bytes = readFile(stand.home / "share" / "Velmora" / "hosts.json", maximumHostListSize);
        const auto hosts = decodeHosts(bytes.value());
        for (const SSHHost& host : hosts.value()) {
            found.push_back(host.name);
        }
        return found;
    }
    template <typename Edit>
    void apply(Edit edit) {
        stand.manager.hosts().edit(edit);
        model.refresh();
    }

    ManagerStand stand;
    HostListModel model{stand.manager};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(HostListModelTest, ShowsNameAndStatusInWords) {
    stand.setHostsNamed({"web", ""});
    stand.makeConnected(0);
    model.refresh();
    EXPECT_THAT(names(), ElementsAre("web", "Unnamed"));
    EXPECT_EQ(model.index(0).data(HostListModel::StatusTextRole).toString(), QStringLiteral("Connected · < 1m"));
    EXPECT_EQ(model.index(1).data(HostListModel::StatusTextRole).toString(), QStringLiteral("Not Connected"));
    EXPECT_EQ(model.index(0).data(Qt::AccessibleTextRole).toString(), QStringLiteral("web, Connected · < 1m"));
    EXPECT_EQ(model.index(1).data(HostListModel::StatusStateRole).toInt(),
              static_cast<int>(ConnectionStatus::State::disconnected));
}

TEST_F(HostListModelTest, AConnectedHostShowsItsUptimeAndOneWithoutAStartTimeShowsConnected) {
    stand.setHostsNamed({"web"});
    stand.makeConnected(0);
    stand.scheduler.advance(std::chrono::hours(2) + std::chrono::minutes(14));
    model.refresh();
    EXPECT_EQ(model.index(0).data(HostListModel::StatusTextRole).toString(), QStringLiteral("Connected · 2h 14m"));
    EXPECT_TRUE(model.showsUptime());
    stand.manager.connectedAt().set({});
    model.refresh();
    EXPECT_EQ(model.index(0).data(HostListModel::StatusTextRole).toString(), QStringLiteral("Connected"));
    EXPECT_FALSE(model.showsUptime());
}

TEST_F(HostListModelTest, NamesAreNoMarkupInTheTooltip) {
    stand.setHostsNamed({"<b>web</b>"});
    model.refresh();
    EXPECT_TRUE(model.index(0).data(Qt::ToolTipRole).toString().contains(QStringLiteral("&lt;b&gt;web&lt;/b&gt;")));
}

TEST_F(HostListModelTest, TellsOfTheRowsThatChangedOnly) {
    stand.setHostsNamed(std::vector<std::string>(300, "host"));
    model.refresh();
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.refresh();
    EXPECT_EQ(changed.count(), 0);
    stand.manager.connect(stand.host(7));
    model.refresh();
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.at(0).at(0).toModelIndex().row(), 7);
}

TEST_F(HostListModelTest, RowsThatStayKeepTheirIdentity) {
    stand.setHostsNamed({"a", "b", "c", "d"});
    model.refresh();
    const QPersistentModelIndex last(model.index(3));
    apply([](auto& hosts) { hosts.erase(hosts.begin() + 1); });
    EXPECT_THAT(names(), ElementsAre("a", "c", "d"));
    EXPECT_EQ(last.row(), 2);
    apply([](auto& hosts) { hosts.insert(hosts.begin(), ManagerStand::hostNamed("x")); });
    EXPECT_THAT(names(), ElementsAre("x", "a", "c", "d"));
    EXPECT_EQ(last.row(), 3);
    apply([](auto& hosts) { std::reverse(hosts.begin(), hosts.end()); });
    EXPECT_THAT(names(), ElementsAre("d", "c", "a", "x"));
    apply([](auto& hosts) { hosts.clear(); });
    EXPECT_EQ(model.rowCount(), 0);
    apply([](auto& hosts) { hosts.assign(3, ManagerStand::hostNamed("twin")); });
    EXPECT_THAT(names(), ElementsAre("twin", "twin", "twin"));
}

TEST_F(HostListModelTest, HostsInAnotherOrderMoveRatherThanComeAndGo) {
    stand.setHostsNamed({"a", "b", "c", "d"});
    model.refresh();
    const QPersistentModelIndex second(model.index(1));
    const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    apply([](auto& hosts) { std::rotate(hosts.begin(), hosts.begin() + 3, hosts.end()); });
    EXPECT_THAT(names(), ElementsAre("d", "a", "b", "c"));
    EXPECT_EQ(second.row(), 2);
    EXPECT_EQ(removed.count(), 0);
}

TEST_F(HostListModelTest, AnEmptySearchShowsEveryHostInStoredOrder) {
    stand.setHostsNamed({"c", "a", "b"});
    model.refresh();
    model.setSearch(QStringLiteral("b"));
    EXPECT_THAT(names(), ElementsAre("b"));
    EXPECT_TRUE(model.isSearching());
    model.setSearch(QString());
    EXPECT_THAT(names(), ElementsAre("c", "a", "b"));
    EXPECT_FALSE(model.isSearching());
}

TEST_F(HostListModelTest, ASearchFollowsTheHosts) {
    stand.setHostsNamed({"web", "db"});
    model.setSearch(QStringLiteral("DB"));
    EXPECT_THAT(names(), ElementsAre("db"));
    apply([](auto& hosts) { hosts[0].name = "db of the web"; });
    EXPECT_THAT(names(), ElementsAre("db of the web", "db"));
    apply([](auto& hosts) { hosts[1].name = "mail"; });
    EXPECT_THAT(names(), ElementsAre("db of the web"));
}

struct Move {
    int source;
    int destination;
    std::vector<std::string> result;
};

TEST_F(HostListModelTest, MovingAHostReordersTheListAndSavesIt) {
    const std::vector<Move> moves{
        {0, 2, {"b", "a", "c", "d"}}, {0, 4, {"b", "c", "d", "a"}}, {3, 0, {"d", "a", "b", "c"}},
        {2, 1, {"a", "c", "b", "d"}}, {1, 1, {"a", "b", "c", "d"}}, {1, 2, {"a", "b", "c", "d"}},
    };
    for (const auto& [source, destination, result] : moves) {
        stand.setHostsNamed({"a", "b", "c", "d"});
        model.refresh();
        const QPersistentModelIndex moved(model.index(source));
        const Uuid id = model.id(source);
        ASSERT_TRUE(model.moveRows({}, source, 1, {}, destination));
        EXPECT_EQ(names(), result) << source << " to " << destination;
        EXPECT_EQ(moved.row(), model.row(id));
        EXPECT_EQ(savedNames(), result);
    }
}

TEST_F(HostListModelTest, SeveralHostsMoveTogether) {
    stand.setHostsNamed({"a", "b", "c", "d"});
    model.refresh();
    ASSERT_TRUE(model.moveRows({}, 0, 2, {}, 3));
    EXPECT_THAT(names(), ElementsAre("c", "a", "b", "d"));
}

TEST_F(HostListModelTest, WhileASearchHidesHostsThePositionsShownAreTakenForThoseOfTheWholeList) {
    stand.setHostsNamed({"web 1", "db 1", "web 2", "db 2"});
    model.setSearch(QStringLiteral("db"));
    ASSERT_THAT(names(), ElementsAre("db 1", "db 2"));
    ASSERT_TRUE(model.moveRows({}, 0, 1, {}, 2));
    EXPECT_THAT(savedNames(), ElementsAre("db 1", "web 1", "web 2", "db 2"));
    EXPECT_THAT(names(), ElementsAre("db 1", "db 2"));
    ASSERT_TRUE(model.moveRows({}, 1, 1, {}, 0));
    EXPECT_THAT(savedNames(), ElementsAre("web 1", "db 1", "web 2", "db 2"));
}

TEST_F(HostListModelTest, PositionsBeyondTheListMoveNothing) {
    stand.setHostsNamed({"a", "b"});
    model.refresh();
    EXPECT_FALSE(model.moveRows({}, 2, 1, {}, 0));
    EXPECT_FALSE(model.moveRows({}, 0, 1, {}, 3));
    EXPECT_FALSE(model.moveRows({}, 0, 0, {}, 1));
    EXPECT_FALSE(model.moveRows({}, -1, 1, {}, 1));
    EXPECT_FALSE(model.moveRows({}, 0, 1, {}, -1));
    EXPECT_THAT(names(), ElementsAre("a", "b"));
}

TEST_F(HostListModelTest, RowsAreDraggedBetweenOthersAndNotOntoThem) {
    stand.setHostsNamed({"a"});
    model.refresh();
    EXPECT_TRUE(model.flags(model.index(0)).testFlag(Qt::ItemIsDragEnabled));
    EXPECT_FALSE(model.flags(model.index(0)).testFlag(Qt::ItemIsDropEnabled));
    EXPECT_TRUE(model.flags({}).testFlag(Qt::ItemIsDropEnabled));
}

}  // namespace
}  // namespace velmora
