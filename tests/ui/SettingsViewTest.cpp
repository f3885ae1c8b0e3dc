#include "ui/CaptionLabel.h"
#include "ui/ElidedLabel.h"
#include "ui/SettingsView.h"
#include "ui/Tints.h"
#include "ui/WindowStand.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QGroupBox>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>
#include <QToolButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace velmora {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class SettingsViewTest : public testing::Test {
protected:
    ~SettingsViewTest() override { delete window; }

    /// The window as it opens now.
    void open() {
        window = new SettingsView(stand.services);
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    }
    template <typename Widget>
    Widget& find(const char* name) {
        auto* found = window->findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }
    QCheckBox& toggle(const char* name) { return find<QCheckBox>(name); }
    QLineEdit& field(const char* name) { return find<QLineEdit>(name); }
    QPushButton& button(const char* name) { return find<QPushButton>(name); }
    std::string text(const char* label) { return find<QLabel>(label).text().toStdString(); }

    std::vector<std::string> captions() {
        std::vector<std::string> found;
        for (const auto* caption : window->findChildren<CaptionLabel*>()) {
            found.push_back(caption->text().toStdString());
        }
        return found;
    }

    static void typeAtEnd(QLineEdit& field, const char* words) {
        field.setFocus();
        field.end(false);
        QTest::keyClicks(&field, QString::fromLatin1(words));
    }

    WindowStand stand;
    QPointer<SettingsView> window;
};

// ---- the window ----

TEST_F(SettingsViewTest, HasFiveGroupsInOneScrollingColumn) {
    open();
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Settings"));
    std::vector<std::pair<int, std::string>> groups;
    for (const auto* group : window->findChildren<QGroupBox*>()) {
        groups.emplace_back(group->mapTo(window, QPoint()).y(), group->title().toStdString());
    }
    std::sort(groups.begin(), groups.end());
    std::vector<std::string> titles;
    for (const auto& group : groups) {
        titles.push_back(group.second);
    }
    EXPECT_THAT(titles, ElementsAre("General", "Connections", "Sync", "PAC Proxy", "Updates"));
    EXPECT_NE(window->findChild<QScrollArea*>(), nullptr);
}

TEST_F(SettingsViewTest, WiderWindowsGrowMarginsNotFields) {
    open();
    window->resize(1400, 800);
    QApplication::processEvents();
    const auto groups = window->findChildren<QGroupBox*>();
    for (const auto* group : groups) {
        EXPECT_EQ(group->width(), 720);
        EXPECT_EQ(group->mapTo(window, QPoint()).x(), groups.constFirst()->mapTo(window, QPoint()).x());
    }
    EXPECT_EQ(field("globalProxyJump").mapTo(window, QPoint()).x(), field("feedUrl").mapTo(window, QPoint()).x());
}

TEST_F(SettingsViewTest, SaysWhatEachSettingDoes) {
    open();
    EXPECT_THAT(
        captions(),
        testing::UnorderedElementsAre(
            "Applies to all connections: fast cipher (AES-GCM), skip GSSAPI negotiation, QoS lowdelay. Reconnect "
            "active tunnels to take effect.",
            "Applied to all tunnels that don't have a per-host ProxyJump set. Toggling reconnects all active tunnels.",
            "Point to a Google Drive, Dropbox, or any shared folder to keep tunnels in sync across Macs.",
            "Hosts in the exception list bypass the proxy (DIRECT). Add quickly from the menu bar → “Add Proxy "
            "Exception…”.",
            "Current version v1.15.0. Downloads are only installed if their checksum matches the feed and the bundle "
            "is signed by team TEAM123456"));
}

TEST_F(SettingsViewTest, EveryControlHasAName) {
    open();
    for (auto* control : window->findChildren<QWidget*>()) {
        if ((control->focusPolicy() & Qt::TabFocus) != 0 && !control->objectName().isEmpty() &&
            control->objectName() != QStringLiteral("qt_scrollarea_viewport")) {
            QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(control);
            EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << control->objectName().toStdString();
        }
    }
}

// ---- General ----

