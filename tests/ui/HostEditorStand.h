#pragma once

#include "ui/HostTabsView.h"
#include "ui/SegmentedControl.h"
#include "ui/WindowStand.h"

#include <QApplication>
#include <QKeyEvent>
#include <QRadioButton>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

namespace velmora {

/// Works the controls of an editor as a user does.
class EditorHands final {
public:
    explicit EditorHands(QWidget& editor) : editor_(editor) {}

    /// Brings the editor to the screen, to where the keyboard goes.
    void show() {
        editor_.show();
        QApplication::setActiveWindow(editor_.window());
        ASSERT_TRUE(QTest::qWaitForWindowActive(editor_.window()));
        settle();
    }
    static void settle() { QApplication::processEvents(); }

    template <typename Widget>
    [[nodiscard]] Widget* find(const char* name) {
        Widget* const found = editor_.findChild<Widget*>(QString::fromUtf8(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    /// Turns to the tab on which the control stands, and goes there.
    QWidget* goTo(QWidget* control) {
        auto* tabs = editor_.findChild<HostTabsView*>();
        for (int tab = 0; tab < 3 && !control->isVisible(); ++tab) {
            tabs->setTab(tab);
        }
        control->setFocus(Qt::TabFocusReason);
        return control;
    }
    QWidget* goTo(const char* name) { return goTo(find<QWidget>(name)); }

    static void selectAll(QWidget* field) { QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier); }
    /// Replaces what is in the field.
    void type(QWidget* field, const QString& text) {
        selectAll(goTo(field));
        if (text.isEmpty()) {
            QTest::keyClick(field, Qt::Key_Delete);
        }
        for (const QChar character : text) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(character));
            QApplication::sendEvent(field, &press);
        }
    }
    void type(const char* name, const QString& text) { type(find<QWidget>(name), text); }
    void click(const char* name) { click(find<QAbstractButton>(name)); }
    void click(QAbstractButton* button) { QTest::mouseClick(button, Qt::LeftButton, {}, {8, button->height() / 2}); }
    void choose(const char* name, int index) { click(find<SegmentedControl>(name)->segment(index)); }

private:
    QWidget& editor_;
};

}  // namespace velmora
