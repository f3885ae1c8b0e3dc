#include "ui/VelmoraApp.h"
#include "ui/WindowStand.h"

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
    VelmoraAppTest() {
        app.emplace(VelmoraApp::Parts{.manager = stand.manager,
                                      .updater = stand.updater,
                                      .defaults = stand.defaults,
                                      .dialogs = stand.dialogs,
                                      .workspace = stand.workspace,
                                      .launchAtLogin = stand.launchAtLogin,
                                      .tray = tray,
                                      .policy = policy,
                                      .teamIdentifier = "TEAM123456"});
    }
    ~VelmoraAppTest() override { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    [[nodiscard]] ManagedWindow* mainWindow() const { return app->window("main"); }

    QAction* entry(const QString& text) {
        for (QAction* action : app->content()->menu().actions()) {
            if (action->text() == text) {
                return action;
            }
        }
        return nullptr;
    }

    WindowStand stand;
    FakeTray tray;
    RecordingPolicy policy;
    std::optional<VelmoraApp> app;
};

TEST_F(VelmoraAppTest, NeitherIconNorWindowBeforeTheDesktopHasAnswered) {
    EXPECT_EQ(app->icon(), nullptr);
    EXPECT_EQ(mainWindow(), nullptr);
}

TEST_F(VelmoraAppTest, WithATrayThereIsAnIconAndNoWindow) {
    tray.appear(TrayKind::embedded);
    ASSERT_NE(app->icon(), nullptr);
    EXPECT_EQ(mainWindow(), nullptr);
    EXPECT_THAT(policy.calls, IsEmpty());
}

TEST_F(VelmoraAppTest, WithoutATrayTheMainWindowOpensAndALateTrayIsTaken) {
    tray.report();
    ASSERT_NE(mainWindow(), nullptr);
    EXPECT_TRUE(mainWindow()->isVisible());
    tray.appear(TrayKind::statusNotifier);
    EXPECT_NE(app->icon(), nullptr);
    EXPECT_TRUE(mainWindow()->isVisible());
}

TEST_F(VelmoraAppTest, OpenMainWindowWhileItIsOpenBringsItForwardAndOpensNoSecond) {
    tray.appear(TrayKind::embedded);
    entry(QStringLiteral("Open Main Window"))->trigger();
    const ManagedWindow* window = mainWindow();
    ASSERT_NE(window, nullptr);
    QWidget other;
    other.show();
    other.activateWindow();
    entry(QStringLiteral("Open Main Window"))->trigger();
    EXPECT_EQ(mainWindow(), window);
    EXPECT_TRUE(QTest::qWaitForWindowActive(mainWindow()));
    const auto windows = QApplication::topLevelWidgets();
    EXPECT_EQ(std::count_if(windows.begin(), windows.end(),
                            [](const QWidget* widget) { return widget->windowTitle() == QStringLiteral("Velmora"); }),
              1);
}

TEST_F(VelmoraAppTest, TheMenuFollowsTheUpdater) {
    tray.appear(TrayKind::embedded);
    stand.offerUpdate("1.16.0");
    QApplication::processEvents();
    const QAction* update = entry(QStringLiteral("Update to v1.16.0 && Relaunch"));
    ASSERT_NE(update, nullptr);
    EXPECT_TRUE(update->isVisible());
    EXPECT_TRUE(update->isEnabled());
    stand.updater.install();
    QApplication::processEvents();
    EXPECT_FALSE(update->isEnabled());
    stand.updater.available().set(std::nullopt);
    QApplication::processEvents();
    EXPECT_FALSE(update->isVisible());
}

TEST_F(VelmoraAppTest, TheMenuOpensTheWindowThatItNames) {
    tray.appear(TrayKind::embedded);
    entry(QStringLiteral("Settings…"))->trigger();
    ASSERT_NE(app->window("settings"), nullptr);
    EXPECT_EQ(app->window("settings")->windowTitle(), QStringLiteral("Settings"));
    entry(QStringLiteral("About Velmora"))->trigger();
    ASSERT_NE(app->window("about"), nullptr);
    EXPECT_EQ(app->window("about")->windowTitle(), QStringLiteral("About Velmora"));
    entry(QStringLiteral("Add Proxy Exception…"))->trigger();
    ASSERT_NE(app->window("quick-exception"), nullptr);
    EXPECT_EQ(app->window("quick-exception")->windowTitle(), QStringLiteral("Add Proxy Exception"));
}