TEST_F(SettingsViewTest, LaunchAtLoginBeginsWithTheStateOfTheLoginItem) {
    open();
    EXPECT_FALSE(toggle("launchAtLogin").isChecked());
    delete window;
    stand.launchAtLogin.enabled = true;
    open();
    EXPECT_TRUE(toggle("launchAtLogin").isChecked());
    EXPECT_THAT(stand.launchAtLogin.calls, IsEmpty());
}

TEST_F(SettingsViewTest, EveryChangeOfLaunchAtLoginIsPassedOnAndKeptEvenIfItFails) {
    open();
    toggle("launchAtLogin").click();
    EXPECT_TRUE(toggle("launchAtLogin").isChecked());
    toggle("launchAtLogin").click();
    EXPECT_THAT(stand.launchAtLogin.calls, ElementsAre(true, false));
}

// ---- Connections ----

TEST_F(SettingsViewTest, PerformanceModeIsSetAndReconnectsNothing) {
    stand.setHostsNamed({"web"});
    stand.makeConnected(0);
    open();
    EXPECT_FALSE(toggle("performanceMode").isChecked());
    toggle("performanceMode").click();
    EXPECT_TRUE(stand.manager.performanceMode().get());
    EXPECT_EQ(stand.launcher.count(), 1U);
    EXPECT_EQ(stand.launcher.last().terminations, 0);
}

TEST_F(SettingsViewTest, TheJumpHostIsSetAsItIsTyped) {
    open();
    EXPECT_EQ(field("globalProxyJump").placeholderText(), QStringLiteral("anna@bastion.example.com"));
    typeAtEnd(field("globalProxyJump"), "anna@gate");
    EXPECT_EQ(stand.manager.globalProxyJump().get(), "anna@gate");
    QTest::keyClick(&field("globalProxyJump"), Qt::Key_Home);
    QTest::keyClicks(&field("globalProxyJump"), QStringLiteral("jo"));
    EXPECT_EQ(stand.manager.globalProxyJump().get(), "joanna@gate");
    EXPECT_EQ(field("globalProxyJump").cursorPosition(), 2);
}

TEST_F(SettingsViewTest, ToggleOfTheJumpHostReconnectsActiveTunnels) {
    stand.setHostsNamed({"web"});
    stand.makeConnected(0);
    open();
    toggle("globalProxyJumpEnabled").click();
    EXPECT_TRUE(stand.manager.globalProxyJumpEnabled().get());
    EXPECT_EQ(stand.launcher.process(0).terminations, 1);
}

TEST_F(SettingsViewTest, ChangesFromElsewhereShowAtOnceAndLeaveTheCursor) {
    open();
    typeAtEnd(field("globalProxyJump"), "abcdef");
    field("globalProxyJump").setCursorPosition(3);
    stand.manager.setGlobalProxyJump("abXdef");
    EXPECT_EQ(field("globalProxyJump").text(), QStringLiteral("abXdef"));
    EXPECT_EQ(field("globalProxyJump").cursorPosition(), 3);
    stand.manager.setPerformanceMode(true);
    EXPECT_TRUE(toggle("performanceMode").isChecked());
    stand.manager.setGlobalProxyJumpEnabled(true);
    EXPECT_TRUE(toggle("globalProxyJumpEnabled").isChecked());

    typeAtEnd(field("feedUrl"), "x");
    field("feedUrl").setCursorPosition(5);
    stand.updater.setFeedURL("https://other.example/feed.json");
    EXPECT_EQ(field("feedUrl").text(), QStringLiteral("https://other.example/feed.json"));
    EXPECT_EQ(field("feedUrl").cursorPosition(), 5);
    stand.updater.setAutoUpdate(false);
    EXPECT_FALSE(toggle("autoUpdate").isChecked());
}

// ---- Sync ----

TEST_F(SettingsViewTest, WithoutASyncFolderItSaysNotConfigured) {
    open();
    EXPECT_EQ(text("syncFolder"), "Not configured");
    EXPECT_EQ(find<QLabel>("syncFolder").palette().color(QPalette::WindowText),
              window->palette().color(QPalette::PlaceholderText));
    EXPECT_FALSE(button("disableSync").isVisible());
}

