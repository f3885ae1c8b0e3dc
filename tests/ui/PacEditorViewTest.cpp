#include "pac/Hosts.h"
#include "pac/PacGenerator.h"
#include "pac/ProxyExceptions.h"
#include "ui/CaptionLabel.h"
#include "ui/FindButton.h"
#include "ui/PacEditorView.h"
#include "ui/PacTextEditor.h"
#include "ui/WindowStand.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace velmora {
namespace {

class PacEditorViewTest : public testing::Test {
protected:
    PacEditorViewTest() {
        stand.setHosts({hostWith("work", {dynamicRule(1080, "*.work.example")})});
        stand.manager.setProxyExceptions("printer.example\n*.corp.example");
        open();
    }
    ~PacEditorViewTest() override { delete window; }

    void open() {
        delete window;
        window = new PacEditorView(stand.services);
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }
    PacTextEditor& text() { return *window->findChild<PacTextEditor*>(); }
    QString mode() { return window->findChild<QLabel*>(QStringLiteral("mode"))->text(); }
    void press(const char* name) {
        QTest::mouseClick(window->findChild<QPushButton*>(QString::fromUtf8(name)), Qt::LeftButton);
    }
    QString served() { return QString::fromStdString(stand.manager.pacServer().content()); }
    QString generated() {
        return QString::fromStdString(PacGenerator::generate(stand.manager.hosts().get(),
                                                             parseExceptions(stand.manager.proxyExceptions().get())));
    }
    void replaceInText(const QString& what, const QString& with) {
        QTextCursor cursor = text().document()->find(what);
        ASSERT_TRUE(cursor.hasSelection());
        text().setTextCursor(cursor);
        text().insertPlainText(with);
    }
    void typeAtEnd(const char* keys) {
        text().moveCursor(QTextCursor::End);
        QTest::keyClicks(&text(), QString::fromUtf8(keys));
    }

