#include "ui/ElidedLabel.h"
#include "ui/HostDetailView.h"
#include "ui/HostEditorStand.h"
#include "ui/HostFooter.h"
#include "ui/ProminentButton.h"

#include <QClipboard>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>

#include <fstream>

namespace velmora {
namespace {

class HostFooterTest : public testing::Test {
protected:
    void SetUp() override {
        stand.setHostsNamed({"web"});
        view = std::make_unique<HostDetailView>(stand.services, stand.host(0).id);
        hands = std::make_unique<EditorHands>(*view);
        view->resize(640, 480);
        hands->show();
    }
    std::string status() {
        hands->settle();
        return hands->find<ElidedLabel>("status")->fullText().toStdString();
    }
    ProminentButton& connectButton() { return *hands->find<ProminentButton>("connect"); }
    QTimer& uptimeTimer() { return *view->findChild<QTimer*>(QStringLiteral("uptimeTimer")); }

    WindowStand stand;
    std::unique_ptr<HostDetailView> view;
    std::unique_ptr<EditorHands> hands;
};

TEST_F(HostFooterTest, SaysHowTheHostIsDoing) {
    EXPECT_EQ(status(), "Not Connected");
    stand.manager.connect(stand.host(0));
    EXPECT_EQ(status(), "Connecting...");
    stand.scheduler.advance(std::chrono::seconds(4));
    EXPECT_EQ(status(), "Connected · < 1m");
    stand.manager.disconnect(stand.host(0));
    EXPECT_EQ(status(), "Not Connected");
    stand.makeFailed(0);
    EXPECT_EQ(status().substr(0, 20), "Error: Reconnecting ");
}

TEST_F(HostFooterTest, TheUptimeAdvancesWhileItIsSeen) {
    EXPECT_FALSE(uptimeTimer().isActive());
    stand.makeConnected(0);
    hands->settle();
    EXPECT_TRUE(uptimeTimer().isActive());
    EXPECT_EQ(uptimeTimer().interval(), 30000);
    stand.scheduler.advance(std::chrono::minutes(134));
    QTimerEvent due(uptimeTimer().timerId());
    QApplication::sendEvent(&uptimeTimer(), &due);
    EXPECT_EQ(status(), "Connected · 2h 14m");
    view->hide();
    EXPECT_FALSE(uptimeTimer().isActive());
    view->show();
    EXPECT_TRUE(uptimeTimer().isActive());
    stand.manager.disconnect(stand.host(0));
    hands->settle();
    EXPECT_FALSE(uptimeTimer().isActive());
}

TEST_F(HostFooterTest, ConnectsAndDisconnectsWithWhatIsInTheListUnsaved) {
    const int width = connectButton().width();
    EXPECT_EQ(connectButton().text(), QStringLiteral("Connect"));
    EXPECT_EQ(connectButton().tint(), ProminentButton::Tint::accent);
    hands->type("hostname", QStringLiteral("typed.example"));
    hands->click("connect");
    hands->settle();
    EXPECT_EQ(connectButton().text(), QStringLiteral("Disconnect"));
    EXPECT_EQ(connectButton().tint(), ProminentButton::Tint::red);
    EXPECT_EQ(connectButton().width(), width);
    EXPECT_EQ(stand.launcher.last().arguments.back(), "typed.example");
    EXPECT_FALSE(std::filesystem::exists(stand.home / "share" / "Velmora" / "hosts.json"));
    hands->click("connect");
    hands->settle();
    EXPECT_FALSE(stand.manager.isActive(stand.host(0)));
    EXPECT_EQ(connectButton().text(), QStringLiteral("Connect"));
}

TEST_F(HostFooterTest, ALongErrorIsCutOffAndWholeInTheTooltip) {
    stand.manager.connect(stand.host(0));
    stand.launcher.last().exitSaying("ssh: " + std::string(300, 'e') + " <b>\n", 255);
    stand.scheduler.runPosted();
    hands->settle();
    const auto* label = hands->find<ElidedLabel>("status");
    EXPECT_TRUE(label->toolTip().contains(QString(300, QLatin1Char('e'))));
    EXPECT_TRUE(label->toolTip().contains(QStringLiteral("&lt;b&gt;")));
    EXPECT_EQ(view->width(), 640);
    EXPECT_GE(label->width(), 100);
}

TEST_F(HostFooterTest, OpensTheLogOrSaysThatThereIsNone) {
    hands->click("doc-text");
    EXPECT_TRUE(stand.workspace.opened.empty());
    ASSERT_EQ(stand.dialogs.alerts.size(), 1U);
    EXPECT_TRUE(stand.dialogs.alerts[0].message.contains(QStringLiteral("\"web\"")));

    const auto log = stand.manager.logURL(stand.host(0));
    std::ofstream(log) << "log";
    hands->click("doc-text");
    EXPECT_EQ(stand.workspace.opened, std::vector<std::filesystem::path>{log});
    EXPECT_EQ(log.filename(), "web.log");
    EXPECT_EQ(stand.dialogs.alerts.size(), 1U);
}

TEST_F(HostFooterTest, CopiesTheCommand) {
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    hands->click("clipboard");
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), stand.manager.sshCommand(stand.host(0)));
}

TEST_F(HostFooterTest, TellsWhatItsButtonsDo) {
    EXPECT_EQ(hands->find<QWidget>("doc-text")->toolTip(), QStringLiteral("Open log in Console"));
    EXPECT_EQ(hands->find<QWidget>("clipboard")->toolTip(), QStringLiteral("Copy SSH command to clipboard"));
    EXPECT_EQ(hands->find<QPushButton>("save")->text(), QStringLiteral("Save"));
}

TEST_F(HostFooterTest, StaysPutWhileTheFormScrolls) {
    const QPoint before = connectButton().mapTo(view.get(), QPoint());
    for (auto* area : view->findChildren<QScrollArea*>()) {
        area->verticalScrollBar()->setValue(area->verticalScrollBar()->maximum());
    }
    hands->settle();
    EXPECT_EQ(connectButton().mapTo(view.get(), QPoint()), before);
    EXPECT_TRUE(view->rect().contains(QRect(before, connectButton().size())));
}

}  // namespace
}  // namespace velmora
