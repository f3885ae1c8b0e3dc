#include "ui/AboutView.h"
#include "ui/ApplicationIcon.h"
#include "ui/Changelog.h"
#include "ui/WindowStand.h"

#include <QApplication>
#include <QLabel>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextList>

#include <gtest/gtest.h>

namespace velmora {
namespace {

class AboutViewTest : public testing::Test {
protected:
    QLabel& label(const char* name) { return *window.findChild<QLabel*>(QString::fromLatin1(name)); }
    QTextBrowser& changes() { return *window.findChild<QTextBrowser*>(QStringLiteral("changelog")); }

    WindowStand stand;
    AboutView window{stand.services};
};

TEST_F(AboutViewTest, SaysWhatThisIs) {
    EXPECT_EQ(window.windowTitle(), QStringLiteral("About Velmora"));
    EXPECT_EQ(label("name").text(), QStringLiteral("Velmora"));
    EXPECT_EQ(label("version").text(), QStringLiteral("Version 1.15.0"));
}

TEST_F(AboutViewTest, ListsEveryVersionWithItsDateAndItsChanges) {
    QTextBlock block = changes().document()->firstBlock();
    for (const ChangelogEntry& entry : changelog) {
        EXPECT_EQ(block.text().toStdString(), std::string(entry.version) + "  " + std::string(entry.date));
        EXPECT_EQ(block.textList(), nullptr);
        block = block.next();
        for (const std::string_view change : entry.changes) {
            EXPECT_EQ(block.text().toStdString(), change);
            ASSERT_NE(block.textList(), nullptr) << "a bullet";
            block = block.next();
        }
    }
    EXPECT_FALSE(block.isValid());
}

TEST_F(AboutViewTest, TheListScrollsAndBeginsWithTheNewest) {
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_GT(changes().verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(changes().verticalScrollBar()->value(), 0);
    EXPECT_EQ(changes().horizontalScrollBar()->maximum(), 0);
    EXPECT_TRUE(changes().isReadOnly());
}

TEST_F(AboutViewTest, StandsOnTheColourOfTheWindowAndFollowsIt) {
    EXPECT_EQ(changes().palette().color(QPalette::Base), window.palette().color(QPalette::Window));
    QPalette dark = window.palette();
    dark.setColor(QPalette::Window, Qt::black);
    dark.setColor(QPalette::WindowText, Qt::white);
    window.setPalette(dark);
    EXPECT_EQ(changes().palette().color(QPalette::Base), QColor(Qt::black));
    EXPECT_EQ(changes().palette().color(QPalette::Text), QColor(Qt::white));
}

TEST_F(AboutViewTest, EscapeClosesIt) {
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.show();
    QTest::keyClick(&changes(), Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
}

TEST(ApplicationIconTest, IsDrawnSharpAtEverySize) {
    const QIcon icon = applicationIcon();
    for (const int side : {16, 48, 96, 192, 512}) {
        const QImage image = icon.pixmap(QSize(side, side)).toImage();
        ASSERT_EQ(image.size(), QSize(side, side));
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << side;
        EXPECT_EQ(image.pixelColor(side / 2, side * 7 / 8).alpha(), 255) << side;
        EXPECT_GT(image.pixelColor(side / 2, side * 7 / 8).blue(), 100) << side;
    }
}

}  // namespace
}  // namespace velmora
