#include "ui/CaptionLabel.h"
#include "ui/Metrics.h"
#include "ui/QuickExceptionView.h"
#include "ui/WindowStand.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace velmora {
namespace {

class QuickExceptionViewTest : public testing::Test {
protected:
    QuickExceptionViewTest() {
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    }
    ~QuickExceptionViewTest() override { delete window; }

    QLineEdit& text() { return *window->findChild<QLineEdit*>(); }
    QPushButton& button(const char* name) { return *window->findChild<QPushButton*>(QString::fromUtf8(name)); }
    bool isOpen() { return window && window->isVisible(); }
    std::string exceptions() { return stand.manager.proxyExceptions().get(); }

    WindowStand stand;
    QPointer<QuickExceptionView> window = new QuickExceptionView(stand.services);
};

TEST_F(QuickExceptionViewTest, OpensWithTheFocusInTheField) {
    EXPECT_TRUE(text().hasFocus());
    EXPECT_TRUE(text().placeholderText().startsWith(QStringLiteral("e.g. *.")));
    EXPECT_EQ(window->findChild<QLabel*>(QStringLiteral("title"))->text(), QStringLiteral("Add Proxy Exception"));
    EXPECT_EQ(window->findChild<CaptionLabel*>()->text(),
              QStringLiteral("The matching host will bypass the proxy and connect DIRECT."));
    EXPECT_FALSE(button("add").isEnabled());
    EXPECT_TRUE(button("add").isDefault());
}

TEST_F(QuickExceptionViewTest, ReturnAddsTheHostAndCloses) {
    QTest::keyClicks(&text(), QStringLiteral("https://WWW.example/path"));
    EXPECT_TRUE(button("add").isEnabled());
    QTest::keyClick(&text(), Qt::Key_Return);
    EXPECT_EQ(exceptions(), "www.example");
    EXPECT_FALSE(isOpen());
}

TEST_F(QuickExceptionViewTest, TheButtonAddsTheHostAndCloses) {
    QTest::keyClicks(&text(), QStringLiteral("a.example"));
    QTest::mouseClick(&button("add"), Qt::LeftButton);
    EXPECT_EQ(exceptions(), "a.example");
    EXPECT_FALSE(isOpen());
}

TEST_F(QuickExceptionViewTest, OnlySpacesDoNothingAndKeepThePanelOpen) {
    QTest::keyClicks(&text(), QStringLiteral("   "));
    EXPECT_FALSE(button("add").isEnabled());
    QTest::keyClick(&text(), Qt::Key_Return);
    EXPECT_EQ(exceptions(), "");
    EXPECT_TRUE(isOpen());
}

TEST_F(QuickExceptionViewTest, AHostThatIsThereIsNotAddedAgain) {
    stand.manager.setProxyExceptions("a.example");
    QTest::keyClicks(&text(), QStringLiteral("a.example"));
    QTest::keyClick(&text(), Qt::Key_Return);
    EXPECT_EQ(exceptions(), "a.example");
    EXPECT_FALSE(isOpen());
}

TEST_F(QuickExceptionViewTest, EscapeLeaves) {
    QTest::keyClicks(&text(), QStringLiteral("a.example"));
    QTest::keyClick(&text(), Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(exceptions(), "");
}

TEST_F(QuickExceptionViewTest, EscapeLeavesFromAButtonToo) {
    button("fullList").setFocus();
    QTest::keyClick(&button("fullList"), Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
}

TEST_F(QuickExceptionViewTest, CancelLeaves) {
    QTest::keyClicks(&text(), QStringLiteral("a.example"));
    button("cancel").setFocus();
    QTest::keyClick(&button("cancel"), Qt::Key_Return);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(exceptions(), "");
}

TEST_F(QuickExceptionViewTest, TheFullListIsOneButtonAway) {
    QTest::mouseClick(&button("fullList"), Qt::LeftButton);
    EXPECT_EQ(stand.opened, std::vector<std::string>{"exceptions-editor"});
    EXPECT_EQ(button("fullList").text(), QStringLiteral("Edit Full List…"));
}

TEST_F(QuickExceptionViewTest, ShowsItsWholeCaptionInAnyFont) {
    const QFont usual = QApplication::font();
    for (const qreal factor : {1.0, 1.5, 2.0}) {
        QApplication::setFont(metrics::scaled(usual, factor));
        QuickExceptionView panel(stand.services);
        panel.setAttribute(Qt::WA_DeleteOnClose, false);
        panel.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&panel));
        const auto* caption = panel.findChild<CaptionLabel*>();
        EXPECT_GE(caption->height(), caption->heightForWidth(caption->width())) << factor;
    }
    QApplication::setFont(usual);
}

TEST_F(QuickExceptionViewTest, TabGoesInReadingOrder) {
    QTest::keyClicks(&text(), QStringLiteral("a"));
    QStringList order;
    for (int i = 0; i < 5; ++i) {
        order.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(order, (QStringList{QStringLiteral("text"), QStringLiteral("fullList"), QStringLiteral("cancel"),
                                  QStringLiteral("add"), QStringLiteral("text")}));
}

}  // namespace
}  // namespace velmora