TEST_F(VelmoraAppTest, OpeningAMinimizedWindowRestoresIt) {
    app->openManagedWindow("main");
    mainWindow()->showMinimized();
    app->openManagedWindow("main");
    EXPECT_FALSE(mainWindow()->isMinimized());
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
    mainWindow()->close();
    EXPECT_THAT(policy.calls, IsEmpty()) << "one turn later, when the window is gone";
    QApplication::processEvents();
    EXPECT_THAT(policy.calls, testing::Contains("accessory"));
}

TEST_F(VelmoraAppTest, ClosingAWindowWhileAnotherIsOpenLeavesTheDockIcon) {
    app->openManagedWindow("main");
    policy.calls.clear();
    QDialog other;
    other.show();
    mainWindow()->close();
    QApplication::processEvents();
    EXPECT_THAT(policy.calls, IsEmpty());
}

TEST_F(VelmoraAppTest, EveryWindowOpensOnceUnderItsTitle) {
    const std::vector<std::pair<std::string, QString>> titles{
        {"main", QStringLiteral("Velmora")},
        {"settings", QStringLiteral("Settings")},
        {"about", QStringLiteral("About Velmora")},
        {"pac-editor", QStringLiteral("PAC Editor")},
        {"exceptions-editor", QStringLiteral("Proxy Exceptions")},
        {"quick-exception", QStringLiteral("Add Proxy Exception")},
    };
    for (const auto& [id, title] : titles) {
        app->openManagedWindow(id);
        ManagedWindow* window = app->window(id);
        ASSERT_NE(window, nullptr) << id;
        EXPECT_EQ(window->windowTitle(), title);
        app->openManagedWindow(id);
        EXPECT_EQ(app->window(id), window);
    }
}

TEST_F(VelmoraAppTest, AWindowThatWasClosedOpensAgain) {
    app->openManagedWindow("settings");
    app->window("settings")->close();
    EXPECT_EQ(app->window("settings"), nullptr);
    app->openManagedWindow("settings");
    EXPECT_NE(app->window("settings"), nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_NE(app->window("settings"), nullptr) << "only the old one goes";
}

TEST_F(VelmoraAppTest, AnImportSaysWhatItBroughtUntilTheUserHasSeenIt) {
    app->commands().importResult().set(ImportResult{.imported = 1});
    ASSERT_EQ(stand.dialogs.alerts.size(), 1U);
    EXPECT_EQ(stand.dialogs.alerts[0].message, QStringLiteral("Import Complete"));
    EXPECT_EQ(stand.dialogs.alerts[0].informativeText, QStringLiteral("Imported 1 tunnel."));
    EXPECT_TRUE(app->commands().importResult().get());
    stand.dialogs.dismissAlert();
    EXPECT_FALSE(app->commands().importResult().get());
    EXPECT_EQ(stand.dialogs.alerts.size(), 1U);
}

TEST_F(VelmoraAppTest, ManyChangesInOneTurnAreOneRefresh) {
    tray.appear(TrayKind::embedded);
    app->openManagedWindow("main");
    stand.setHostsNamed({"a", "b", "c"});
    entry(QStringLiteral("Connect All"))->trigger();
    stand.scheduler.advance(std::chrono::seconds(4));
    EXPECT_EQ(app->icon()->symbol(), QStringLiteral("network-slash")) << "not within the change";
    QApplication::processEvents();
    EXPECT_EQ(entry(QStringLiteral("a"))->toolTip(), QStringLiteral("<p>Not Connected</p>"));
    entry(QStringLiteral("Connect All"))->trigger();
    stand.scheduler.advance(std::chrono::seconds(4));
    QApplication::processEvents();
    EXPECT_EQ(app->icon()->symbol(), QStringLiteral("network"));
    EXPECT_EQ(entry(QStringLiteral("a"))->toolTip(), QStringLiteral("<p>Connected</p>"));
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
