#include "ui/HostListModel.h"
#include "ui/ManagerStand.h"

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>
#include <QSignalSpy>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

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
    EXPECT_EQ(model.index(0).data(HostListModel::StatusTextRole).toString(), QStringLiteral("Connected"));
    EXPECT_EQ(model.index(1).data(HostListModel::StatusTextRole).toString(), QStringLiteral("Not Connected"));
    EXPECT_EQ(model.index(0).data(Qt::AccessibleTextRole).toString(), QStringLiteral("web\nConnected"));
    EXPECT_EQ(model.index(1).data(HostListModel::StatusColorRole).value<QColor>(), QColor(0x8c, 0x8c, 0x8c));
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

}  // namespace
}  // namespace velmora
