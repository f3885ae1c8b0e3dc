#include "ui/ContentView.h"
#include "ui/HostDetailView.h"
#include "ui/HostListView.h"
#include "ui/WindowStand.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QPushButton>
#include <QSplitter>
#include <QTest>
#include <QToolButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace velmora {
namespace {

using testing::ElementsAre;

class ContentViewTest : public testing::Test {
protected:
    ~ContentViewTest() override { delete window; }

    void open() {
        QApplication::processEvents();
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    }
    void openWith(const std::vector<std::string>& names) {
        stand.setHostsNamed(names);
        open();
    }
    void closeAndReopen() {
        window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        ASSERT_TRUE(window.isNull());
        window = new ContentView(stand.services);
    }

    HostListView& list() { return *window->findChild<HostListView*>(QStringLiteral("hosts")); }
    QSplitter& split() { return *window->findChild<QSplitter*>(QStringLiteral("split")); }
    QLabel& placeholder() { return *window->findChild<QLabel*>(QStringLiteral("placeholder")); }
    void drag(int by) {
        QWidget* handle = split().handle(1);
        const QPoint middle = handle->rect().center();
        QTest::mousePress(handle, Qt::LeftButton, {}, middle);
        QTest::mouseMove(handle, middle + QPoint(by, 0));
        QTest::mouseRelease(handle, Qt::LeftButton, {}, middle);
    }
    void select(int row) { list().setCurrentIndex(list().model()->index(row, 0)); }
    /// The editors that are not on their way out.
    std::vector<HostDetailView*> editors() {
        std::vector<HostDetailView*> found;
        for (auto* editor : window->findChildren<HostDetailView*>()) {
            if (editor->isVisible()) {
                found.push_back(editor);
            }
        }
        return found;
    }
    QList<NewHostSheet*> sheets() { return window->findChildren<NewHostSheet*>(); }
    QAction* action(const QString& menu, const QString& text) {
        for (const QAction* top : window->menuBar()->actions()) {
            if (top->text().remove(QLatin1Char('&')) != menu) {
                continue;
            }
            for (QAction* action : top->menu()->actions()) {
                if (action->text().remove(QLatin1Char('&')) == text) {
                    return action;
                }
            }
        }
        return nullptr;
    }

