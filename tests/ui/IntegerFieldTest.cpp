#include "ui/IntegerField.h"

#include <QApplication>
#include <QClipboard>
#include <QLocale>
#include <QTest>

#include <gtest/gtest.h>

#include <limits>

namespace velmora {
namespace {

class IntegerFieldTest : public testing::Test {
protected:
    ~IntegerFieldTest() override { QLocale::setDefault(before); }

    void open(const IntegerField::Kind& kind, std::int64_t value) {
        field = std::make_unique<IntegerField>(kind);
        field->showValue(value);
        QObject::connect(field.get(), &IntegerField::valueEdited, field.get(), [this](qint64 typed) {
            edits.push_back(typed);
            field->showValue(typed);  // as a host would
        });
        field->show();
        QApplication::setActiveWindow(field.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(field.get()));
        field->setFocus();
        field->end(false);
    }
    void paste(const QString& text) {
        field->selectAll();
        QGuiApplication::clipboard()->setText(text);
        QTest::keyClick(field.get(), Qt::Key_V, Qt::ControlModifier);
    }

    QLocale before;
    std::unique_ptr<IntegerField> field;
    std::vector<std::int64_t> edits;
};

TEST_F(IntegerFieldTest, TakesDigitsAndNothingElse) {
    open(IntegerField::serverPort, 22);
    field->selectAll();
    QTest::keyClicks(field.get(), QStringLiteral("8a0-8. +0"));
    EXPECT_EQ(field->text(), QStringLiteral("8080"));
    EXPECT_EQ(edits.front(), 8);
    EXPECT_EQ(edits.back(), 8080);
}

TEST_F(IntegerFieldTest, TakesWhatIsPasted) {
    open(IntegerField::serverPort, 22);
    paste(QStringLiteral(" 8080\n"));
    EXPECT_EQ(field->text(), QStringLiteral("8080"));
    paste(QString::fromUtf8("٣٤"));
    EXPECT_EQ(edits.back(), 34);
    paste(QStringLiteral("http"));
    EXPECT_EQ(edits.back(), 34);
    EXPECT_EQ(field->text(), QString::fromUtf8("٣٤"));
}

TEST_F(IntegerFieldTest, ClearedItKeepsItsValueUnlessNothingIsAValue) {
    open(IntegerField::serverPort, 22);
    field->selectAll();
    QTest::keyClick(field.get(), Qt::Key_Delete);
    EXPECT_TRUE(edits.empty());
    EXPECT_EQ(field->text(), QString());
    field->clearFocus();
    EXPECT_EQ(field->text(), QStringLiteral("22"));

    open(IntegerField::rulePort, 22);
    field->selectAll();
    QTest::keyClick(field.get(), Qt::Key_Delete);
    EXPECT_EQ(edits, std::vector<std::int64_t>{0});
}

TEST_F(IntegerFieldTest, WhatIsTypedHalfwayStaysUntilTheUserLeaves) {
    QLocale::setDefault(QLocale(QLocale::German));
    open(IntegerField::count, 60);
    field->selectAll();
    QTest::keyClicks(field.get(), QStringLiteral("03600"));
    EXPECT_EQ(field->text(), QStringLiteral("03600"));
    EXPECT_EQ(edits.back(), 3600);
    field->clearFocus();
    EXPECT_EQ(field->text(), QStringLiteral("3.600"));
    field->setFocus();
    field->setCursorPosition(5);
    QTest::keyClick(field.get(), Qt::Key_Backspace);
    EXPECT_EQ(edits.back(), 360);
    EXPECT_EQ(field->cursorPosition(), 4);
}

TEST_F(IntegerFieldTest, PortsAreNotGrouped) {
    QLocale::setDefault(QLocale(QLocale::German));
    open(IntegerField::serverPort, 21000);
    EXPECT_EQ(field->text(), QStringLiteral("21000"));
}

TEST_F(IntegerFieldTest, ZeroIsShownWhereItIsAValue) {
    open(IntegerField::count, 0);
    EXPECT_EQ(field->text(), QStringLiteral("0"));
    open(IntegerField::rulePort, 0);
    EXPECT_EQ(field->text(), QString());
}

TEST_F(IntegerFieldTest, RefusesWhatNoPortCanBe) {
    open(IntegerField::rulePort, 0);
    QTest::keyClicks(field.get(), QStringLiteral("65536"));
    EXPECT_EQ(edits.back(), 6553);
    QTest::keyClick(field.get(), Qt::Key_5);
    EXPECT_EQ(edits.back(), 65535);
}

TEST_F(IntegerFieldTest, ALargerOrNegativeValueThatIsThereStaysAndCanBeTypedBack) {
    open(IntegerField::serverPort, 700000);
    QTest::keyClick(field.get(), Qt::Key_Backspace);
    EXPECT_EQ(edits.back(), 70000);
    QTest::keyClick(field.get(), Qt::Key_0);
    EXPECT_EQ(edits.back(), 700000);

    open(IntegerField::serverPort, -5);
    EXPECT_EQ(field->text(), QStringLiteral("-5"));
    QTest::keyClick(field.get(), Qt::Key_Backspace);
    EXPECT_EQ(field->text(), QStringLiteral("-"));
    QTest::keyClick(field.get(), Qt::Key_7);
    EXPECT_EQ(edits.back(), -7);

    for (const auto extreme : {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
        open(IntegerField::serverPort, extreme);
        EXPECT_EQ(field->text(), QString::number(extreme));
        QTest::keyClick(field.get(), Qt::Key_1);
        EXPECT_EQ(field->text(), QString::number(extreme));
    }
}

TEST_F(IntegerFieldTest, SixDigitsFit) {
    open(IntegerField::serverPort, 888888);
    const int text = field->fontMetrics().horizontalAdvance(field->text());
    EXPECT_GE(field->sizeHint().width(), text + 8);
    EXPECT_LT(field->sizeHint().width(), 2 * text + 8);
}

}  // namespace
}  // namespace velmora
