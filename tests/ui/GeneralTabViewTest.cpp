#include "ui/CaptionLabel.h"
#include "ui/ForwardingRuleRow.h"
#include "ui/GeneralTabView.h"
#include "ui/HostDetailView.h"
#include "ui/HostEditorStand.h"
#include "ui/IntegerField.h"
#include "ui/LegendDot.h"
#include "ui/LinesField.h"
#include "ui/WarningLine.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QScrollArea>
#include <QToolButton>

namespace velmora {
namespace {

ForwardingRule ruleOn(std::int64_t port, ForwardingType type = ForwardingType::local) {
    ForwardingRule rule;
    rule.type = type;
    rule.bindPort = port;
    return rule;
}

class GeneralTabViewTest : public testing::Test {
protected:
    void SetUp() override { openWith({}); }
    void openWith(std::vector<ForwardingRule> rules) {
        SSHHost host = ManagerStand::hostNamed("web");
        host.forwardingRules = std::move(rules);
        stand.setHosts({host});
        view = std::make_unique<HostDetailView>(stand.services, host.id);
        hands = std::make_unique<EditorHands>(*view);
        view->resize(640, 900);
        hands->show();
    }
    void editElsewhere(const std::function<void(std::vector<SSHHost>&)>& change) {
        auto hosts = stand.manager.hosts().get();
        change(hosts);
        stand.manager.hosts().set(std::move(hosts));
        hands->settle();
    }
    std::vector<ForwardingRule> rules() { return stand.host(0).forwardingRules; }
    ForwardingRuleRow& row(std::size_t place) {
        return *view->findChild<ForwardingTable*>()->row(rules().at(place).id);
    }
    template <typename Widget>
    Widget& in(std::size_t place, const char* name) {
        return *row(place).findChild<Widget*>(QString::fromUtf8(name));
    }
    void setType(std::size_t place, ForwardingType type) {
        auto* picker = row(place).typePicker();
        while (picker->currentIndex() != static_cast<int>(type)) {
            QTest::keyClick(picker, picker->currentIndex() < static_cast<int>(type) ? Qt::Key_Down : Qt::Key_Up);
        }
    }
    std::vector<std::string> warnings() {
        hands->settle();
        std::vector<std::string> texts;
        for (const auto* line : view->findChildren<WarningLine*>()) {
            texts.push_back(line->text().toStdString());
        }
        return texts;
    }
    bool hasLabel(const QString& text) {
        const auto labels = view->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [&text](const QLabel* label) { return label->text() == text; });
    }