    WindowStand stand;
    QPointer<ContentView> window = new ContentView(stand.services);
};

TEST_F(ContentViewTest, IsCalledVelmora) {
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Velmora"));
    EXPECT_EQ(window->objectName(), QStringLiteral("main"));
}

// ---- the editor and its absence ----

TEST_F(ContentViewTest, WithoutASelectionThePlaceholderOffersToAddATunnel) {
    openWith({"web"});
    EXPECT_TRUE(placeholder().isVisible());
    EXPECT_EQ(placeholder().text(), QStringLiteral("No tunnel selected"));
    EXPECT_FALSE(window->findChild<QWidget*>(QStringLiteral("firstStep"))->isVisible());
    auto* add = window->findChild<QPushButton*>(QStringLiteral("addTunnel"));
    EXPECT_EQ(add->text(), QStringLiteral("Add Tunnel"));
    add->click();
    EXPECT_EQ(sheets().size(), 1);
}

TEST_F(ContentViewTest, ANewUserIsToldTheFirstStep) {
    openWith({});
    const auto* sentence = window->findChild<QLabel*>(QStringLiteral("firstStep"));
    EXPECT_TRUE(sentence->isVisible());
    EXPECT_GE(sentence->height(), sentence->heightForWidth(sentence->width()));
    stand.setHostsNamed({"web"});
    QApplication::processEvents();
    EXPECT_FALSE(sentence->isVisible());
}

TEST_F(ContentViewTest, TheEditorIsRebuiltForAnotherHostOnly) {
    openWith({"web", "db"});
    select(0);
    ASSERT_EQ(editors().size(), 1U);
    const QPointer<HostDetailView> first = editors()[0];
    EXPECT_EQ(first->hostId(), stand.host(0).id);
    EXPECT_FALSE(placeholder().isVisible());

    stand.makeConnected(1);
    stand.manager.hosts().edit([](auto& hosts) {
        hosts[0].name = "renamed";
        std::swap(hosts[0], hosts[1]);
        hosts.push_back(ManagerStand::hostNamed("new"));
    });
    QApplication::processEvents();
    ASSERT_EQ(editors().size(), 1U);
    EXPECT_EQ(editors()[0], first);

    select(0);
    ASSERT_EQ(editors().size(), 1U);
    EXPECT_NE(editors()[0], first);
    EXPECT_EQ(editors()[0]->hostId(), stand.host(0).id);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
}

TEST_F(ContentViewTest, AFilteredOutHostKeepsItsEditorOpen) {
    openWith({"web", "db"});
    select(0);
    HostDetailView* editor = editors().at(0);
    window->findChild<QLineEdit*>(QStringLiteral("search"))->setText(QStringLiteral("db"));
    EXPECT_THAT(editors(), ElementsAre(editor));
}

TEST_F(ContentViewTest, DeletingTheSelectedHostShowsThePlaceholder) {
    openWith({"web", "db"});
    select(0);
    QTest::keyClick(&list(), Qt::Key_Delete);
    stand.dialogs.answer(true);
    QApplication::processEvents();
    EXPECT_EQ(stand.manager.hosts().get().size(), 1U);
    EXPECT_TRUE(editors().empty());
    EXPECT_TRUE(placeholder().isVisible());
    EXPECT_EQ(placeholder().text(), QStringLiteral("No tunnel selected"));
    EXPECT_FALSE(list().selectionModel()->hasSelection());
}

TEST_F(ContentViewTest, CancellingTheDeleteAlertLeavesTheHostInPlace) {
    openWith({"web"});
    select(0);
    action(QStringLiteral("Tunnel"), QStringLiteral("Delete…"))->trigger();
    ASSERT_EQ(stand.dialogs.questions.size(), 1U);
    stand.dialogs.answer(false);
    QApplication::processEvents();
    EXPECT_EQ(stand.manager.hosts().get().size(), 1U);
    EXPECT_EQ(editors().size(), 1U);
}

TEST_F(ContentViewTest, AHostThatIsDeletedElsewhereIsNotSelectedAnyMore) {
    openWith({"web", "db", "mail"});
    select(1);
    stand.manager.hosts().edit([](auto& hosts) { hosts.erase(hosts.begin() + 1); });
    QApplication::processEvents();
    EXPECT_TRUE(editors().empty());
    EXPECT_TRUE(placeholder().isVisible());
    EXPECT_FALSE(list().selectionModel()->hasSelection());
}

TEST_F(ContentViewTest, ReturnAndDoubleClickToggleAHost) {
    openWith({"web", "db"});
    select(1);
    QTest::keyClick(&list(), Qt::Key_Return);
    EXPECT_TRUE(stand.manager.isActive(stand.host(1)));
    EXPECT_FALSE(stand.manager.isActive(stand.host(0)));

    const QPoint row = list().visualRect(list().model()->index(1, 0)).center();
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, row);
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, {}, row);
    EXPECT_FALSE(stand.manager.isActive(stand.host(1)));
}

TEST_F(ContentViewTest, TheSelectionStaysWhileStatusesChange) {
    openWith({"web", "db"});
    select(1);
    stand.makeConnected(0);
    stand.makeFailed(1);
    QApplication::processEvents();
    EXPECT_EQ(list().currentIndex().row(), 1);
    EXPECT_TRUE(list().selectionModel()->isSelected(list().currentIndex()));
}

// ---- the sheet ----

