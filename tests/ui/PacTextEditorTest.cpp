#include "ui/PacTextEditor.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <ctime>

namespace velmora {
namespace {

using PacHighlighter::Kind;

class PacTextEditorTest : public testing::Test {
protected:
    PacTextEditorTest() {
        editor.resize(500, 300);
        editor.setHighlight(true);
    }

    void show() {
        editor.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&editor));
        editor.setFocus();
    }
    /// The colour that the character at this position is drawn in; none for the palette's.
    [[nodiscard]] QColor colorAt(qsizetype position) const {
        const QTextBlock block = editor.document()->findBlock(static_cast<int>(position));
        const auto inBlock = static_cast<int>(position) - block.position();
        for (const auto& range : block.layout()->formats()) {
            if (inBlock >= range.start && inBlock < range.start + range.length) {
                return range.format.foreground().color();
            }
        }
        return {};
    }
    [[nodiscard]] QColor colorOf(const char* piece) const {
        const auto position = editor.text().indexOf(QString::fromUtf8(piece));
        EXPECT_GE(position, 0) << piece;
        return colorAt(position);
    }
    [[nodiscard]] QColor color(Kind kind) const { return PacColors(editor.palette())[kind]; }
    void select(int anchor, int position) {
        QTextCursor cursor(editor.document());
        cursor.setPosition(anchor);
        cursor.setPosition(position, QTextCursor::KeepAnchor);
        editor.setTextCursor(cursor);
    }

    PacTextEditor editor;
};

// ---- colours ----

TEST_F(PacTextEditorTest, AnEmptyTextHasNothingToColour) {
    editor.setText(QString());
    EXPECT_EQ(editor.text(), QString());
    EXPECT_TRUE(editor.document()->firstBlock().layout()->formats().isEmpty());
}

TEST_F(PacTextEditorTest, AWordInAStringIsOrangeAndInACommentGreen) {
    editor.setText(QStringLiteral("var x = \"a function\"\n// function"));
    EXPECT_EQ(colorOf("var"), color(Kind::keyword));
    EXPECT_EQ(colorAt(editor.text().indexOf(QStringLiteral("function"))), color(Kind::string));
    EXPECT_EQ(colorAt(editor.text().lastIndexOf(QStringLiteral("function"))), color(Kind::comment));
    EXPECT_FALSE(colorOf("x =").isValid());
}

TEST_F(PacTextEditorTest, ALongerWordIsNotBlue) {
    editor.setText(QStringLiteral("shExpMatchX(shExpMatch)"));
    EXPECT_FALSE(colorAt(0).isValid());
    EXPECT_EQ(colorAt(12), color(Kind::builtIn));
}

TEST_F(PacTextEditorTest, ABlockCommentThatIsNotClosedIsNotGreen) {
    editor.setText(QStringLiteral("/* a\nif b"));
    EXPECT_FALSE(colorAt(0).isValid());
    EXPECT_EQ(colorOf("if"), color(Kind::keyword));
}

TEST_F(PacTextEditorTest, ColouringLeavesTextSelectionAndUndoAsTheyAre) {
    editor.setHighlight(false);
    editor.setText(QStringLiteral("if (x) return 'y'; // z"));
    select(9, 3);
    const QSignalSpy textChanged(&editor, &QPlainTextEdit::textChanged);
    const QSignalSpy edited(&editor, &PacTextEditor::edited);
    editor.setHighlight(true);
    EXPECT_EQ(colorOf("return"), color(Kind::keyword));
    EXPECT_EQ(editor.text(), QStringLiteral("if (x) return 'y'; // z"));
    EXPECT_EQ(editor.toPlainText(), editor.text());
    EXPECT_EQ(editor.textCursor().anchor(), 9);
    EXPECT_EQ(editor.textCursor().position(), 3);
    EXPECT_FALSE(editor.document()->isUndoAvailable());
    EXPECT_EQ(textChanged.count() + edited.count(), 0);
}

