#include "ui/ExceptionsEditorView.h"
#include "ui/FindBar.h"
#include "ui/FindButton.h"
#include "ui/PacEditorView.h"
#include "ui/PacTextEditor.h"
#include "ui/TextFinderSupport.h"
#include "ui/WindowStand.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(TextFinderSupport, FindsTheFirstTextViewDepthFirst) {
    QWidget view;
    auto* left = new QWidget(&view);
    auto* right = new QPlainTextEdit(&view);
    EXPECT_EQ(TextFinderSupport::findTextView(view), right);
    auto* inner = new QWidget(left);
    new QLineEdit(left);
    auto* deep = new QPlainTextEdit(inner);
    EXPECT_EQ(TextFinderSupport::findTextView(view), deep);
}

TEST(TextFinderSupport, FindsNothingWhereThereIsNoText) {
    QWidget view;
    new QLineEdit(new QWidget(&view));
    EXPECT_EQ(TextFinderSupport::findTextView(view), nullptr);
    TextFinderSupport::showFindInterface(view);
}

/// Find works the same in both editors.
class FindBarTest : public testing::TestWithParam<const char*> {
protected:
    ~FindBarTest() override { delete window; }

    void open(const QString& content) {
        stand.manager.setProxyExceptions(content.toStdString());
        stand.manager.pacServer().setContent(content.toStdString());
        if (GetParam() == std::string("pac")) {
            window = new PacEditorView(stand.services);
        } else {
            window = new ExceptionsEditorView(stand.services);
        }
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }
    PacTextEditor& text() { return *window->findChild<PacTextEditor*>(); }
    FindBar& bar() { return *window->findChild<FindBar*>(); }
    QLineEdit& field() { return *bar().findChild<QLineEdit*>(); }
    QString state() { return bar().findChild<QLabel*>(QStringLiteral("findState"))->text(); }
    QString selected() { return text().textCursor().selectedText(); }
    int at() { return text().textCursor().selectionStart(); }
    void pressFind() { QTest::keySequence(window, QKeySequence::Find); }

    WindowStand stand;
    QPointer<ManagedWindow> window;
};

INSTANTIATE_TEST_SUITE_P(Editors, FindBarTest, testing::Values("pac", "exceptions"),
                         [](const auto& editor) { return std::string(editor.param); });

TEST_P(FindBarTest, OpensByShortcutAndEscapeGivesTheTextTheCursorBack) {
    open(QStringLiteral("one two"));
    EXPECT_FALSE(bar().isVisible());
    pressFind();
    EXPECT_TRUE(bar().isVisible());
    EXPECT_TRUE(field().hasFocus());
    QTest::keyClicks(&field(), QStringLiteral("two"));
    QTest::keyClick(&field(), Qt::Key_Escape);
    EXPECT_TRUE(text().hasFocus());
    EXPECT_EQ(selected(), QStringLiteral("two"));
    EXPECT_TRUE(text().extraSelections().isEmpty());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !bar().isVisible(); }));
    EXPECT_FALSE(window->property("dirty").toBool());
}

TEST_P(FindBarTest, OpensByItsButton) {
    open(QStringLiteral("one"));
    QTest::mouseClick(window->findChild<FindButton*>(), Qt::LeftButton);
    EXPECT_TRUE(bar().isOpen());
    EXPECT_TRUE(field().hasFocus());
}

TEST_P(FindBarTest, LooksForWhatIsSelected) {
    open(QStringLiteral("one two one\nthree"));
    QTextCursor cursor(text().document());
    cursor.setPosition(8);
    cursor.setPosition(11, QTextCursor::KeepAnchor);
    text().setTextCursor(cursor);
    pressFind();
    EXPECT_EQ(field().text(), QStringLiteral("one"));
    EXPECT_EQ(field().selectedText(), QStringLiteral("one"));
    EXPECT_EQ(state(), QStringLiteral("2 of 2"));

    cursor.setPosition(14, QTextCursor::KeepAnchor);
    text().setTextCursor(cursor);
    pressFind();
    EXPECT_EQ(field().text(), QStringLiteral("one")) << "more than a line is no pattern";
}

