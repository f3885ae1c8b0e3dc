#include "ui/MenuBarContent.h"
#include "ui/WindowStand.h"

#include <QActionEvent>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Counts what a menu is told.
class Changes final : public QObject {
public:
    explicit Changes(QMenu& menu) { menu.installEventFilter(this); }
    int added = 0;
    int removed = 0;
    int changed = 0;

private:
    bool eventFilter(QObject* /*object*/, QEvent* event) override {
        added += event->type() == QEvent::ActionAdded ? 1 : 0;
        removed += event->type() == QEvent::ActionRemoved ? 1 : 0;
        changed += event->type() == QEvent::ActionChanged ? 1 : 0;
        return false;
    }
};

class MenuBarContentTest : public testing::Test {
protected:
    std::vector<std::string> texts() {
        std::vector<std::string> found;
        for (const QAction* action : content.menu().actions()) {
            if (action->isVisible()) {
                found.push_back(action->isSeparator() ? "-" : action->text().toStdString());
            }
        }
        return found;
    }
    QAction& entry(const std::string& text) {
        const auto actions = content.menu().actions();
        const auto found = std::find_if(actions.begin(), actions.end(), [&text](const QAction* action) {
            return action->text().toStdString() == text;
        });
        EXPECT_NE(found, actions.end()) << text;
        return **found;
    }
    QColor dot(const std::string& text) { return entry(text).icon().pixmap(16).toImage().pixelColor(8, 8); }
    std::vector<std::string> hostTexts() {
        auto all = texts();
        return {all.begin() + 3, all.end() - 8};
    }

    WindowStand stand;
    int quits = 0;
    MenuBarContent content{
        stand.manager, stand.updater, MenuText::widget,
        MenuBarContent::Actions{.openManagedWindow = stand.services.openManagedWindow, .quit = [this] { ++quits; }}};
};

TEST_F(MenuBarContentTest, WithNoHostsBothAllEntriesAreDisabledAndTheHostSectionIsEmpty) {
    EXPECT_THAT(texts(), ElementsAre("Connect All", "Disconnect All", "-", "Add Proxy Exception…", "-",
                                     "Open Main Window", "Settings…", "About Velmora", "-", "Quit Velmora"));
    EXPECT_FALSE(entry("Connect All").isEnabled());
    EXPECT_FALSE(entry("Disconnect All").isEnabled());
}

TEST_F(MenuBarContentTest, HostsStandBetweenDividersInTheOrderOfTheList) {
    stand.setHostsNamed({"web", "db", "app"});
    content.refresh();
    EXPECT_THAT(texts(),
                ElementsAre("Connect All", "Disconnect All", "-", "web", "db", "app", "-", "Add Proxy Exception…", "-",
                            "Open Main Window", "Settings…", "About Velmora", "-", "Quit Velmora"));
    EXPECT_TRUE(entry("Connect All").isEnabled());
    EXPECT_FALSE(entry("Disconnect All").isEnabled());
}

TEST_F(MenuBarContentTest, TheAllEntriesFollowWhoIsActive) {
    stand.setHostsNamed({"web", "db"});
    stand.manager.connect(stand.host(0));
    content.refresh();
    EXPECT_TRUE(entry("Connect All").isEnabled());
    EXPECT_TRUE(entry("Disconnect All").isEnabled());
    stand.manager.connect(stand.host(1));
    content.refresh();
    EXPECT_FALSE(entry("Connect All").isEnabled());
    EXPECT_TRUE(entry("Disconnect All").isEnabled());
}

TEST_F(MenuBarContentTest, AHostInErrorCountsAsIdleAndItsDotIsRed) {
    stand.setHostsNamed({"web"});
    stand.makeFailed(0);
    content.refresh();
    EXPECT_EQ(dot("web"), QColor(0xe5, 0x48, 0x4d));
    EXPECT_TRUE(entry("Connect All").isEnabled());
    EXPECT_FALSE(entry("Disconnect All").isEnabled());

    entry("Connect All").trigger();
    content.refresh();
    EXPECT_EQ(stand.launcher.count(), 2U);
    EXPECT_EQ(stand.manager.status(stand.host(0).id), ConnectionStatus::connecting());
    EXPECT_FALSE(entry("Connect All").isEnabled());
}

TEST_F(MenuBarContentTest, ConnectAllConnectsTheIdleInListOrder) {
    auto hosts = std::vector{ManagerStand::hostNamed("a"), ManagerStand::hostNamed("b"), ManagerStand::hostNamed("c")};
    for (auto& host : hosts) {
        host.hostname = host.name;
    }
    stand.setHosts(hosts);
    stand.manager.connect(stand.host(1));
    content.refresh();
    entry("Connect All").trigger();
    std::vector<std::string> launched;
    for (std::size_t i = 0; i < stand.launcher.count(); ++i) {
        launched.push_back(stand.launcher.process(i).arguments.back());
    }
    EXPECT_THAT(launched, ElementsAre("b", "a", "c"));
}