TEST_F(SettingsViewTest, ChooseFolderSetsItAndPushesTheHosts) {
    stand.setHostsNamed({"web"});
    open();
    const auto folder = stand.home / "shared";
    std::filesystem::create_directory(folder);
    stand.dialogs.choices = {folder};
    button("chooseFolder").click();
    EXPECT_THAT(stand.dialogs.panels,
                ElementsAre(Pair("Choose Sync Folder",
                                 "Pick your Google Drive, Dropbox, or any shared folder. Velmora will keep "
                                 "velmora-sync.json there.")));
    EXPECT_EQ(stand.manager.folderSync().folder(), folder);
    EXPECT_EQ(stand.manager.folderSync().pull(), stand.manager.hosts().get());
    EXPECT_EQ(find<ElidedLabel>("syncFolder").fullText().toStdString(), folder.string());
    EXPECT_EQ(find<QLabel>("syncFolder").palette().color(QPalette::WindowText),
              window->palette().color(QPalette::WindowText));
    EXPECT_TRUE(button("disableSync").isVisible());
}

TEST_F(SettingsViewTest, ToCancelTheFolderChangesNothing) {
    open();
    button("chooseFolder").click();
    EXPECT_FALSE(stand.manager.folderSync().isEnabled());
    EXPECT_EQ(text("syncFolder"), "Not configured");
}

TEST_F(SettingsViewTest, DisableForgetsTheFolderAndLeavesItsFile) {
    stand.dialogs.choices = {stand.home.path()};
    open();
    button("chooseFolder").click();
    button("disableSync").click();
    EXPECT_FALSE(stand.manager.folderSync().isEnabled());
    EXPECT_EQ(text("syncFolder"), "Not configured");
    EXPECT_FALSE(button("disableSync").isVisible());
    EXPECT_TRUE(std::filesystem::exists(stand.home / "velmora-sync.json"));
}

TEST_F(SettingsViewTest, ALongFolderDoesNotWidenTheWindow) {
    stand.manager.folderSync().setFolder("/" + std::string(3000, 'x'));
    open();
    EXPECT_LE(window->minimumSizeHint().width(), 680);
    EXPECT_LE(find<QLabel>("syncFolder").width(), 680);
    EXPECT_EQ(find<QLabel>("syncFolder").toolTip(), QStringLiteral("<p>/%1</p>").arg(QString(3000, QLatin1Char('x'))));
}

// ---- PAC Proxy ----

TEST_F(SettingsViewTest, ThePacUrlCanBeCopied) {
    open();
    const auto url = stand.manager.pacServer().url();
    EXPECT_EQ(text("pacUrl"), url);
    EXPECT_NE(find<QLabel>("pacUrl").textInteractionFlags() & Qt::TextSelectableByMouse, 0);
    QGuiApplication::clipboard()->setText(QStringLiteral("something else"));
    auto& copy = find<QToolButton>("copyPacUrl");
    EXPECT_FALSE(copy.toolTip().isEmpty());
    copy.click();
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), url);
}

TEST_F(SettingsViewTest, AnEmptyExceptionListShowsNone) {
    open();
    EXPECT_EQ(text("exceptionCount"), "None");
    stand.manager.setProxyExceptions(" \n\t\n");
    EXPECT_EQ(text("exceptionCount"), "None");
}

TEST_F(SettingsViewTest, TheExceptionCountFollowsTheList) {
    stand.manager.setProxyExceptions("*.corp");
    open();
    EXPECT_EQ(text("exceptionCount"), "1 host");
    stand.manager.addProxyException("10.0.*");
    EXPECT_EQ(text("exceptionCount"), "2 hosts");
    stand.manager.setProxyExceptions("a\nb\na\n\nc");
    EXPECT_EQ(text("exceptionCount"), "4 hosts");
}

TEST_F(SettingsViewTest, TheEditorsOpenInWindowsOfTheirOwn) {
    open();
    button("editExceptions").click();
    button("editPac").click();
    EXPECT_THAT(stand.opened, ElementsAre("exceptions-editor", "pac-editor"));
}

// ---- Updates ----

