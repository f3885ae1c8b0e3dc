#include "ui/HostDetailView.h"
#include "ui/HostEditorStand.h"
#include "ui/IntegerField.h"
#include "ui/LinesField.h"
#include "ui/TextField.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>

#include <fstream>
#include <iterator>

namespace velmora {
namespace {

class HostDetailViewTest : public testing::Test {
protected:
    void SetUp() override {
        SSHHost host = ManagerStand::hostNamed("web");
        ForwardingRule rule;
        rule.bindPort = 80;
        rule.targetAddress = "db";
        rule.targetPort = 5432;
        ForwardingRule dynamic;
        dynamic.type = ForwardingType::dynamic;
        dynamic.bindPort = 1080;
        host.forwardingRules = {rule, dynamic};
        stand.setHosts({ManagerStand::hostNamed("first"), host});
        open();
    }

    void open() {
        view = std::make_unique<HostDetailView>(stand.services, stand.host(1).id);
        hands = std::make_unique<EditorHands>(*view);
        view->resize(640, 900);
        hands->show();
    }
    /// As it comes from the shared folder.
    void changeElsewhere(const std::function<void(SSHHost&)>& change) {
        auto hosts = stand.manager.hosts().get();
        change(hosts.at(1));
        stand.manager.hosts().set(std::move(hosts));
    }
    bool canSave() { return hands->find<QPushButton>("save")->isEnabled(); }
    void pressSaveKey() { QTest::keyClick(view.get(), Qt::Key_S, Qt::ControlModifier); }
    SSHHost host() { return stand.host(1); }

    WindowStand stand;
    std::unique_ptr<HostDetailView> view;
    std::unique_ptr<EditorHands> hands;
};

/// A keychain that is locked while the editor opens, and unlocked a moment later.
class LockedKeychainTest : public HostDetailViewTest {
protected:
    void SetUp() override {
        HostDetailViewTest::SetUp();
        const std::pair key{std::string("com.velmora.app"), host().id.toString()};
        secret = &(stand.credentials.items[key] = "precious");
        stand.credentials.copyMatchingAnswer = CredentialStatus::interactionNotAllowed;
        changeElsewhere([](SSHHost& host) { host.authMethod = AuthMethod::password; });
        open();
    }
    void comeBack() {
        QEvent event(QEvent::WindowActivate);
        QCoreApplication::sendEvent(view.get(), &event);
    }
    std::string shown() { return hands->find<TextField>("password")->text().toStdString(); }