TEST_F(MenuBarContentTest, DisconnectAllStopsTheActiveOnly) {
    stand.setHostsNamed({"a", "b", "c"});
    stand.manager.connect(stand.host(0));
    stand.manager.connect(stand.host(2));
    content.refresh();
    entry("Disconnect All").trigger();
    EXPECT_EQ(stand.launcher.process(0).terminations, 1);
    EXPECT_EQ(stand.launcher.process(1).terminations, 1);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(stand.manager.status(stand.host(i).id), ConnectionStatus::disconnected());
    }
}

TEST_F(MenuBarContentTest, ChoosingAHostTogglesIt) {
    stand.setHostsNamed({"web", "db"});
    content.refresh();
    entry("db").trigger();
    EXPECT_TRUE(stand.manager.isActive(stand.host(1)));
    EXPECT_FALSE(stand.manager.isActive(stand.host(0)));
    entry("db").trigger();
    EXPECT_FALSE(stand.manager.isActive(stand.host(1)));
}

TEST_F(MenuBarContentTest, ChoosingAHostUsesItsLatestProfile) {
    stand.setHostsNamed({"web"});
    content.refresh();
    stand.manager.hosts().edit([](auto& hosts) { hosts[0].hostname = "moved.example"; });
    content.refresh();
    entry("web").trigger();
    EXPECT_EQ(stand.launcher.last().arguments.back(), "moved.example");
}

TEST_F(MenuBarContentTest, TheDotTellsTheStatusAndTheToolTipSaysIt) {
    stand.setHostsNamed({"web"});
    content.refresh();
    EXPECT_EQ(dot("web"), QColor(Qt::white));
    EXPECT_EQ(entry("web").toolTip(), QStringLiteral("<p>Not Connected</p>"));
    stand.manager.connect(stand.host(0));
    content.refresh();
    EXPECT_EQ(dot("web"), QColor(0xf2, 0xb0, 0x1e));
    EXPECT_EQ(entry("web").toolTip(), QStringLiteral("<p>Connecting...</p>"));
    stand.scheduler.advance(std::chrono::seconds(4));
    content.refresh();
    EXPECT_EQ(dot("web"), QColor(0x34, 0xa8, 0x53));
    EXPECT_EQ(entry("web").toolTip(), QStringLiteral("<p>Connected</p>"));
    stand.launcher.last().exitSaying("ssh: no <b>route</b>\n", 255);
    stand.scheduler.runPosted();
    content.refresh();
    EXPECT_EQ(entry("web").toolTip(),
              QStringLiteral("<p>Error: Reconnecting in 5s… (ssh: no &lt;b&gt;route&lt;/b&gt;)</p>"));
}

TEST_F(MenuBarContentTest, ANameIsNoMnemonic) {
    stand.setHostsNamed({"R&D_x"});
    content.refresh();
    EXPECT_THAT(hostTexts(), ElementsAre("R&&D_x"));
}

TEST_F(MenuBarContentTest, TheOtherEntriesOpenTheirWindowsAndQuit) {
    entry("Add Proxy Exception…").trigger();
    entry("Open Main Window").trigger();
    entry("Settings…").trigger();
    entry("About Velmora").trigger();
    EXPECT_THAT(stand.opened, ElementsAre("quick-exception", "main", "settings", "about"));
    EXPECT_EQ(quits, 0);
    entry("Quit Velmora").trigger();
    EXPECT_EQ(quits, 1);
}

TEST_F(MenuBarContentTest, AnAvailableUpdateStandsFirstWithADivider) {
    stand.offerUpdate("1.16.0");
    content.refresh();
    auto found = texts();
    found.resize(3);
    EXPECT_THAT(found, ElementsAre("Update to v1.16.0 && Relaunch", "-", "Connect All"));
    EXPECT_TRUE(entry("Update to v1.16.0 && Relaunch").isEnabled());

    stand.updater.available().set(std::nullopt);
    content.refresh();
    EXPECT_EQ(texts().front(), "Connect All");
}

TEST_F(MenuBarContentTest, AnotherUpdateTakesTheEntryOver) {
    stand.offerUpdate("1.16.0");
    content.refresh();
    const QAction* before = &entry("Update to v1.16.0 && Relaunch");
    stand.offerUpdate("1.16.1");
    content.refresh();
    EXPECT_EQ(&entry("Update to v1.16.1 && Relaunch"), before);
    const Changes changes(content.menu());
    content.refresh();
    EXPECT_EQ(changes.changed, 0);
}