    WindowStand stand;
    QPointer<PacEditorView> window;
    const QString automatic = QStringLiteral("Auto-generated from hosts");
    const QString custom = QStringLiteral("Custom (manual edits)");
};

TEST_F(PacEditorViewTest, ShowsWhatIsServedAsItOpens) {
    EXPECT_EQ(text().text(), served());
    EXPECT_TRUE(text().highlight());
    EXPECT_TRUE(text().hasFocus());
    EXPECT_FALSE(window->isDirty());
    EXPECT_EQ(mode(), automatic);
    stand.manager.applyPac("by hand");
    open();
    EXPECT_EQ(text().text(), QStringLiteral("by hand"));
    EXPECT_TRUE(window->isCustom());
    EXPECT_EQ(mode(), custom);
}

TEST_F(PacEditorViewTest, HasItsWords) {
    EXPECT_EQ(window->findChild<CaptionLabel*>()->text(),
              QStringLiteral("Press ⌘F to find. Manual edits stop auto-regeneration until you click "
                             "\"Regenerate from Hosts\"."));
    QStringList buttons;
    for (const auto* button : window->findChildren<QPushButton*>()) {
        buttons.append(button->text());
    }
    EXPECT_EQ(buttons, (QStringList{QStringLiteral("Copy PAC URL"), QStringLiteral("Regenerate from Hosts"),
                                    QStringLiteral("Apply")}));
}

TEST_F(PacEditorViewTest, AnEditMakesItDirty) {
    typeAtEnd("x");
    EXPECT_TRUE(window->isDirty());
    EXPECT_NE(text().text(), served());
    EXPECT_EQ(mode(), automatic) << "nothing is applied yet";
}

TEST_F(PacEditorViewTest, ApplyingTheGeneratedTextUnchangedStaysAutomatic) {
    press("apply");
    EXPECT_EQ(mode(), automatic);
    EXPECT_FALSE(window->isCustom());
    EXPECT_FALSE(stand.manager.pacServer().isCustom());
    EXPECT_EQ(served(), generated());
}

TEST_F(PacEditorViewTest, ApplyingOneOtherCharacterMakesItCustom) {
    typeAtEnd(";");
    press("apply");
    EXPECT_EQ(mode(), custom);
    EXPECT_TRUE(window->isCustom());
    EXPECT_TRUE(stand.manager.pacServer().isCustom());
    EXPECT_FALSE(window->isDirty());
    EXPECT_EQ(served(), text().text());
    stand.setHosts({});
    EXPECT_EQ(served(), text().text()) << "hosts no longer change it";
}

TEST_F(PacEditorViewTest, WhiteSpaceAtTheEndsMakesNoDifference) {
    typeAtEnd("  ");
    QTest::keyClick(&text(), Qt::Key_Return);
    EXPECT_TRUE(window->isDirty());
    press("apply");
    EXPECT_EQ(mode(), automatic);
    EXPECT_FALSE(window->isDirty());
}

TEST_F(PacEditorViewTest, ApplyingWithoutADirectLineRemovesThePatternFromTheExceptions) {
    const auto lines = text().text().split(u'\n');
    const auto line = std::ranges::find_if(lines, [](const auto& l) { return l.contains(QStringLiteral("printer")); });
    ASSERT_NE(line, lines.end());
    replaceInText(*line, QString());
    press("apply");
    EXPECT_EQ(stand.manager.proxyExceptions().get(), "*.corp.example");
    press("regenerate");
    EXPECT_EQ(text().text(), generated());
    EXPECT_FALSE(text().text().contains(QStringLiteral("printer"))) << "regeneration does not bring it back";
}

TEST_F(PacEditorViewTest, ApplyingWithOneMoreDirectLineAddsThePattern) {
    replaceInText(QStringLiteral("\"printer.example\""), QStringLiteral("\"Scanner.example\""));
    press("apply");
    EXPECT_EQ(stand.manager.proxyExceptions().get(), "Scanner.example\n*.corp.example");
    EXPECT_EQ(mode(), automatic) << "it is what the hosts give with that list";
}

TEST_F(PacEditorViewTest, RegenerateDropsTheEdits) {
    typeAtEnd(" // mine");
    press("apply");
    typeAtEnd(" and more");
    press("regenerate");
    EXPECT_EQ(text().text(), generated());
    EXPECT_EQ(served(), generated());
    EXPECT_EQ(mode(), automatic);
    EXPECT_FALSE(window->isDirty());
    text().undo();
    EXPECT_TRUE(text().text().endsWith(QStringLiteral(" // mine and more")));
    EXPECT_TRUE(window->isDirty());
}

TEST_F(PacEditorViewTest, ClosingDropsEditsThatAreNotApplied) {
    const QString before = served();
    typeAtEnd("x");
    window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_TRUE(window.isNull());
    EXPECT_EQ(served(), before);
    open();
    EXPECT_EQ(text().text(), before);
    EXPECT_FALSE(window->isDirty());
}

TEST_F(PacEditorViewTest, KeepsEditsWhenTheServedScriptChanges) {
    typeAtEnd("x");
    const QString edited = text().text();
    stand.setHosts({});
    QApplication::processEvents();
    EXPECT_EQ(text().text(), edited);
    EXPECT_TRUE(window->isDirty());
}

TEST_F(PacEditorViewTest, CopiesTheUrl) {
    press("copyUrl");
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), stand.manager.pacServer().url());
}

TEST_F(PacEditorViewTest, AppliesByShortcut) {
    typeAtEnd(";");
    QTest::keySequence(window, QKeySequence::Save);
    EXPECT_EQ(mode(), custom);
}

TEST_F(PacEditorViewTest, TabGoesInReadingOrder) {
    QStringList order;
    window->findChild<FindButton*>()->setFocus();
    for (int i = 0; i < 5; ++i) {
        order.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(order, (QStringList{QStringLiteral("magnifyingglass"), QStringLiteral("copyUrl"),
                                  QStringLiteral("regenerate"), QStringLiteral("apply"), QStringLiteral("content")}));
}

}  // namespace
}  // namespace velmora
