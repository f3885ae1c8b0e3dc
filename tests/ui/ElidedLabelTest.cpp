#include "ui/ElidedLabel.h"

#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

namespace velmora {
namespace {

class ElidedLabelTest : public testing::Test {
protected:
    ElidedLabelTest() {
        label.setFullText(text);
        label.resize(label.sizeHint());
        label.show();
    }

    const QString text = QStringLiteral("/home/anna/Cloud/A folder with a long name/tunnels");
    ElidedLabel label;
};

TEST_F(ElidedLabelTest, ShowsAllWhereThereIsRoom) {
    EXPECT_EQ(label.text(), text);
    EXPECT_EQ(label.toolTip(), QString());
}

TEST_F(ElidedLabelTest, LeavesOutTheMiddleAndSaysAllInTheToolTip) {
    label.resize(label.sizeHint().width() / 2, label.height());
    EXPECT_TRUE(label.text().startsWith(QStringLiteral("/home")));
    EXPECT_TRUE(label.text().endsWith(QStringLiteral("tunnels")));
    EXPECT_LT(label.text().size(), text.size());
    EXPECT_EQ(label.toolTip(), QStringLiteral("<p>%1</p>").arg(text));
    EXPECT_EQ(label.accessibleName(), text);
    label.resize(label.sizeHint());
    EXPECT_EQ(label.text(), text);
    EXPECT_EQ(label.toolTip(), QString());
}

TEST_F(ElidedLabelTest, WhatIsCopiedIsTheWhole) {
    label.resize(label.sizeHint().width() / 2, label.height());
    QGuiApplication::clipboard()->clear();
    QTest::keySequence(&label, QKeySequence::Copy);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), text);
}

TEST_F(ElidedLabelTest, ItsMenuCopiesTheWhole) {
    label.resize(label.sizeHint().width() / 2, label.height());
    QGuiApplication::clipboard()->clear();
    QContextMenuEvent asked(QContextMenuEvent::Mouse, QPoint(1, 1), label.mapToGlobal(QPoint(1, 1)));
    QCoreApplication::sendEvent(&label, &asked);
    auto* menu = label.findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 1);
    menu->actions().constFirst()->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), text);
}

TEST_F(ElidedLabelTest, ALongTextAsksForLittleRoom) {
    label.setFullText(QString(5000, QLatin1Char('x')));
    EXPECT_LT(label.minimumSizeHint().width(), 300);
}

TEST_F(ElidedLabelTest, IsNoMarkup) {
    label.setFullText(QStringLiteral("<b>bold</b> & more"));
    label.resize(label.sizeHint());
    EXPECT_EQ(label.text(), QStringLiteral("<b>bold</b> & more"));
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    label.resize(label.minimumSizeHint());
    EXPECT_EQ(label.toolTip(), QStringLiteral("<p>&lt;b&gt;bold&lt;/b&gt; &amp; more</p>"));
}

TEST_F(ElidedLabelTest, ACaptionIsSmallerAndLosesItsEnd) {
    ElidedLabel caption(Qt::ElideRight, ElidedLabel::Look::caption);
    caption.setFullText(text);
    caption.resize(caption.sizeHint().width() / 2, caption.sizeHint().height());
    caption.show();
    EXPECT_TRUE(caption.text().startsWith(QStringLiteral("/home/anna")));
    EXPECT_FALSE(caption.text().endsWith(QStringLiteral("tunnels")));
    EXPECT_LT(caption.sizeHint().width(), label.sizeHint().width());
}

}  // namespace
}  // namespace velmora