TEST_F(MenuBarContentTest, ChoosingTheUpdateInstallsItOnceAtATime) {
    stand.offerUpdate("1.16.0");
    content.refresh();
    QAction& update = entry("Update to v1.16.0 && Relaunch");
    update.trigger();
    EXPECT_TRUE(*stand.updater.isBusy());
    EXPECT_EQ(stand.worker.waiting(), 1U);
    content.refresh();
    EXPECT_FALSE(update.isEnabled());

    stand.worker.runAll();  // it fails: the feed's answer is no archive
    stand.scheduler.runPosted();
    stand.updateAlert.dismiss();
    content.refresh();
    EXPECT_TRUE(update.isEnabled());
}

TEST_F(MenuBarContentTest, AnExportedMenuShowsOneAmpersandToo) {
    MenuBarContent exported(stand.manager, stand.updater, MenuText::exported, {});
    stand.offerUpdate("1.16.0_rc");
    exported.refresh();
    EXPECT_EQ(exported.menu().actions().constFirst()->text(),
              QStringLiteral("&\u2060Update to v1.16.0__rc & Relaunch"));
}

TEST_F(MenuBarContentTest, WhatHasNotChangedIsNotTouched) {
    stand.setHostsNamed(std::vector<std::string>(500, "host"));
    content.refresh();
    const Changes changes(content.menu());
    content.refresh();
    EXPECT_EQ(changes.added + changes.removed + changes.changed, 0);

    stand.manager.connect(stand.host(250));
    content.refresh();
    EXPECT_EQ(changes.added + changes.removed, 0);
    EXPECT_LE(changes.changed, 3);  // the dot, its words, and "Disconnect All"
}

TEST_F(MenuBarContentTest, ARenamedHostKeepsItsEntry) {
    stand.setHostsNamed({"a", "b"});
    content.refresh();
    const QAction* before = &entry("b");
    stand.manager.hosts().edit([](auto& hosts) { hosts[1].name = "new"; });
    content.refresh();
    EXPECT_THAT(hostTexts(), ElementsAre("a", "new"));
    EXPECT_EQ(&entry("new"), before);
}

TEST_F(MenuBarContentTest, HostsComeGoAndMove) {
    stand.setHostsNamed({"a", "b", "c", "d"});
    content.refresh();
    const Changes changes(content.menu());
    const auto apply = [this](auto edit) {
        stand.manager.hosts().edit(edit);
        content.refresh();
    };
    apply([](auto& hosts) { hosts.erase(hosts.begin()); });
    EXPECT_THAT(hostTexts(), ElementsAre("b", "c", "d"));
    EXPECT_EQ(changes.removed, 1);
    EXPECT_EQ(changes.added, 0);
    apply([](auto& hosts) { std::rotate(hosts.begin(), hosts.begin() + 2, hosts.end()); });
    EXPECT_THAT(hostTexts(), ElementsAre("d", "b", "c"));
    apply([](auto& hosts) { hosts.insert(hosts.begin() + 1, ManagerStand::hostNamed("x")); });
    EXPECT_THAT(hostTexts(), ElementsAre("d", "x", "b", "c"));
    apply([](auto& hosts) { std::reverse(hosts.begin(), hosts.end()); });
    EXPECT_THAT(hostTexts(), ElementsAre("c", "b", "x", "d"));
    apply([](auto& hosts) { hosts.push_back(hosts.front()); });  // the same id twice
    EXPECT_THAT(hostTexts(), ElementsAre("c", "b", "x", "d", "c"));
    apply([](auto& hosts) { hosts.erase(hosts.begin()); });
    EXPECT_THAT(hostTexts(), ElementsAre("b", "x", "d", "c"));
    apply([](auto& hosts) { hosts.clear(); });
    EXPECT_THAT(texts(), ElementsAre("Connect All", "Disconnect All", "-", "Add Proxy Exception…", "-",
                                     "Open Main Window", "Settings…", "About Velmora", "-", "Quit Velmora"));
}

TEST_F(MenuBarContentTest, ADeletedHostLeavesTheMenu) {
    stand.setHostsNamed({"a", "b"});
    stand.makeConnected(0);
    content.refresh();
    stand.manager.deleteHost(stand.host(0).id);
    content.refresh();
    EXPECT_THAT(hostTexts(), ElementsAre("b"));
    EXPECT_FALSE(entry("Disconnect All").isEnabled());
}

}  // namespace
}  // namespace velmora
