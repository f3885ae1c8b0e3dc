#include "ui/ConnectionTabView.h"
#include "ui/HostDetailView.h"
#include "ui/HostEditorStand.h"
#include "ui/TextField.h"

#include <QDir>
#include <QLabel>

namespace velmora {
namespace {

class ConnectionTabViewTest : public testing::Test {
protected:
    void SetUp() override {
        stand.setHostsNamed({"web"});
        view = std::make_unique<HostDetailView>(stand.services, stand.host(0).id);
        hands = std::make_unique<EditorHands>(*view);
        hands->show();
        hands->choose("tabs", 1);
    }
    bool shows(const QString& text) {
        const auto labels = view->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [&text](const QLabel* label) { return label->text() == text && label->isVisible(); });
    }

    WindowStand stand;
    std::unique_ptr<HostDetailView> view;
    std::unique_ptr<EditorHands> hands;
};

TEST_F(ConnectionTabViewTest, AKeyHasAFileAndAPasswordHasAField) {
    EXPECT_TRUE(shows(QStringLiteral("Authentication")));
    EXPECT_TRUE(shows(QStringLiteral("Identity File")));
    EXPECT_TRUE(shows(QStringLiteral("Leave empty to use ssh-agent or the default key.")));
    EXPECT_EQ(hands->find<TextField>("identityFile")->placeholderText(), QStringLiteral("~/.ssh/id_rsa"));
    EXPECT_FALSE(hands->find<QWidget>("password")->isVisible());
    hands->choose("authMethod", 1);
    EXPECT_EQ(stand.host(0).authMethod, AuthMethod::password);
    EXPECT_TRUE(hands->find<QWidget>("password")->isVisible());
    EXPECT_TRUE(shows(QStringLiteral("Password is stored in the macOS Keychain.")));
    EXPECT_FALSE(shows(QStringLiteral("Identity File")));
}

TEST_F(ConnectionTabViewTest, ChoosesAnIdentityFile) {
    EXPECT_EQ(hands->find<QAbstractButton>("choose")->text(), QStringLiteral("Choose…"));
    stand.dialogs.choices = {"/keys/größe key"};
    hands->click("choose");
    ASSERT_EQ(stand.dialogs.panels.size(), 1U);
    EXPECT_EQ(stand.dialogs.panels[0].first, "Select SSH Identity File");
    EXPECT_EQ(stand.dialogs.panels[0].second, QDir::homePath().toStdString() + "/.ssh");
    EXPECT_EQ(stand.host(0).identityFile, "/keys/größe key");
    EXPECT_EQ(hands->find<TextField>("identityFile")->text(), QStringLiteral("/keys/größe key"));
    hands->click("choose");
    EXPECT_EQ(stand.host(0).identityFile, "/keys/größe key") << "cancelled";
}

}  // namespace
}  // namespace velmora