    std::string* secret = nullptr;
};

TEST_F(LockedKeychainTest, SavingSomethingElseKeepsThePassword) {
    stand.credentials.copyMatchingAnswer.reset();
    hands->type("tags", QStringLiteral("prod"));
    pressSaveKey();
    EXPECT_EQ(*secret, "precious");
    EXPECT_EQ(shown(), "precious");
    EXPECT_FALSE(canSave());
}

TEST_F(LockedKeychainTest, SavingTwiceKeepsThePasswordToo) {
    stand.credentials.updateAnswer = CredentialStatus::interactionNotAllowed;
    hands->type("tags", QStringLiteral("prod"));
    pressSaveKey();
    stand.credentials.copyMatchingAnswer.reset();
    stand.credentials.updateAnswer.reset();
    hands->type("tags", QStringLiteral("test"));
    pressSaveKey();
    EXPECT_EQ(*secret, "precious");
}

TEST_F(LockedKeychainTest, ComingBackToTheWindowShowsThePassword) {
    EXPECT_EQ(shown(), "");
    comeBack();
    EXPECT_EQ(shown(), "");
    stand.credentials.copyMatchingAnswer.reset();
    comeBack();
    EXPECT_EQ(shown(), "precious");
    EXPECT_FALSE(canSave());
}

TEST_F(LockedKeychainTest, WhatIsTypedCountsAndNotWhatIsStored) {
    hands->type("password", QStringLiteral("new"));
    stand.credentials.copyMatchingAnswer.reset();
    comeBack();
    EXPECT_EQ(shown(), "new");
    pressSaveKey();
    EXPECT_EQ(*secret, "new");
    comeBack();
    EXPECT_EQ(shown(), "new");
}

TEST_F(HostDetailViewTest, AKeystrokeIsInTheManagersListAtOnce) {
    hands->type("name", QStringLiteral("n"));
    EXPECT_EQ(host().name, "n");
    hands->type("tags", QStringLiteral("prod, db"));
    EXPECT_EQ(host().tags, "prod, db");
    hands->type("hostname", QStringLiteral("h.example"));
    EXPECT_EQ(host().hostname, "h.example");
    hands->type("port", QStringLiteral("2222"));
    EXPECT_EQ(host().port, 2222);
    hands->type("customOptions", QStringLiteral("A=1"));
    EXPECT_EQ(host().customOptions, "A=1");
    EXPECT_EQ(stand.host(0), SSHHost(stand.manager.hosts().get().front()));
    EXPECT_FALSE(std::filesystem::exists(stand.home / "share" / "Velmora" / "hosts.json"));
}

TEST_F(HostDetailViewTest, RoomThatIsLeftOverStaysBelowTheForm) {
    const auto topOf = [this](const char* name) { return hands->find<QWidget>(name)->mapTo(view.get(), QPoint()).y(); };
    const int distance = topOf("rules") - topOf("useSSHConfigAlias");
    view->resize(view->width(), 2000);
    hands->settle();
    EXPECT_EQ(topOf("rules") - topOf("useSSHConfigAlias"), distance);
}

TEST_F(HostDetailViewTest, TypingInAnyFieldEnablesSaveAndTypingItBackDisablesItAgain) {
    for (const char* name : {"name", "tags", "hostname", "port", "username", "proxyJump", "identityFile",
                             "serverAliveInterval", "serverAliveCountMax", "connectTimeout", "customOptions",
                             "bindAddress", "bindPort", "targetAddress", "targetPort", "pacPatterns"}) {
        QWidget* const field = hands->goTo(name);
        QTest::keyClick(field, Qt::Key_End);
        ASSERT_FALSE(canSave()) << name;
        QTest::keyClick(field, Qt::Key_1);
        EXPECT_TRUE(canSave()) << name;
        QTest::keyClick(field, Qt::Key_Backspace);
        EXPECT_FALSE(canSave()) << name;
    }
}

TEST_F(HostDetailViewTest, EverySwitchEnablesSaveAndTurnedBackDisablesItAgain) {
    for (const char* name : {"useSSHConfigAlias", "noSessionRequest", "connectOnStartup", "compression",
                             "strictHostKeyChecking", "enabled"}) {
        hands->goTo(name);
        hands->click(name);
        EXPECT_TRUE(canSave()) << name;
        hands->click(name);
        EXPECT_FALSE(canSave()) << name;
    }
    hands->goTo(hands->find<SegmentedControl>("authMethod"));
    hands->choose("authMethod", 1);
    EXPECT_TRUE(canSave());
    EXPECT_EQ(host().authMethod, AuthMethod::password);
    hands->choose("authMethod", 0);
    EXPECT_FALSE(canSave());
    auto* type = hands->goTo("type");
    QTest::keyClick(type, Qt::Key_Down);
    EXPECT_TRUE(canSave());
    QTest::keyClick(type, Qt::Key_Up);
    EXPECT_FALSE(canSave());
}

TEST_F(HostDetailViewTest, ChangingOnlyThePasswordEnablesSaveAndSaveKeepsItInTheKeychain) {
    changeElsewhere([](SSHHost& host) { host.authMethod = AuthMethod::password; });
    open();
    const auto& key = std::pair<std::string, std::string>("com.velmora.app", host().id.toString());
    hands->type("password", QStringLiteral("secret"));
    EXPECT_EQ(hands->find<TextField>("password")->echoMode(), QLineEdit::Password);
    EXPECT_TRUE(canSave());
    EXPECT_TRUE(stand.credentials.items.empty()) << "not before Save";
    hands->click("save");
    EXPECT_EQ(stand.credentials.items[key], "secret");
    EXPECT_FALSE(canSave());

    open();
    EXPECT_EQ(hands->find<TextField>("password")->text(), QStringLiteral("secret"));
    EXPECT_FALSE(canSave());
    hands->type("password", QString());
    EXPECT_TRUE(canSave());
    pressSaveKey();
    EXPECT_EQ(stand.credentials.items[key], "");
}

TEST_F(HostDetailViewTest, TheSaveKeySavesOnlyWhileThereIsSomethingToSave) {
    stand.credentials.calls.clear();
    pressSaveKey();
    EXPECT_TRUE(stand.credentials.calls.empty());
    hands->type("hostname", QStringLiteral("new.example"));
    pressSaveKey();
    EXPECT_EQ(stand.credentials.items.size(), 1U);
    std::ifstream file(stand.home / "share" / "Velmora" / "hosts.json");
    const std::string json{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(json.find("new.example"), std::string::npos);
    EXPECT_FALSE(canSave());
}

TEST_F(HostDetailViewTest, AReplacedListUpdatesTheFieldsInWhichTheUserIsNot) {
    hands->type("hostname", QStringLiteral("typing"));
    auto* hostname = hands->find<TextField>("hostname");
    hostname->setSelection(1, 3);
    auto* username = hands->find<TextField>("username");
    changeElsewhere([](SSHHost& host) {
        host.hostname = "theirs.example";
        host.username = "their user";
        host.port = 2222;
        host.compression = true;
        host.authMethod = AuthMethod::password;
        host.customOptions = "B=2";
        host.forwardingRules[0].bindPort = 8081;
    });
    EXPECT_EQ(hostname->text(), QStringLiteral("typing"));
    EXPECT_EQ(hostname->selectedText(), QStringLiteral("ypi"));
    EXPECT_EQ(username->text(), QStringLiteral("their user"));
    EXPECT_EQ(hands->find<TextField>("port")->text(), QStringLiteral("2222"));
    EXPECT_TRUE(hands->find<QCheckBox>("compression")->isChecked());
    EXPECT_EQ(hands->find<SegmentedControl>("authMethod")->currentIndex(), 1);
    EXPECT_EQ(hands->find<LinesField>("customOptions")->toPlainText(), QStringLiteral("B=2"));
    EXPECT_EQ(hands->find<TextField>("bindPort")->text(), QStringLiteral("8081"));
    EXPECT_TRUE(canSave());

    username->setFocus();
    EXPECT_EQ(hostname->text(), QStringLiteral("theirs.example")) << "shown when the user has left";
}

TEST_F(HostDetailViewTest, ChangesElsewhereLeaveAFieldAndItsCursorAloneWhileItIsTypedIn) {
    hands->type("name", QStringLiteral("abcdef"));
    auto* name = hands->find<TextField>("name");
    name->setCursorPosition(3);
    changeElsewhere([](SSHHost& host) { host.tags = "new"; });
    EXPECT_EQ(name->cursorPosition(), 3);
    QTest::keyClick(name, Qt::Key_X);
    EXPECT_EQ(host().name, "abcxdef");
    EXPECT_EQ(name->cursorPosition(), 4);
    EXPECT_EQ(host().tags, "new");
}

TEST_F(HostDetailViewTest, AHostThatIsDeletedWhileOpenTakesNothingMore) {
    hands->type("name", QStringLiteral("typed"));
    const Uuid id = host().id;
    stand.manager.deleteHost(id);
    stand.credentials.calls.clear();
    EXPECT_FALSE(view->isEnabled());
    EXPECT_FALSE(canSave());
    QTest::keyClick(hands->find<TextField>("name"), Qt::Key_X);
    pressSaveKey();
    hands->settle();
    EXPECT_EQ(stand.manager.hosts().get().size(), 1U);
    EXPECT_TRUE(stand.credentials.calls.empty());
    EXPECT_EQ(view->hostId(), id);

    SSHHost back = ManagerStand::hostNamed("back");
    back.id = id;
    stand.setHosts({back});
    EXPECT_TRUE(view->isEnabled());
    EXPECT_EQ(hands->find<TextField>("name")->text(), QStringLiteral("back"));
}

TEST_F(HostDetailViewTest, AnUnknownHostIsAnEmptyEditor) {
    view = std::make_unique<HostDetailView>(stand.services, Uuid::random());
    hands = std::make_unique<EditorHands>(*view);
    EXPECT_FALSE(view->isEnabled());
    EXPECT_FALSE(canSave());
}

TEST_F(HostDetailViewTest, UnsavedEditsStayInTheListForTheNextSave) {
    hands->type("name", QStringLiteral("unsaved"));
    view.reset();
    EXPECT_EQ(host().name, "unsaved");
    open();
    EXPECT_EQ(hands->find<TextField>("name")->text(), QStringLiteral("unsaved"));
    EXPECT_FALSE(canSave());
}

TEST_F(HostDetailViewTest, TurningTheTabsKeepsWhatWasTyped) {
    hands->type("username", QStringLiteral("deploy"));
    hands->choose("tabs", 2);
    EXPECT_TRUE(hands->find<QWidget>("serverAliveInterval")->isVisible());
    EXPECT_FALSE(hands->find<QWidget>("username")->isVisible());
    hands->type("serverAliveInterval", QStringLiteral("7200"));
    hands->choose("tabs", 0);
    EXPECT_EQ(hands->find<TextField>("username")->text(), QStringLiteral("deploy"));
    hands->choose("tabs", 2);
    EXPECT_EQ(hands->find<TextField>("serverAliveInterval")->text(), QLocale().toString(static_cast<qlonglong>(7200)));
    EXPECT_EQ(host().serverAliveInterval, 7200);
}

TEST_F(HostDetailViewTest, TextOfAnyScriptAndLengthSurvives) {
    const QString text = QStringLiteral("größe 日本 🚇 \"<b>&amp;") + QString(100000, QLatin1Char('x'));
    changeElsewhere([&text](SSHHost& host) {
        host.name = text.toStdString();
        host.proxyJump = text.toStdString();
        host.customOptions = "one\r\ntwo\u00a0\nthree\r";
    });
    open();
    const SSHHost before = host();
    auto* name = hands->goTo("name");
    QTest::keyClick(name, Qt::Key_End);
    QTest::keyClick(name, Qt::Key_Y);
    EXPECT_EQ(host().name, text.toStdString() + "y");
    QTest::keyClick(name, Qt::Key_Backspace);
    auto* options = hands->goTo("customOptions");
    QTest::keyClick(options, Qt::Key_Y);
    EXPECT_EQ(host().customOptions, "yone\ntwo\u00a0\nthree\n");
    QTest::keyClick(options, Qt::Key_Backspace);
    EXPECT_EQ(host(), before);
    EXPECT_FALSE(canSave());
    hands->type("hostname", QString::fromUtf8("größe.example"));
    EXPECT_EQ(host().hostname, "größe.example");
}

TEST_F(HostDetailViewTest, LookingAtAHostChangesNothing) {
    changeElsewhere([](SSHHost& host) {
        host.name = "two\nlines";
        host.port = -1;
        host.connectTimeout = 9000000000000000000;
        host.forwardingRules[0].bindPort = 123456789;
        host.forwardingRules[0].targetPort = -7;
    });
    open();
    const SSHHost before = host();
    for (auto* field : view->findChildren<QWidget*>()) {
        hands->goTo(field);
    }
    EXPECT_EQ(host(), before);
    EXPECT_FALSE(canSave());
}

TEST_F(HostDetailViewTest, EveryControlHasAnAccessibleName) {
    const auto controls = view->findChildren<QWidget*>();
    int named = 0;
    for (const auto* control : controls) {
        if ((control->focusPolicy() & Qt::TabFocus) == 0 || control->objectName().startsWith(QStringLiteral("qt_"))) {
            continue;
        }
        const auto* button = qobject_cast<const QAbstractButton*>(control);
        EXPECT_FALSE(control->accessibleName().isEmpty() && (button == nullptr || button->text().isEmpty()))
            << control->objectName().toStdString() << ' ' << control->metaObject()->className();
        ++named;
    }
    EXPECT_GT(named, 20);
}

TEST_F(HostDetailViewTest, TheTabKeyFollowsTheReadingOrder) {
    const auto walk = [this](const char* from, int steps) {
        hands->goTo(from);
        QStringList names;
        for (int step = 0; step < steps; ++step) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            names.append(QApplication::focusWidget()->objectName());
        }
        return names.join(QLatin1Char(' ')).toStdString();
    };
    EXPECT_EQ(walk("name", 1), "tags");
    EXPECT_EQ(walk("hostname", 19),
              "port username proxyJump useSSHConfigAlias enabled type bindAddress bindPort targetAddress targetPort "
              "enabled type bindAddress bindPort pacPatterns plus minus noSessionRequest connectOnStartup");
    EXPECT_EQ(walk("connectOnStartup", 3), "doc-text clipboard connect");
    hands->goTo("plus");
    hands->click("plus");
    hands->settle();
    EXPECT_EQ(walk("pacPatterns", 8), "enabled type bindAddress bindPort targetAddress targetPort plus minus");
}

/// Writes down whether the hosts file held the new text when the keychain was asked.
class WatchingCredentialStore final : public CredentialStore {
public:
    explicit WatchingCredentialStore(std::filesystem::path hosts) : hosts_(std::move(hosts)) {}
    Credential copyMatching(const CredentialKey& /*key*/) override { return {CredentialStatus::notFound, {}}; }
    CredentialStatus update(const CredentialKey& /*key*/, std::string_view secret) override {
        std::ifstream file(hosts_);
        const std::string json{std::istreambuf_iterator<char>(file), {}};
        savedFirst.push_back(json.find("typed.example") != std::string::npos);
        secrets.emplace_back(secret);
        return CredentialStatus::success;
    }
    CredentialStatus add(const CredentialKey& /*key*/, std::string_view /*secret*/) override {
        return CredentialStatus::success;
    }
    CredentialStatus remove(const CredentialKey& /*key*/) override { return CredentialStatus::success; }

