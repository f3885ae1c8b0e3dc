#include "ui/ExceptionsEditorView.h"
#include "ui/PacTextEditor.h"
#include "ui/WindowStand.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

namespace velmora {
namespace {

class ExceptionsEditorViewTest : public testing::Test {
protected:
    ~ExceptionsEditorViewTest() override { delete window; }

    void open(const std::string& exceptions) {
        stand.manager.setProxyExceptions(exceptions);
        window = new ExceptionsEditorView(stand.services);
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }
    PacTextEditor& text() { return *window->findChild<PacTextEditor*>(); }
    QLineEdit& quickAdd() { return *window->findChild<QLineEdit*>(QStringLiteral("quickAdd")); }
    QString count() { return window->findChild<QLabel*>(QStringLiteral("count"))->text(); }
    void add(const char* pattern) {
        quickAdd().setText(QString::fromUtf8(pattern));
        QTest::keyClick(&quickAdd(), Qt::Key_Return);
    }
    void save() { QTest::mouseClick(window->findChild<QPushButton*>(QStringLiteral("save")), Qt::LeftButton); }

    WindowStand stand;
    QPointer<ExceptionsEditorView> window;
};

TEST_F(ExceptionsEditorViewTest, ShowsWhatIsAddedElsewhereUnlessThereAreEdits) {
    open("a.example");
    stand.manager.addProxyException("b.example");
    EXPECT_EQ(text().toPlainText(), QStringLiteral("a.example\nb.example"));
    EXPECT_FALSE(window->isDirty());
    quickAdd().setText(QStringLiteral("c.example"));
    QTest::keyClick(&quickAdd(), Qt::Key_Return);
    stand.manager.addProxyException("d.example");
    EXPECT_EQ(text().toPlainText(), QStringLiteral("a.example\nb.example\nc.example"));
}

TEST_F(ExceptionsEditorViewTest, SaysWhatALineMayBe) {
    open("");
    EXPECT_EQ(window->findChild<QLabel*>(QStringLiteral("caption"))->text(),
              QStringLiteral("One host pattern per line. Wildcards allowed (e.g. 10.0.*, *.corp). Saved exceptions are "
                             "added to the PAC ahead of all proxy rules."));
}

TEST_F(ExceptionsEditorViewTest, OpensWithTheListAndTheFocusInTheField) {
    open("b.example\nA.example");
    EXPECT_EQ(text().text(), QStringLiteral("b.example\nA.example"));
    EXPECT_FALSE(text().highlight());
    EXPECT_TRUE(quickAdd().hasFocus());
    EXPECT_TRUE(quickAdd().placeholderText().startsWith(QStringLiteral("Add host to bypass proxy (*.")));
    EXPECT_FALSE(window->isDirty());
}

TEST_F(ExceptionsEditorViewTest, AnEmptyListCountsZeroExceptions) {
    open("");
    EXPECT_EQ(count(), QStringLiteral("0 exceptions — matching hosts connect DIRECT"));
}

TEST_F(ExceptionsEditorViewTest, CountsWhatIsInTheText) {
    open("one.example");
    EXPECT_EQ(count(), QStringLiteral("1 exception — matching hosts connect DIRECT"));
    text().setFocus();
    text().moveCursor(QTextCursor::End);
    QTest::keyClick(&text(), Qt::Key_Return);
    QTest::keyClicks(&text(), QStringLiteral("two.example"));
    EXPECT_EQ(count(), QStringLiteral("2 exceptions — matching hosts connect DIRECT"));
    EXPECT_TRUE(window->isDirty());
}

TEST_F(ExceptionsEditorViewTest, QuickAddOfAPatternThatIsThereOnlyClearsTheField) {
    open("a.example\n\n  b.example");
    add("https://A.example:443/path");
    EXPECT_EQ(quickAdd().text(), QString());
    EXPECT_TRUE(quickAdd().hasFocus());
    EXPECT_FALSE(window->isDirty());
    EXPECT_EQ(text().text(), QStringLiteral("a.example\n\n  b.example"));
}

TEST_F(ExceptionsEditorViewTest, QuickAddOfANewPatternRewritesTheTextAsTheParsedListAndTheNewLine) {
    open("  A.example \n\nb.example\n");
    add("C.example");
    EXPECT_EQ(text().text(), QStringLiteral("A.example\nb.example\nc.example"));
    EXPECT_EQ(quickAdd().text(), QString());
    EXPECT_TRUE(quickAdd().hasFocus());
    EXPECT_TRUE(window->isDirty());
    EXPECT_EQ(count(), QStringLiteral("3 exceptions — matching hosts connect DIRECT"));
    EXPECT_EQ(stand.manager.proxyExceptions().get(), "  A.example \n\nb.example\n") << "not saved yet";
}

TEST_F(ExceptionsEditorViewTest, QuickAddByItsButton) {
    open("");
    quickAdd().setText(QStringLiteral("a.example"));
    QTest::mouseClick(window->findChild<QToolButton*>(QStringLiteral("plus-circle-fill")), Qt::LeftButton);
    EXPECT_EQ(text().text(), QStringLiteral("a.example"));
    EXPECT_TRUE(quickAdd().hasFocus());
}

TEST_F(ExceptionsEditorViewTest, QuickAddOfNothingDoesNothing) {
    open("a.example");
    add("   ");
    EXPECT_EQ(quickAdd().text(), QStringLiteral("   "));
    EXPECT_EQ(text().text(), QStringLiteral("a.example"));
    EXPECT_FALSE(window->isDirty());
}

TEST_F(ExceptionsEditorViewTest, SaveStoresTheNormalisedListAndShowsIt) {
    open("");
    text().setFocus();
    text().insertPlainText(QStringLiteral("http://B.example/x\n\na.example\nb.example"));
    save();
    EXPECT_EQ(stand.manager.proxyExceptions().get(), "b.example\na.example");
    EXPECT_EQ(text().text(), QStringLiteral("b.example\na.example"));
    EXPECT_FALSE(window->isDirty());
    EXPECT_EQ(count(), QStringLiteral("2 exceptions — matching hosts connect DIRECT"));
    EXPECT_NE(stand.manager.pacServer().content().find("\"b.example\""), std::string::npos);
}

TEST_F(ExceptionsEditorViewTest, SavesByShortcut) {
    open("");
    add("a.example");
    QTest::keySequence(window, QKeySequence::Save);
    EXPECT_EQ(stand.manager.proxyExceptions().get(), "a.example");
}

TEST_F(ExceptionsEditorViewTest, ClosingDropsEditsThatAreNotSaved) {
    open("a.example");
    add("b.example");
    window->close();
    EXPECT_EQ(stand.manager.proxyExceptions().get(), "a.example");
}

TEST_F(ExceptionsEditorViewTest, TabGoesInReadingOrderAndRound) {
    open("");
    QStringList order;
    for (int i = 0; i < 6; ++i) {
        order.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(order, (QStringList{QStringLiteral("quickAdd"), QStringLiteral("plus-circle-fill"),
                                  QStringLiteral("magnifyingglass"), QStringLiteral("content"), QStringLiteral("save"),
                                  QStringLiteral("quickAdd")}));
}

}  // namespace
}  // namespace velmora
