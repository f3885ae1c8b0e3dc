#include "ui/SegmentedControl.h"

#include <QAccessible>
#include <QApplication>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace velmora {
namespace {

class SegmentedControlTest : public testing::Test {
protected:
    void SetUp() override {
        QObject::connect(control, &SegmentedControl::chosen, control, [this](int index) { chosen.push_back(index); });
        auto* column = new QVBoxLayout(&window);
        column->addWidget(before);
        column->addWidget(control);
        column->addWidget(after);
        window.show();
        QApplication::setActiveWindow(&window);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    static void press(Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key); }

    QWidget window;
    QPushButton* before = new QPushButton;
    SegmentedControl* control = new SegmentedControl(
        QStringLiteral("Tabs"), {QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("Three")});
    QPushButton* after = new QPushButton;
    std::vector<int> chosen;
};

TEST_F(SegmentedControlTest, OneIsChosenAtATime) {
    EXPECT_EQ(control->currentIndex(), 0);
    QTest::mouseClick(control->segment(2), Qt::LeftButton, {}, {2, 2});
    EXPECT_EQ(control->currentIndex(), 2);
    EXPECT_FALSE(control->segment(0)->isChecked());
    control->setCurrentIndex(1);
    EXPECT_EQ(control->currentIndex(), 1);
    EXPECT_EQ(chosen, std::vector<int>{2}) << "only what the user chose";
}

TEST_F(SegmentedControlTest, IsOneStopForTheTabKeyAndTheArrowsMoveWithin) {
    before->setFocus();
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), control->segment(0));
    press(Qt::Key_Right);
    EXPECT_EQ(QApplication::focusWidget(), control->segment(1));
    EXPECT_EQ(control->currentIndex(), 1);
    press(Qt::Key_Right);
    press(Qt::Key_Left);
    EXPECT_EQ(chosen, (std::vector<int>{1, 2, 1}));
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), after);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), control->segment(1));
}

TEST_F(SegmentedControlTest, TheTabKeyLeadsToTheCurrentChoiceFromBothSides) {
    after->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), control->segment(0));
    control->setCurrentIndex(1);
    before->setFocus();
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), control->segment(1));
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), after);
}

TEST_F(SegmentedControlTest, IsARowOfRadioButtonsToAssistivePrograms) {
    EXPECT_EQ(control->accessibleName(), QStringLiteral("Tabs"));
    const auto* segment = QAccessible::queryAccessibleInterface(control->segment(1));
    EXPECT_EQ(segment->role(), QAccessible::RadioButton);
    EXPECT_EQ(segment->text(QAccessible::Name), QStringLiteral("Two"));
}

TEST_F(SegmentedControlTest, TheRowDoesNotMoveWithTheChoice) {
    const int width = control->sizeHint().width();
    for (int index = 0; index < 3; ++index) {
        control->setCurrentIndex(index);
        EXPECT_EQ(control->sizeHint().width(), width);
    }
}

}  // namespace
}  // namespace velmora