TEST_F(SettingsViewTest, AutomaticChecksCanBeSwitchedOff) {
    open();
    EXPECT_TRUE(toggle("autoUpdate").isChecked());
    toggle("autoUpdate").click();
    EXPECT_FALSE(*stand.updater.autoUpdate());
}

TEST_F(SettingsViewTest, TheFeedIsSetAsItIsTyped) {
    open();
    EXPECT_EQ(field("feedUrl").text(), QStringLiteral("https://updates.example/velmora/appcast.json"));
    field("feedUrl").setFocus();
    field("feedUrl").setCursorPosition(8);
    QTest::keyClicks(&field("feedUrl"), QStringLiteral("my."));
    EXPECT_EQ(*stand.updater.feedURL(), "https://my.updates.example/velmora/appcast.json");
    EXPECT_EQ(field("feedUrl").cursorPosition(), 11);
    field("feedUrl").selectAll();
    QTest::keyClick(&field("feedUrl"), Qt::Key_Backspace);
    EXPECT_EQ(*stand.updater.feedURL(), "");
}

TEST_F(SettingsViewTest, CheckNowRestsWhileBusyAndKeepsItsWidth) {
    open();
    auto& check = button("checkNow");
    EXPECT_EQ(check.text(), QStringLiteral("Check Now"));
    const int width = check.width();
    check.click();
    QApplication::processEvents();
    EXPECT_EQ(check.text(), QStringLiteral("Checking…"));
    EXPECT_FALSE(check.isEnabled());
    EXPECT_EQ(check.width(), width);
    EXPECT_EQ(text("status"), "Checking…");

    stand.worker.runAll();
    stand.scheduler.runPosted();
    QApplication::processEvents();
    EXPECT_EQ(check.text(), QStringLiteral("Check Now"));
    EXPECT_TRUE(check.isEnabled());
    EXPECT_EQ(check.width(), width);
    EXPECT_FALSE(find<QLabel>("status").isVisible());
    EXPECT_TRUE(find<QLabel>("errorMessage").isVisible());
    EXPECT_EQ(text("errorMessage"), **stand.updater.errorMessage());
}

TEST_F(SettingsViewTest, WhatCheckNowBringsIsScrolledTo) {
    open();
    window->resize(680, 300);
    const auto isSeen = [this](const char* name) {
        const QWidget& widget = find<QWidget>(name);
        const auto* area = window->findChild<QScrollArea*>();
        return area->viewport()->rect().contains(widget.mapTo(area->viewport(), widget.rect().bottomLeft()));
    };
    stand.updater.check(CheckTrigger::manual);  // as from the menu
    stand.worker.runAll();
    stand.scheduler.runPosted();
    QApplication::processEvents();
    EXPECT_FALSE(isSeen("errorMessage")) << "nobody looks there";
    button("checkNow").click();
    stand.worker.runAll();
    stand.scheduler.runPosted();
    QApplication::processEvents();
    EXPECT_TRUE(find<QLabel>("errorMessage").isVisible());
    EXPECT_TRUE(isSeen("errorMessage"));
}

TEST_F(SettingsViewTest, CheckNowHasTheFocusAgainAfterwards) {
    open();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    button("checkNow").setFocus();
    QTest::keyClick(&button("checkNow"), Qt::Key_Space);
    EXPECT_EQ(qobject_cast<QAbstractButton*>(QApplication::focusWidget()), nullptr);
    stand.worker.runAll();
    stand.scheduler.runPosted();
    EXPECT_TRUE(button("checkNow").hasFocus());
}

TEST_F(SettingsViewTest, TheLatestVersionIsSaidSo) {
    open();
    stand.offerUpdate("1.15.0");
    EXPECT_EQ(text("status"), "You're on the latest version (v1.15.0).");
    EXPECT_TRUE(find<QLabel>("status").isVisible());
    EXPECT_FALSE(button("install").isVisible());
}