TEST_P(FindBarTest, FindsWhileThePatternIsTyped) {
    open(QStringLiteral("tea\nten\nTENT"));
    pressFind();
    QTest::keyClicks(&field(), QStringLiteral("te"));
    EXPECT_EQ(at(), 0);
    EXPECT_EQ(state(), QStringLiteral("1 of 3"));
    QTest::keyClicks(&field(), QStringLiteral("n"));
    EXPECT_EQ(at(), 4);
    EXPECT_EQ(state(), QStringLiteral("1 of 2"));
    QTest::keyClicks(&field(), QStringLiteral("t"));
    EXPECT_EQ(selected(), QStringLiteral("TENT"));
    EXPECT_EQ(state(), QStringLiteral("1 of 1"));
    QTest::keyClicks(&field(), QStringLiteral("x"));
    EXPECT_EQ(state(), QStringLiteral("Not found"));
    EXPECT_FALSE(bar().findChild<QToolButton*>(QStringLiteral("chevron-down"))->isEnabled());
    field().clear();
    QTest::keyClick(&field(), Qt::Key_A);
    QTest::keyClick(&field(), Qt::Key_Backspace);
    EXPECT_EQ(state(), QString());
    EXPECT_TRUE(field().hasFocus());
}

TEST_P(FindBarTest, GoesToTheNextAndThePreviousAndRoundTheEnd) {
    open(QStringLiteral("ab ab ab"));
    pressFind();
    QTest::keyClicks(&field(), QStringLiteral("ab"));
    EXPECT_EQ(state(), QStringLiteral("1 of 3"));
    QTest::keyClick(&field(), Qt::Key_Return);
    EXPECT_EQ(state(), QStringLiteral("2 of 3"));
    QTest::keyClick(&field(), Qt::Key_F3);
    EXPECT_EQ(at(), 6);
    QTest::keyClick(&field(), Qt::Key_Enter);
    EXPECT_EQ(state(), QStringLiteral("1 of 3"));
    QTest::keyClick(&field(), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(state(), QStringLiteral("3 of 3"));
    QTest::keyClick(&field(), Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(state(), QStringLiteral("2 of 3"));
    QTest::mouseClick(bar().findChild<QToolButton*>(QStringLiteral("chevron-down")), Qt::LeftButton);
    EXPECT_EQ(state(), QStringLiteral("3 of 3"));
    QTest::mouseClick(bar().findChild<QToolButton*>(QStringLiteral("chevron-up")), Qt::LeftButton);
    EXPECT_EQ(state(), QStringLiteral("2 of 3"));
}

TEST_P(FindBarTest, FindsOnAfterItIsClosed) {
    open(QStringLiteral("ab ab ab"));
    pressFind();
    QTest::keyClicks(&field(), QStringLiteral("ab"));
    QTest::keyClick(&field(), Qt::Key_Escape);
    QTest::keyClick(&text(), Qt::Key_F3);
    EXPECT_EQ(at(), 3);
    EXPECT_FALSE(bar().isOpen());
}

TEST_P(FindBarTest, FindNextWithoutAPatternAsksForOne) {
    open(QStringLiteral("ab"));
    QTest::keyClick(&text(), Qt::Key_F3);
    EXPECT_TRUE(bar().isOpen());
    EXPECT_TRUE(field().hasFocus());
}

TEST_P(FindBarTest, EscapeInTheTextClosesItToo) {
    open(QStringLiteral("ab"));
    pressFind();
    text().setFocus();
    QTest::keyClick(&text(), Qt::Key_Escape);
    EXPECT_FALSE(bar().isOpen());
    EXPECT_TRUE(window->isVisible());
}

TEST_P(FindBarTest, CountsAnewWhenTheTextChanges) {
    open(QStringLiteral("ab ab"));
    pressFind();
    QTest::keyClicks(&field(), QStringLiteral("ab"));
    text().setFocus();
    text().moveCursor(QTextCursor::End);
    QTest::keyClicks(&text(), QStringLiteral(" ab"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return state() == QStringLiteral("3 matches"); })) << state().toStdString();
}

TEST_P(FindBarTest, TintsTheMatchesInViewOnly) {
    open(QStringLiteral("match\n").repeated(5000));
    pressFind();
    QTest::keyClicks(&field(), QStringLiteral("match"));
    EXPECT_EQ(state(), QStringLiteral("1 of 5000"));
    const auto tinted = text().extraSelections();
    EXPECT_GT(tinted.size(), 3);
    EXPECT_LT(tinted.size(), 100);
    EXPECT_EQ(tinted.first().cursor.selectedText(), QStringLiteral("match"));
    QTest::keyClick(&field(), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_GT(text().extraSelections().first().cursor.position(), 20000) << "follows the scrolling";
}

TEST_P(FindBarTest, DoesNotHangOnMillionsOfMatches) {
    open(QStringLiteral("aaaaaaaaaaaaaaaaaaa\n").repeated(100'000));
    pressFind();
    QTest::keyClicks(&field(), QStringLiteral("a"));
    EXPECT_EQ(state(), QStringLiteral("1 of 20000+"));
    QTest::keyClick(&field(), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(at(), 1'999'998);
    EXPECT_EQ(state(), QStringLiteral("20000+ matches"));
}

}  // namespace
}  // namespace velmora
