#include "ui/HostEditorStand.h"
#include "ui/LinesField.h"
#include "ui/NewHostSheet.h"
#include "ui/TextField.h"

#include <QPushButton>
#include <QScrollArea>

namespace velmora {
namespace {

class NewHostSheetTest : public testing::Test {
protected:
    void SetUp() override { hands.show(); }

    bool canCreate() { return hands.find<QPushButton>("create")->isEnabled(); }

    WindowStand stand;
    std::vector<SSHHost> created;
    std::vector<std::size_t> itemsWhenCreated;
    NewHostSheet sheet{stand.services,
                       [this](const SSHHost& host) {
                           created.push_back(host);
                           itemsWhenCreated.push_back(stand.credentials.items.size());
                       },
                       nullptr};
    EditorHands hands{sheet};
};

TEST_F(NewHostSheetTest, CreateStaysDisabledUntilAHostnameIsTyped) {
    EXPECT_FALSE(canCreate());
    EXPECT_EQ(QApplication::focusWidget(), hands.find<QWidget>("hostname"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(created.empty());
    EXPECT_TRUE(sheet.isVisible());
    hands.type("username", QStringLiteral("me"));
    EXPECT_FALSE(canCreate());
    hands.type("hostname", QStringLiteral(" "));
    EXPECT_TRUE(canCreate()) << "not trimmed";
    hands.type("hostname", QString());
    EXPECT_FALSE(canCreate());
}

TEST_F(NewHostSheetTest, ReturnCreatesAHostWithTheDefaults) {
    hands.type("hostname", QStringLiteral("h.example"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    ASSERT_EQ(created.size(), 1U);
    SSHHost expected;
    expected.id = created[0].id;
    expected.hostname = "h.example";
    EXPECT_EQ(created[0], expected);
    EXPECT_TRUE(stand.credentials.items.empty());
    EXPECT_TRUE(stand.manager.hosts().get().empty()) << "who opened the sheet adds it";
    EXPECT_FALSE(sheet.isVisible());
    EXPECT_EQ(sheet.result(), QDialog::Accepted);
}

TEST_F(NewHostSheetTest, ThePasswordIsUnderTheNewIdBeforeTheHostIsHandedOn) {
    hands.type("hostname", QStringLiteral("h"));
    hands.choose("tabs", 1);
    hands.choose("authMethod", 1);
    hands.type("password", QString::fromUtf8("geheim ü"));
    EXPECT_TRUE(stand.credentials.items.empty());
    hands.click("create");
    ASSERT_EQ(created.size(), 1U);
    EXPECT_EQ(created[0].authMethod, AuthMethod::password);
    EXPECT_EQ(itemsWhenCreated, std::vector<std::size_t>{1});
    const RecordingCredentialStore::Items expected{{{"com.velmora.app", created[0].id.toString()}, "geheim ü"}};
    EXPECT_EQ(stand.credentials.items, expected);
}

TEST_F(NewHostSheetTest, CancelAndEscapeLeaveWithoutEffect) {
    hands.type("hostname", QStringLiteral("h"));
    hands.choose("tabs", 1);
    hands.choose("authMethod", 1);
    hands.type("password", QStringLiteral("secret"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(sheet.isVisible());
    EXPECT_EQ(sheet.result(), QDialog::Rejected);
    sheet.show();
    hands.click("cancel");
    EXPECT_FALSE(sheet.isVisible());
    EXPECT_TRUE(created.empty());
    EXPECT_TRUE(stand.credentials.items.empty());
}

TEST_F(NewHostSheetTest, HasTheWholeFormOfTheEditor) {
    hands.type("hostname", QStringLiteral("h"));
    hands.click("plus");
    hands.type("bindPort", QStringLiteral("8080"));
    hands.type("targetAddress", QStringLiteral("db"));
    hands.type("targetPort", QStringLiteral("5432"));
    hands.type("connectTimeout", QStringLiteral("5"));
    auto* options = hands.goTo("customOptions");
    QTest::keyClicks(options, QStringLiteral("A=1"));
    QTest::keyClick(options, Qt::Key_Return);
    EXPECT_TRUE(sheet.isVisible()) << "a line of its own there";
    EXPECT_FALSE(sheet.findChildren<QScrollArea*>().isEmpty());
    hands.click("create");
    ASSERT_EQ(created.size(), 1U);
    ASSERT_EQ(created[0].forwardingRules.size(), 1U);
    EXPECT_EQ(created[0].forwardingRules[0].sshArguments(), (std::vector<std::string>{"-L", "8080:db:5432"}));
    EXPECT_EQ(created[0].connectTimeout, 5);
    EXPECT_EQ(created[0].customOptions, "A=1\n");
}

TEST_F(NewHostSheetTest, EachSheetMakesAHostOfItsOwn) {
    NewHostSheet other(
        stand.services, [this](const SSHHost& host) { created.push_back(host); }, nullptr);
    EditorHands otherHands(other);
    otherHands.show();
    for (EditorHands* both : {&hands, &otherHands}) {
        both->type("hostname", QStringLiteral("h"));
        both->click("create");
    }
    ASSERT_EQ(created.size(), 2U);
    EXPECT_NE(created[0].id, created[1].id);
}

}  // namespace
}  // namespace velmora