    WindowStand stand;
    std::unique_ptr<HostDetailView> view;
    std::unique_ptr<EditorHands> hands;
};

TEST_F(GeneralTabViewTest, ItsTexts) {
    for (const char* text : {"Host", "User", "Jump Host", "Forwarding", "Session",
                             "Passed as -J to ssh. Leave empty for direct connection.",
                             "Pass host as-is to SSH — port, user, identity, ProxyJump, etc. come from ~/.ssh/config",
                             "Corresponds to ssh command option -N, this is useful for just forwarding ports.",
                             "No forwarding rules — click + to add", "This Mac", "Remote Side", "Target Host"}) {
        EXPECT_TRUE(hasLabel(QString::fromUtf8(text))) << text;
    }
    EXPECT_EQ(hands->find<TextField>("username")->placeholderText(), QStringLiteral("Login name"));
    EXPECT_EQ(hands->find<QCheckBox>("useSSHConfigAlias")->text(), QStringLiteral("Use SSH config alias"));
    EXPECT_EQ(hands->find<QCheckBox>("noSessionRequest")->text(),
              QStringLiteral("Do not request session on the remote system (recommend)"));
    EXPECT_EQ(hands->find<QCheckBox>("connectOnStartup")->text(), QStringLiteral("Connect on startup"));
}

TEST_F(GeneralTabViewTest, ThePlaceholderOfTheHostFollowsTheAlias) {
    const auto* hostname = hands->find<TextField>("hostname");
    EXPECT_EQ(hostname->placeholderText(), QStringLiteral("IP address or hostname"));
    hands->click("useSSHConfigAlias");
    EXPECT_EQ(hostname->placeholderText(), QStringLiteral("SSH config alias, e.g. f"));
    hands->click("useSSHConfigAlias");
    EXPECT_EQ(hostname->placeholderText(), QStringLiteral("IP address or hostname"));
}

TEST_F(GeneralTabViewTest, PlusAppendsAnEmptyLocalRuleAndSelectsIt) {
    hands->click("plus");
    hands->click("plus");
    ASSERT_EQ(rules().size(), 2U);
    EXPECT_NE(rules()[0].id, rules()[1].id);
    ForwardingRule expected;
    expected.id = rules()[1].id;
    EXPECT_EQ(rules()[1], expected);
    EXPECT_FALSE(row(0).isSelected());
    EXPECT_TRUE(row(1).isSelected());
    EXPECT_FALSE(hands->find<QLabel>("noRules")->isVisible());
    EXPECT_EQ(in<TextField>(1, "bindPort").text(), QString()) << "0 is none";
}

TEST_F(GeneralTabViewTest, MinusRemovesTheSelectedRuleAndNothingWithoutOne) {
    openWith({ruleOn(1), ruleOn(2), ruleOn(3)});
    hands->click("minus");
    EXPECT_EQ(rules().size(), 3U);
    QTest::mouseClick(&row(1), Qt::LeftButton, {}, {1, 1});
    EXPECT_TRUE(row(1).isSelected());
    hands->click("minus");
    ASSERT_EQ(rules().size(), 2U);
    EXPECT_EQ(rules()[0].bindPort, 1);
    EXPECT_EQ(rules()[1].bindPort, 3);
    hands->click("minus");
    EXPECT_EQ(rules().size(), 2U) << "nothing is selected any more";
}

TEST_F(GeneralTabViewTest, MinusRemovesTheFirstOfTwoRulesWithOneId) {
    ForwardingRule twin = ruleOn(1);
    ForwardingRule other = twin;
    other.bindPort = 2;
    openWith({twin, other});
    hands->type(&in<TextField>(0, "targetAddress"), QStringLiteral("x"));
    hands->click("minus");
    ASSERT_EQ(rules().size(), 1U);
    EXPECT_EQ(rules()[0].bindPort, 2);
}

TEST_F(GeneralTabViewTest, AnEditOfTwinsGoesToTheRowThatWasEdited) {
    ForwardingRule twin = ruleOn(1);
    openWith({twin, twin});
    const auto fields = view->findChildren<TextField*>(QStringLiteral("targetAddress"));
    ASSERT_EQ(fields.size(), 2);
    hands->type(fields[1], QStringLiteral("x"));
    EXPECT_EQ(rules()[0].targetAddress, "");
    EXPECT_EQ(rules()[1].targetAddress, "x");
}

TEST_F(GeneralTabViewTest, TheFocusSelectsARow) {
    openWith({ruleOn(1), ruleOn(2, ForwardingType::dynamic)});
    in<QWidget>(0, "bindPort").setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(row(0).isSelected());
    hands->find<LinesField>("pacPatterns")->setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(row(1).isSelected());
    EXPECT_FALSE(row(0).isSelected());
    QTest::mouseClick(&in<QWidget>(0, "enabled"), Qt::LeftButton);
    EXPECT_TRUE(row(0).isSelected());
}

TEST_F(GeneralTabViewTest, TheSelectedRowHasABackgroundAndTheOthersNone) {
    openWith({ruleOn(1), ruleOn(2)});
    const QColor plain = row(0).grab().toImage().pixelColor(2, row(0).height() / 2);
    QTest::mouseClick(&row(1), Qt::LeftButton, {}, {1, 1});
    EXPECT_EQ(row(0).grab().toImage().pixelColor(2, row(0).height() / 2), plain);
    EXPECT_NE(row(1).grab().toImage().pixelColor(2, row(1).height() / 2), plain);
}

TEST_F(GeneralTabViewTest, ARuleJustAddedBecomesDynamicWithLocalhostAndTheNextSuggestedPort) {
    openWith({ruleOn(21000)});
    hands->click("plus");
    setType(1, ForwardingType::dynamic);
    EXPECT_EQ(rules()[1].type, ForwardingType::dynamic);
    EXPECT_EQ(rules()[1].bindAddress, "localhost");
    EXPECT_EQ(rules()[1].bindPort, 21001);
    EXPECT_EQ(in<TextField>(1, "bindAddress").text(), QStringLiteral("localhost"));
    EXPECT_EQ(in<TextField>(1, "bindPort").text(), QStringLiteral("21001"));
}

TEST_F(GeneralTabViewTest, ARuleOn8080BecomesDynamicAndKeepsIts8080) {
    openWith({ruleOn(8080)});
    setType(0, ForwardingType::dynamic);
    EXPECT_EQ(rules()[0].bindPort, 8080);
    EXPECT_EQ(rules()[0].bindAddress, "");
}

TEST_F(GeneralTabViewTest, ARuleThatIsDynamicWithoutAPortKeepsThat) {
    openWith({ruleOn(0, ForwardingType::dynamic)});
    Q_EMIT row(0).typePicker()->activated(static_cast<int>(ForwardingType::dynamic));
    EXPECT_EQ(rules()[0].bindPort, 0);
}

TEST_F(GeneralTabViewTest, TwoRulesOnOnePortAndAClashWithAnotherHostAreSaid) {
    openWith({ruleOn(8080), ruleOn(8080)});
    EXPECT_EQ(warnings(), std::vector<std::string>{"Port 8080 is used by two rules on this host"});
    editElsewhere([](std::vector<SSHHost>& hosts) {
        SSHHost other = ManagerStand::hostNamed("db");
        other.forwardingRules = {ruleOn(9000)};
        hosts.push_back(other);
    });
    hands->type(&in<TextField>(0, "bindPort"), QStringLiteral("9000"));
    EXPECT_EQ(warnings(), std::vector<std::string>{"Port 9000 conflicts with \"db\""});
    hands->type(&in<TextField>(0, "bindPort"), QStringLiteral("12345"));
    EXPECT_TRUE(warnings().empty());
    EXPECT_FALSE(hands->find<QWidget>("conflicts")->isVisible());
}

TEST_F(GeneralTabViewTest, ANameWithAPlaceholderInItIsSaidAsItIs) {
    openWith({ruleOn(9000)});
    editElsewhere([](std::vector<SSHHost>& hosts) {
        SSHHost other = ManagerStand::hostNamed("<b>%1%2");
        other.forwardingRules = {ruleOn(9000)};
        hosts.push_back(other);
    });
    EXPECT_EQ(warnings(), std::vector<std::string>{"Port 9000 conflicts with \"<b>%1%2\""});
}

TEST_F(GeneralTabViewTest, TheColoursTellWhereEachPortLives) {
    openWith({ruleOn(1), ruleOn(2, ForwardingType::remote), ruleOn(3, ForwardingType::dynamic)});
    EXPECT_EQ(legend::bindGreen, QColor::fromRgbF(0.25F, 0.72F, 0.30F));
    EXPECT_EQ(legend::remoteSide, QColor::fromRgbF(0.92F, 0.72F, 0.22F));
    EXPECT_EQ(legend::targetBlue, QColor::fromRgbF(0.28F, 0.55F, 0.88F));
    const std::array<QColor, 3> bindSides{legend::bindGreen, legend::remoteSide, legend::bindGreen};
    for (std::size_t place = 0; place < bindSides.size(); ++place) {
        EXPECT_EQ(in<TextField>(place, "bindAddress").underline(), bindSides.at(place));
        EXPECT_EQ(in<TextField>(place, "bindPort").underline(), bindSides.at(place));
        EXPECT_EQ(in<TextField>(place, "targetPort").underline(), legend::targetBlue);
    }
    auto& port = in<TextField>(0, "bindPort");
    EXPECT_EQ(port.grab().toImage().pixelColor(port.width() / 2, port.height() - 2).rgb(), legend::bindGreen.rgb());
    const auto dots = view->findChildren<LegendDot*>();
    EXPECT_EQ(dots.size(), 3);
}

TEST_F(GeneralTabViewTest, TheColumnsOfAllRowsStandInLine) {
    openWith({ruleOn(1), ruleOn(65535, ForwardingType::remote), ruleOn(3, ForwardingType::dynamic)});
    for (const char* name : {"enabled", "type", "bindAddress", "bindPort"}) {
        const int left = in<QWidget>(0, name).x();
        EXPECT_EQ(in<QWidget>(1, name).x(), left) << name;
        EXPECT_EQ(in<QWidget>(2, name).x(), left) << name;
    }
    EXPECT_EQ(in<QWidget>(0, "targetPort").x(), in<QWidget>(1, "targetPort").x());
    EXPECT_FALSE(in<QWidget>(2, "targetAddress").isVisible());
    EXPECT_FALSE(in<QWidget>(2, "targetPort").isVisible());
}

TEST_F(GeneralTabViewTest, OnlyDynamicRulesHavePatterns) {
    openWith({ruleOn(1080)});
    EXPECT_EQ(view->findChild<LinesField*>(QStringLiteral("pacPatterns")), nullptr);
    setType(0, ForwardingType::dynamic);
    auto* patterns = hands->find<LinesField>("pacPatterns");
    EXPECT_TRUE(patterns->isVisible());
    EXPECT_TRUE(patterns->placeholderText().startsWith(QStringLiteral("one host glob per line, e.g. *.")));
    EXPECT_EQ(patterns->font().pointSize(), 11);
    patterns->setFocus();
    QTest::keyClicks(patterns, QStringLiteral("a.com"));
    QTest::keyClick(patterns, Qt::Key_Return);
    QTest::keyClicks(patterns, QStringLiteral("*.b.com"));
    EXPECT_EQ(rules()[0].pacPatterns, "a.com\n*.b.com");
    setType(0, ForwardingType::remote);
    EXPECT_FALSE(patterns->isVisible());
    EXPECT_EQ(rules()[0].pacPatterns, "a.com\n*.b.com");
}

TEST_F(GeneralTabViewTest, RowsComeAndGoInPlace) {
    openWith({ruleOn(1), ruleOn(2), ruleOn(3)});
    auto* port = &in<TextField>(1, "bindPort");
    hands->type(port, QStringLiteral("22"));
    editElsewhere([](std::vector<SSHHost>& hosts) {
        auto& rules = hosts[0].forwardingRules;
        rules.erase(rules.begin());
        rules.insert(rules.begin() + 1, ruleOn(77));
        rules.push_back(ruleOn(99));
    });
    EXPECT_EQ(QApplication::focusWidget(), port);
    QTest::keyClick(port, Qt::Key_3);
    ASSERT_EQ(rules().size(), 4U);
    EXPECT_EQ(rules()[0].bindPort, 223);
    EXPECT_EQ(in<TextField>(1, "bindPort").text(), QStringLiteral("77"));
    EXPECT_LT(row(0).mapTo(view.get(), QPoint()).y(), row(1).mapTo(view.get(), QPoint()).y());
    EXPECT_LT(row(2).mapTo(view.get(), QPoint()).y(), row(3).mapTo(view.get(), QPoint()).y());
}

TEST_F(GeneralTabViewTest, FiftyRulesScrollAndANewOneIsShown) {
    std::vector<ForwardingRule> fifty;
    for (int port = 1; port <= 50; ++port) {
        fifty.push_back(ruleOn(port, port % 5 == 0 ? ForwardingType::dynamic : ForwardingType::local));
    }
    openWith(fifty);
    hands->click("plus");
    hands->settle();
    hands->settle();
    auto& last = row(50);
    EXPECT_FALSE(last.visibleRegion().isEmpty());
    EXPECT_TRUE(last.isAncestorOf(QApplication::focusWidget()));
    EXPECT_EQ(view->height(), 900);
}

TEST_F(GeneralTabViewTest, TheWheelDoesNotChangeATypeOnItsWay) {
    openWith({ruleOn(1)});
    auto* picker = row(0).typePicker();
    QWheelEvent wheel(QPointF(5, 5), picker->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(picker, &wheel);
    EXPECT_EQ(rules()[0].type, ForwardingType::local);
}

}  // namespace
}  // namespace velmora