TEST_F(PacTextEditorTest, ABlockCommentColoursEveryLineBetween) {
    editor.setText(QStringLiteral("one\nif\nthree"));
    select(0, 0);
    QTest::keyClicks(&editor, QStringLiteral("/*"));
    EXPECT_EQ(colorOf("if"), color(Kind::keyword));
    editor.moveCursor(QTextCursor::End);
    QTest::keyClicks(&editor, QStringLiteral("*/"));
    for (const char* piece : {"/*", "one", "if", "three", "*/"}) {
        EXPECT_EQ(colorOf(piece), color(Kind::comment)) << piece;
    }
    QTest::keyClick(&editor, Qt::Key_Backspace);
    EXPECT_EQ(colorOf("if"), color(Kind::keyword));
    EXPECT_FALSE(colorOf("one").isValid());
}

TEST_F(PacTextEditorTest, TypingColoursWhatItMakes) {
    editor.setText(QString());
    QTest::keyClicks(&editor, QStringLiteral("retur"));
    EXPECT_FALSE(colorAt(0).isValid());
    QTest::keyClicks(&editor, QStringLiteral("n"));
    EXPECT_EQ(colorAt(0), color(Kind::keyword));
    QTest::keyClicks(&editor, QStringLiteral("s"));
    EXPECT_FALSE(colorAt(0).isValid());
}

TEST_F(PacTextEditorTest, UndoTakesBackTypingThatWasColoured) {
    editor.setText(QStringLiteral("x "));
    editor.moveCursor(QTextCursor::End);
    QTest::keyClicks(&editor, QStringLiteral("return"));
    editor.undo();
    EXPECT_EQ(editor.text(), QStringLiteral("x "));
    EXPECT_FALSE(editor.document()->isUndoAvailable());
    editor.redo();
    EXPECT_EQ(editor.text(), QStringLiteral("x return"));
    EXPECT_EQ(colorOf("return"), color(Kind::keyword));
}

TEST_F(PacTextEditorTest, FollowsTheLookOfTheDesktop) {
    show();
    editor.setText(QStringLiteral("if 'a' // b"));
    const QColor onLight = colorOf("if");
    const QSignalSpy textChanged(&editor, &QPlainTextEdit::textChanged);
    const QPalette light = QApplication::palette();
    QPalette dark = light;
    dark.setColor(QPalette::Base, QColor(0x1E, 0x1E, 0x1E));
    dark.setColor(QPalette::Text, Qt::white);
    QApplication::setPalette(dark);
    QApplication::processEvents();
    EXPECT_EQ(colorOf("if"), PacColors(dark)[Kind::keyword]);
    EXPECT_EQ(colorOf("// b"), PacColors(dark)[Kind::comment]);
    EXPECT_NE(colorOf("if"), onLight);
    QApplication::setPalette(light);
    QApplication::processEvents();
    EXPECT_EQ(colorOf("if"), onLight);
    EXPECT_EQ(textChanged.count(), 0);
}

TEST_F(PacTextEditorTest, CanBePlain) {
    editor.setText(QStringLiteral("if"));
    editor.setHighlight(false);
    EXPECT_FALSE(colorOf("if").isValid());
    editor.setText(QStringLiteral("if else"));
    EXPECT_FALSE(colorOf("else").isValid());
}

TEST_F(PacTextEditorTest, VeryLongLinesStayPlain) {
    editor.setText(QStringLiteral("if\nreturn ") + QString(PacColoring::longestLine, u'x') + QStringLiteral("\nelse"));
    EXPECT_EQ(colorOf("if"), color(Kind::keyword));
    EXPECT_FALSE(colorOf("return").isValid());
    EXPECT_EQ(colorOf("else"), color(Kind::keyword));
}

TEST_F(PacTextEditorTest, AVeryLongScriptGetsItsNewColoursWhenTheTypingPauses) {
    editor.setText(QStringLiteral("if (x) return 1;\n").repeated(PacColoring::longToType / 17 + 1));
    EXPECT_EQ(colorAt(0), color(Kind::keyword));
    QTest::keyClicks(&editor, QStringLiteral("x"));
    EXPECT_EQ(colorAt(0), color(Kind::keyword));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !colorAt(0).isValid(); }));
    EXPECT_EQ(colorOf("return"), color(Kind::keyword));
}

