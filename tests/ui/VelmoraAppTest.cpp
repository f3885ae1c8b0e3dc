#include "ui/ManagerStand.h"
#include "ui/VelmoraApp.h"

#include <QApplication>
#include <QDialog>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <optional>

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A desktop whose tray comes when a test says so.
class FakeTray final : public TrayWatcher {
public:
    void start(std::function<void(TrayKind)> found, std::function<void()> missing) override {
        appear = std::move(found);
        report = std::move(missing);
    }
    std::function<void(TrayKind)> appear;
    std::function<void()> report;
};

class RecordingPolicy final : public ActivationPolicy {
public:
    void setRegular() override { calls.emplace_back("regular"); }
    void setAccessory() override { calls.emplace_back("accessory"); }
    void activate() override { calls.emplace_back("activate"); }
    std::vector<std::string> calls;
};

class VelmoraAppTest : public testing::Test {
protected:
    VelmoraAppTest() { app.emplace(stand.manager, tray, policy, "/hosts.json"); }

    QAction* entry(const QString& text) {
        for (QAction* action : app->content()->menu().actions()) {
            if (action->text() == text) {
                return action;
            }
        }
        return nullptr;
    }

    ManagerStand stand;
    FakeTray tray;
    RecordingPolicy policy;
    std::optional<VelmoraApp> app;
};

TEST_F(VelmoraAppTest, NeitherIconNorWindowBeforeTheDesktopHasAnswered) {
    EXPECT_EQ(app->icon(), nullptr);
    EXPECT_EQ(app->mainWindow(), nullptr);
}

TEST_F(VelmoraAppTest, WithATrayThereIsAnIconAndNoWindow) {
    tray.appear(TrayKind::embedded);
    ASSERT_NE(app->icon(), nullptr);
    EXPECT_EQ(app->mainWindow(), nullptr);
    EXPECT_THAT(policy.calls, IsEmpty());
}

TEST_F(VelmoraAppTest, WithoutATrayTheMainWindowOpensAndALateTrayIsTaken) {
    tray.report();
    ASSERT_NE(app->mainWindow(), nullptr);
    EXPECT_TRUE(app->mainWindow()->isVisible());
    tray.appear(TrayKind::statusNotifier);
    EXPECT_NE(app->icon(), nullptr);
    EXPECT_TRUE(app->mainWindow()->isVisible());
}

TEST_F(VelmoraAppTest, OpenMainWindowWhileItIsOpenBringsItForwardAndOpensNoSecond) {
    tray.appear(TrayKind::embedded);
    entry(QStringLiteral("Open Main Window"))->trigger();
    const HostListWindow* window = app->mainWindow();
    ASSERT_NE(window, nullptr);
    QWidget other;
    other.show();
    other.activateWindow();
    entry(QStringLiteral("Open Main Window"))->trigger();
    EXPECT_EQ(app->mainWindow(), window);
    EXPECT_TRUE(QTest::qWaitForWindowActive(app->mainWindow()));
    const auto windows = QApplication::topLevelWidgets();
    EXPECT_EQ(std::count_if(windows.begin(), windows.end(),
                            [](const QWidget* widget) { return widget->windowTitle() == QStringLiteral("Velmora"); }),
              1);
}

TEST_F(VelmoraAppTest, OpeningAMinimizedWindowRestoresIt) {
    app->openManagedWindow("main");
    app->mainWindow()->showMinimized();
    app->openManagedWindow("main");
    EXPECT_FALSE(app->mainWindow()->isMinimized());
}

TEST_F(VelmoraAppTest, OpeningAWindowMakesTheProgramRegularFirstAndActiveLast) {
    app->openManagedWindow("main");
    EXPECT_THAT(policy.calls, ElementsAre("regular", "activate"));
}

TEST_F(VelmoraAppTest, AnUnknownWindowDoesNothing) {
    app->openManagedWindow("no such window");
    EXPECT_THAT(policy.calls, IsEmpty());
}

TEST_F(VelmoraAppTest, ClosingTheLastTitledWindowHidesTheDockIcon) {
    app->openManagedWindow("main");
    policy.calls.clear();
    app->mainWindow()->close();
    EXPECT_THAT(policy.calls, IsEmpty()) << "one turn later, when the window is gone";
    QApplication::processEvents();
    EXPECT_THAT(policy.calls, testing::Contains("accessory"));
}

TEST_F(VelmoraAppTest, ClosingAWindowWhileAnotherIsOpenLeavesTheDockIcon) {
    app->openManagedWindow("main");
    policy.calls.clear();
    QDialog other;
    other.show();
    app->mainWindow()->close();
    QApplication::processEvents();
    EXPECT_THAT(policy.calls, IsEmpty());
}

TEST_F(VelmoraAppTest, ManyChangesInOneTurnAreOneRefresh) {
    tray.appear(TrayKind::embedded);
    app->openManagedWindow("main");
    stand.setHostsNamed({"a", "b", "c"});
    entry(QStringLiteral("Connect All"))->trigger();
    stand.scheduler.advance(std::chrono::seconds(4));
    EXPECT_EQ(app->icon()->symbol(), QStringLiteral("network-slash")) << "not within the change";
    QApplication::processEvents();
    EXPECT_EQ(entry(QStringLiteral("a"))->toolTip(), QStringLiteral("Not Connected"));
    entry(QStringLiteral("Connect All"))->trigger();
    stand.scheduler.advance(std::chrono::seconds(4));
    QApplication::processEvents();
    EXPECT_EQ(app->icon()->symbol(), QStringLiteral("network"));
    EXPECT_EQ(entry(QStringLiteral("a"))->toolTip(), QStringLiteral("Connected"));
}

TEST_F(VelmoraAppTest, QuitStopsTheTunnelsOnce) {
    tray.appear(TrayKind::embedded);
    stand.setHostsNamed({"a"});
    stand.manager.connect(stand.host(0));
    QTimer::singleShot(0, &*app, [this] {
        entry(QStringLiteral("Quit Velmora"))->trigger();
        app->quit();
    });
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(stand.launcher.process(0).terminations, 1);
}

TEST_F(VelmoraAppTest, WhoeverEndsTheEventLoopTheTunnelsAreStopped) {
    stand.setHostsNamed({"a"});
    stand.manager.connect(stand.host(0));
    QTimer::singleShot(0, &*app, &QCoreApplication::quit);
    EXPECT_EQ(QApplication::exec(), 0);
    EXPECT_EQ(stand.launcher.process(0).terminations, 1);
}

}  // namespace
}  // namespace velmora