TEST_F(ContentViewTest, TheNotificationShowsTheSheetOfANewHostOnce) {
    EXPECT_STREQ(AppCommands::addTunnelNotification, "com.velmora.addTunnel");
    openWith({});
    stand.commands.newTunnel();
    ASSERT_EQ(sheets().size(), 1);
    EXPECT_EQ(sheets()[0]->windowModality(), Qt::WindowModal);
    EXPECT_TRUE(sheets()[0]->isVisible());
    stand.commands.newTunnel();
    EXPECT_EQ(sheets().size(), 1);

    sheets()[0]->reject();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(sheets().size(), 0);
    window->findChild<QToolButton*>(QStringLiteral("plus"))->click();
    EXPECT_EQ(sheets().size(), 1);
}

TEST_F(ContentViewTest, AHostFromTheSheetIsAddedSavedAndSelected) {
    openWith({"a"});
    stand.commands.newTunnel();
    sheets()[0]->findChild<QLineEdit*>(QStringLiteral("hostname"))->setFocus();
    QTest::keyClicks(sheets()[0]->findChild<QLineEdit*>(QStringLiteral("hostname")), QStringLiteral("new.example"));
    sheets()[0]->findChild<QPushButton*>(QStringLiteral("create"))->click();
    ASSERT_EQ(stand.manager.hosts().get().size(), 2U);
    EXPECT_EQ(stand.host(1).hostname, "new.example");
    EXPECT_EQ(list().currentIndex().row(), 1);
    EXPECT_EQ(TunnelManager(stand.platform()).hosts().get(), stand.manager.hosts().get())
        << "as a new start reads them";
}

// ---- places ----

TEST_F(ContentViewTest, RemembersItsSize) {
    open();
    window->resize(1100, 700);
    closeAndReopen();
    EXPECT_EQ(window->size(), QSize(1100, 700));
}

TEST_F(ContentViewTest, TheSidebarIs260To480WideAndIdeally320) {
    open();
    EXPECT_EQ(split().sizes().at(0), 320);
    drag(-300);
    EXPECT_EQ(split().sizes().at(0), 260);
    drag(600);
    EXPECT_EQ(split().sizes().at(0), 480);
}

TEST_F(ContentViewTest, RemembersTheSplit) {
    open();
    drag(80);
    closeAndReopen();
    open();
    EXPECT_EQ(split().sizes().at(0), 400);
}

TEST_F(ContentViewTest, ASplitThatCannotBeIsMended) {
    for (const auto& [text, width] : {std::pair("rubbish", 320), std::pair("OTAwMA==", 480), std::pair("LTE=", 320)}) {
        delete window;
        stand.defaults.setString("window.main.split", text);
        window = new ContentView(stand.services);
        open();
        EXPECT_EQ(split().sizes().at(0), width) << text;
    }
}

// ---- menus ----

TEST_F(ContentViewTest, TheFileMenuHasTheCommandsInOrder) {
    std::vector<std::string> texts;
    for (const QAction* item : window->menuBar()->actions().at(0)->menu()->actions()) {
        texts.push_back(item->text().remove(QLatin1Char('&')).toStdString());
    }
    texts.resize(4);
    EXPECT_THAT(
        texts, ElementsAre("New Tunnel", "Import from Velmora Backup…", "Import from Core Tunnel…", "Export Tunnels…"));
    const auto shortcut = [this](const char* text) {
        return action(QStringLiteral("File"), QString::fromUtf8(text))->shortcut();
    };
    EXPECT_EQ(shortcut("New Tunnel"), QKeySequence(Qt::CTRL | Qt::Key_N));
    EXPECT_EQ(shortcut("Import from Velmora Backup…"), QKeySequence());
    EXPECT_EQ(shortcut("Import from Core Tunnel…"), QKeySequence(Qt::CTRL | Qt::Key_I));
    EXPECT_EQ(shortcut("Export Tunnels…"), QKeySequence(Qt::CTRL | Qt::Key_E));
}