TEST_F(PacTextEditorTest, AnEnormousScriptStaysPlain) {
    const QString line = QStringLiteral("if") + QString(PacColoring::longestLine / 2, u' ') + u'\n';
    editor.setText(line);
    EXPECT_EQ(colorAt(0), color(Kind::keyword));
    editor.setText(line.repeated(PacColoring::longestScript / line.size() + 1));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !colorAt(0).isValid(); }));
}

// ---- the text ----

TEST_F(PacTextEditorTest, IsPlainMonospacedAndAlwaysHasItsScrollBar) {
    EXPECT_TRUE(QFontInfo(editor.font()).fixedPitch());
    EXPECT_EQ(editor.font().pointSize(), 12);
    EXPECT_EQ(editor.font().weight(), QFont::Normal);
    EXPECT_EQ(editor.verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    EXPECT_TRUE(editor.isUndoRedoEnabled());
}

TEST_F(PacTextEditorTest, PastesPlainText) {
    auto* rich = new QMimeData;
    rich->setHtml(QStringLiteral("<b>return</b>"));
    rich->setText(QStringLiteral("return"));
    QGuiApplication::clipboard()->setMimeData(rich);
    editor.paste();
    EXPECT_EQ(editor.text(), QStringLiteral("return"));
    EXPECT_NE(editor.document()->firstBlock().begin().fragment().charFormat().fontWeight(), QFont::Bold);
}

TEST_F(PacTextEditorTest, GivesBackExactlyWhatItWasGiven) {
    const QString text = QStringLiteral("a\r\nb\u00A0c\u2028d");
    editor.setText(text);
    EXPECT_EQ(editor.text(), text);
    editor.moveCursor(QTextCursor::End);
    QTest::keyClicks(&editor, QStringLiteral("!"));
    EXPECT_EQ(editor.text(), QStringLiteral("a\nb\u00A0c\nd!"));
}

TEST_F(PacTextEditorTest, TellsOfTheUsersEditsOnly) {
    const QSignalSpy edited(&editor, &PacTextEditor::edited);
    editor.setText(QStringLiteral("one"));
    editor.setText(QStringLiteral("two"));
    EXPECT_EQ(edited.count(), 0);
    QTest::keyClicks(&editor, QStringLiteral("x"));
    EXPECT_EQ(edited.count(), 1);
    editor.undo();
    EXPECT_EQ(edited.count(), 2);
}

TEST_F(PacTextEditorTest, KeepsTheSelectionWhenTheTextIsReplaced) {
    editor.setText(QStringLiteral("one two three"));
    select(7, 4);
    editor.setText(QStringLiteral("ONE TWO THREE"));
    EXPECT_EQ(editor.textCursor().anchor(), 7);
    EXPECT_EQ(editor.textCursor().position(), 4);
    EXPECT_EQ(editor.textCursor().selectedText(), QStringLiteral("TWO"));
    select(8, 13);
    editor.setText(QStringLiteral("0123456789"));
    EXPECT_EQ(editor.textCursor().anchor(), 8);
    EXPECT_EQ(editor.textCursor().position(), 10);
    editor.setText(QString());
    EXPECT_EQ(editor.textCursor().position(), 0);
}

TEST_F(PacTextEditorTest, KeepsItsScrollPositionWhenTheTextIsReplaced) {
    show();
    QString text = QStringLiteral("line\n").repeated(200);
    editor.setText(text);
    editor.verticalScrollBar()->setValue(120);
    editor.setText(QStringLiteral("first\n") + text + QStringLiteral("last"));
    EXPECT_EQ(editor.verticalScrollBar()->value(), 120);
}

TEST_F(PacTextEditorTest, AReplacedTextCanBeHadBack) {
    editor.setText(QStringLiteral("by\nhand\n"));
    editor.setText(QStringLiteral("generated\n"));
    EXPECT_EQ(editor.toPlainText(), QStringLiteral("generated\n"));
    editor.undo();
    EXPECT_EQ(editor.text(), QStringLiteral("by\nhand\n"));
    EXPECT_FALSE(editor.document()->isUndoAvailable());
}

TEST_F(PacTextEditorTest, ReplacesWhateverDiffers) {
    const QStringList texts{QString(),
                            QStringLiteral("a"),
                            QStringLiteral("aa"),
                            QStringLiteral("aba"),
                            QStringLiteral("a\nb\na"),
                            QStringLiteral("\n\n"),
                            QStringLiteral("\n"),
                            QStringLiteral("x\ny")};
    editor.setText(QStringLiteral("first"));
    for (const auto& from : texts) {
        for (const auto& to : texts) {
            editor.setText(from);
            editor.setText(to);
            EXPECT_EQ(editor.toPlainText(), to);
        }
    }
}

// ---- keyboard and mouse ----

TEST_F(PacTextEditorTest, ShiftReturnBreaksTheLineAsReturnDoes) {
    QTest::keyClick(&editor, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(editor.document()->blockCount(), 2);
}

TEST_F(PacTextEditorTest, TabWritesATabAndOtherKeysLeave) {
    QWidget window;
    auto* before = new QLineEdit;
    auto* inner = new PacTextEditor;
    auto* after = new QLineEdit;
    auto* column = new QVBoxLayout(&window);
    column->addWidget(before);
    column->addWidget(inner);
    column->addWidget(after);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));

    inner->setFocus();
    QTest::keyClick(inner, Qt::Key_Tab);
    EXPECT_EQ(inner->text(), QStringLiteral("\t"));
    EXPECT_TRUE(inner->hasFocus());
    QTest::keyClick(inner, Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_TRUE(after->hasFocus());
    inner->setFocus();
    QTest::keyClick(inner, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(before->hasFocus());
    inner->setFocus();
    inner->setTabChangesFocus(true);
    QTest::keyClick(inner, Qt::Key_Tab);
    EXPECT_TRUE(after->hasFocus());
    EXPECT_EQ(inner->text(), QStringLiteral("\t"));
}

TEST_F(PacTextEditorTest, LinesStandApart) {
    show();
    editor.setText(QStringLiteral("one\ntwo\nthree"));
    const auto top = [this](int position) {
        QTextCursor cursor(editor.document());
        cursor.setPosition(position);
        return editor.cursorRect(cursor).top();
    };
    const int pitch = top(4) - top(0);
    EXPECT_EQ(top(8) - top(4), pitch);
    EXPECT_NEAR(pitch, 1.3 * QFontInfo(editor.font()).pixelSize(), 1.5);
}

TEST_F(PacTextEditorTest, AClickBetweenLinesFindsTheCharacter) {
    show();
    editor.setText(QStringLiteral("012345\n012345\n012345"));
    QTextCursor cursor(editor.document());
    cursor.setPosition(7 + 3);
    const QRect there = editor.cursorRect(cursor);
    cursor.setPosition(14 + 3);
    const int below = editor.cursorRect(cursor).top();
    for (int y = there.top(); y < below; ++y) {
        QTest::mouseClick(editor.viewport(), Qt::LeftButton, {}, {there.left() + 1, y});
        EXPECT_EQ(editor.textCursor().positionInBlock(), 3) << y - there.top();
    }
}

// ---- size ----

TEST_F(PacTextEditorTest, TakesLargeTextsWithoutHanging) {
    show();
    QString script;
    while (script.size() < 5'000'000) {
        script += QStringLiteral("    if (shExpMatch(host, \"*.corp.example\")) return \"SOCKS5 127.0.0.1:1080\";\n");
    }
    QGuiApplication::clipboard()->setText(script);
    const std::clock_t before = std::clock();
    editor.paste();
    QApplication::processEvents();
    EXPECT_LT(std::clock() - before, 3 * CLOCKS_PER_SEC);  // in a build for debugging
    EXPECT_EQ(editor.text().size(), script.size());
}

}  // namespace
}  // namespace velmora