TEST_F(SettingsViewTest, AnAvailableVersionCanBeInstalled) {
    open();
    EXPECT_FALSE(button("install").isVisible());
    EXPECT_FALSE(find<QLabel>("available").isVisible());
    stand.offerUpdate("1.16.0");
    EXPECT_EQ(text("available"), "v1.16.0 available");
    ASSERT_TRUE(button("install").isVisible());
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&button("install"))->text(QAccessible::Name),
              QStringLiteral("Update & Relaunch"));

    button("install").click();
    EXPECT_EQ(text("status"), "Downloading v1.16.0…");
    EXPECT_FALSE(button("install").isEnabled());
    EXPECT_EQ(stand.worker.waiting(), 1U);
    stand.worker.runAll();
    stand.scheduler.runPosted();
    EXPECT_TRUE(find<QLabel>("errorMessage").isVisible());
    EXPECT_FALSE(find<QProgressBar>("progress").isVisible());
    stand.updateAlert.dismiss();
    EXPECT_TRUE(button("install").isEnabled());
}

TEST_F(SettingsViewTest, ADownloadShowsHowFarItIs) {
    open();
    auto& bar = find<QProgressBar>("progress");
    EXPECT_FALSE(bar.isVisible());
    stand.updater.progress().set(DownloadProgress{.received = 6'000'000'000, .total = 24'000'000'000});
    EXPECT_TRUE(bar.isVisible());
    EXPECT_EQ(bar.text(), QStringLiteral("25%"));
    stand.updater.progress().set(DownloadProgress{.received = 5, .total = {}});
    EXPECT_EQ(bar.maximum(), 0) << "it is not known how far";
    stand.updater.progress().set(DownloadProgress{.received = 30, .total = 20});
    EXPECT_EQ(bar.text(), QStringLiteral("100%"));
    stand.updater.progress().set(std::nullopt);
    EXPECT_FALSE(bar.isVisible());
}

TEST_F(SettingsViewTest, WhatTheFeedSaysIsNoMarkupAndNeverTooWide) {
    open();
    stand.updater.errorMessage().set("<b>" + std::string(300, 'x') + "</b> " + std::string(500, 'y'));
    stand.offerUpdate("99." + std::string(3000, '1'));
    EXPECT_EQ(find<QLabel>("errorMessage").textFormat(), Qt::PlainText);
    EXPECT_EQ(find<QLabel>("status").textFormat(), Qt::PlainText);
    EXPECT_LE(window->minimumSizeHint().width(), 680);
}

TEST_F(SettingsViewTest, ErrorsReadWellOnLightAndOnDark) {
    const QPalette before = QApplication::palette();
    for (const int grey : {0, 45, 60, 225, 239, 255}) {
        QPalette colors = before;
        colors.setColor(QPalette::Window, QColor(grey, grey, grey));
        colors.setColor(QPalette::WindowText, grey < 128 ? Qt::white : Qt::black);
        QApplication::setPalette(colors);
        open();
        const QColor red = find<QLabel>("errorMessage").palette().color(QPalette::WindowText);
        EXPECT_GE(tints::contrast(red, QColor(grey, grey, grey)), 4.5) << grey;
        EXPECT_GT(red.red(), red.green() + 40);
        delete window;
    }
    QApplication::setPalette(before);
}

// ---- looks ----

TEST_F(SettingsViewTest, NoWordsAreCutOffAlsoInLargerType) {
    const QFont before = QApplication::font();
    for (const double scale : {1.0, 1.5}) {
        QFont font = before;
        font.setPointSizeF(before.pointSizeF() * scale);
        QApplication::setFont(font);
        stand.offerUpdate("1.16.0");
        stand.updater.status().set("A line that goes on for a while, so that it must be broken somewhere. And again.");
        open();
        QApplication::processEvents();
        for (auto* widget : window->findChildren<QWidget*>()) {
            const auto* label = qobject_cast<QLabel*>(widget);
            const bool wraps = label != nullptr && label->wordWrap();
            if (!widget->isVisible() || (label == nullptr && qobject_cast<QAbstractButton*>(widget) == nullptr)) {
                continue;
            }
            const QSize needed = wraps ? QSize(0, label->heightForWidth(label->width())) : widget->sizeHint();
            EXPECT_GE(widget->width(), needed.width()) << widget->objectName().toStdString();
            EXPECT_GE(widget->height(), needed.height()) << widget->objectName().toStdString();
        }
        delete window;
    }
    QApplication::setFont(before);
}

}  // namespace
}  // namespace velmora
