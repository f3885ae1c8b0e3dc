#include "fakes/InMemoryDefaultsStore.h"
#include "ui/ManagedWindow.h"

#include <QScreen>
#include <QTest>

#include <gtest/gtest.h>

namespace velmora {
namespace {

struct Window final : ManagedWindow {
    explicit Window(DefaultsStore& defaults) : ManagedWindow("settings", QStringLiteral("Settings"), defaults) {
        setAttribute(Qt::WA_DeleteOnClose, false);
    }
};

TEST(ManagedWindowTest, OpensInTheMiddleOfTheScreenForTheFirstTime) {
    InMemoryDefaultsStore defaults;
    Window window(defaults);
    window.restorePlace({300, 200});
    EXPECT_EQ(window.geometry().size(), QSize(300, 200));
    EXPECT_EQ(window.geometry().center(), window.screen()->availableGeometry().center());
}

TEST(ManagedWindowTest, IsNoLargerThanTheScreen) {
    InMemoryDefaultsStore defaults;
    Window window(defaults);
    window.restorePlace({100'000, 100'000});
    EXPECT_EQ(window.geometry(), window.screen()->availableGeometry());
}

TEST(ManagedWindowTest, OpensInFrontOfTheWindowThatTheUserWorksInButWhollyOnTheScreen) {
    InMemoryDefaultsStore defaults;
    QWidget active;
    active.setGeometry(100, 150, 400, 300);
    active.show();
    active.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&active));
    Window window(defaults);
    window.restorePlace({200, 100});
    EXPECT_EQ(window.geometry().center(), active.geometry().center());

    active.setGeometry(0, 0, 50, 50);
    window.restorePlace({200, 100});
    EXPECT_EQ(window.geometry().topLeft(), window.screen()->availableGeometry().topLeft());
}

TEST(ManagedWindowTest, StandsWhereItWasClosed) {
    InMemoryDefaultsStore defaults;
    {
        Window window(defaults);
        window.restorePlace({300, 200});
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        window.setGeometry(70, 80, 320, 240);
        window.close();
    }
    Window window(defaults);
    window.restorePlace({300, 200});
    EXPECT_EQ(window.geometry(), QRect(70, 80, 320, 240));
}

TEST(ManagedWindowTest, TheUsualKeyClosesIt) {
    InMemoryDefaultsStore defaults;
    Window window(defaults);
    window.show();
    QTest::keySequence(&window, QKeySequence::Close);
    EXPECT_FALSE(window.isVisible());
}

}  // namespace
}  // namespace velmora