    std::vector<bool> savedFirst;
    std::vector<std::string> secrets;

private:
    std::filesystem::path hosts_;
};

TEST_F(HostDetailViewTest, SaveWritesTheListFirstAndThenThePassword) {
    FakeSystem system;
    WatchingCredentialStore keychain(system.home / "share" / "Velmora" / "hosts.json");
    const Platform fake = system.platform();
    TunnelManager manager({.paths = fake.paths,
                           .scheduler = fake.scheduler,
                           .launcher = fake.launcher,
                           .runner = fake.runner,
                           .credentials = keychain,
                           .defaults = fake.defaults,
                           .environment = fake.environment,
                           .pacPort = 0});
    manager.hosts().set({ManagerStand::hostNamed("web")});
    WindowServices services{.manager = manager,
                            .updater = stand.updater,
                            .defaults = stand.defaults,
                            .dialogs = stand.dialogs,
                            .workspace = stand.workspace,
                            .launchAtLogin = stand.launchAtLogin,
                            .commands = stand.commands,
                            .openManagedWindow = {},
                            .teamIdentifier = {}};
    view = std::make_unique<HostDetailView>(services, manager.hosts().get().front().id);
    hands = std::make_unique<EditorHands>(*view);
    hands->show();
    hands->type("hostname", QStringLiteral("typed.example"));
    hands->click("save");
    EXPECT_EQ(keychain.savedFirst, std::vector<bool>{true});
    EXPECT_EQ(keychain.secrets, std::vector<std::string>{""}) << "also of a host that has none";
    view.reset();
}

}  // namespace
}  // namespace velmora