TEST_F(ContentViewTest, TheFileMenuDoesWhatItSays) {
    openWith({"web"});
    action(QStringLiteral("File"), QStringLiteral("New Tunnel"))->trigger();
    EXPECT_EQ(sheets().size(), 1);
    for (const char* text : {"Import from Velmora Backup…", "Import from Core Tunnel…", "Export Tunnels…"}) {
        stand.dialogs.panels.clear();
        action(QStringLiteral("File"), QString::fromUtf8(text))->trigger();
        EXPECT_EQ(stand.dialogs.panels.size(), 1U) << text;
    }
    window->findChild<QAction*>(QStringLiteral("quit"))->trigger();
    EXPECT_EQ(stand.quits, 1);
}

TEST_F(ContentViewTest, EveryWindowCanBeReachedFromTheMenus) {
    for (const char* text : {"PAC Editor…", "Proxy Exceptions…", "Add Proxy Exception…", "Settings…"}) {
        action(QStringLiteral("Tools"), QString::fromUtf8(text))->trigger();
    }
    action(QStringLiteral("Help"), QStringLiteral("About Velmora"))->trigger();
    EXPECT_THAT(stand.opened, ElementsAre("pac-editor", "exceptions-editor", "quick-exception", "settings", "about"));
}

TEST_F(ContentViewTest, NoTwoActionsShareAShortcutAndSavingIsLeftToTheEditor) {
    std::vector<std::string> shortcuts;
    for (const QAction* each : window->findChildren<QAction*>()) {
        if (!each->shortcut().isEmpty()) {
            shortcuts.push_back(each->shortcut().toString().toStdString());
        }
    }
    std::sort(shortcuts.begin(), shortcuts.end());
    EXPECT_EQ(std::adjacent_find(shortcuts.begin(), shortcuts.end()), shortcuts.end());
    EXPECT_FALSE(std::binary_search(shortcuts.begin(), shortcuts.end(), "Ctrl+S"));
}

TEST_F(ContentViewTest, TheTunnelMenuFollowsTheSelection) {
    openWith({"web", "db"});
    const QAction* toggle = window->findChild<QAction*>(QStringLiteral("toggle"));
    const QAction* up = action(QStringLiteral("Tunnel"), QStringLiteral("Move Up"));
    QAction* down = action(QStringLiteral("Tunnel"), QStringLiteral("Move Down"));
    EXPECT_FALSE(toggle->isEnabled());
    EXPECT_FALSE(down->isEnabled());
    select(0);
    EXPECT_TRUE(toggle->isEnabled());
    EXPECT_FALSE(up->isEnabled());
    EXPECT_TRUE(down->isEnabled());
    stand.makeConnected(0);
    QApplication::processEvents();
    EXPECT_EQ(toggle->text().remove(QLatin1Char('&')), QStringLiteral("Disconnect"));
    down->trigger();
    QApplication::processEvents();
    EXPECT_EQ(stand.host(1).name, "web");
    EXPECT_TRUE(up->isEnabled());
    EXPECT_FALSE(down->isEnabled());
}

TEST_F(ContentViewTest, TheKeysThatMoveAHostAreTheListsAlone) {
    openWith({"web", "db"});
    select(0);
    QApplication::processEvents();
    QApplication::setActiveWindow(window);
    auto* field = editors().front()->findChild<QLineEdit*>(QStringLiteral("hostname"));
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(stand.host(0).name, "web");
    list().setFocus();
    QTest::keyClick(&list(), Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(stand.host(0).name, "db");
}

TEST_F(ContentViewTest, SearchTakesTheFocus) {
    openWith({"web"});
    action(QStringLiteral("Tunnel"), QStringLiteral("Search"))->trigger();
    EXPECT_TRUE(window->findChild<QLineEdit*>(QStringLiteral("search"))->hasFocus());
}

}  // namespace
}  // namespace velmora
