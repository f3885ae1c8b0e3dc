#include "ui/AboutView.h"
#include "ui/ContentView.h"
#include "ui/ElidedLabel.h"
#include "ui/ExceptionsEditorView.h"
#include "ui/FindBar.h"
#include "ui/FindButton.h"
#include "ui/HostListView.h"
#include "ui/HostTabsView.h"
#include "ui/IntegerField.h"
#include "ui/NewHostSheet.h"
#include "ui/PacEditorView.h"
#include "ui/QuickExceptionView.h"
#include "ui/SettingsView.h"
#include "ui/Showroom.h"
#include "ui/Translations.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScrollArea>
#include <QSplitterHandle>
#include <QTest>
#include <QTextEdit>

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

namespace velmora {
namespace {

/// What a widget is, for the one who reads a failure.
std::string described(const QWidget& widget) {
    std::string words = widget.metaObject()->className();
    for (const QWidget* at = &widget; at != nullptr; at = at->parentWidget()) {
        words += at->objectName().isEmpty() ? "" : " in " + at->objectName().toStdString();
    }
    for (const char* text : {"text", "title", "currentText"}) {
        words += " \"" + widget.property(text).toString().toStdString() + '"';
    }
    return words;
}

/// What Qt puts together by itself.
bool isQtsOwn(const QWidget& widget) {
    const QWidget* parent = widget.parentWidget();
    return widget.objectName().startsWith(QStringLiteral("qt_")) || qobject_cast<const QLineEdit*>(parent) != nullptr ||
           qobject_cast<const QComboBox*>(parent) != nullptr || qobject_cast<const QMenuBar*>(parent) != nullptr ||
           qobject_cast<const QSplitterHandle*>(&widget) != nullptr;
}

bool isLeftOutOnPurpose(const QLabel& label) {
    return qobject_cast<const ElidedLabel*>(&label) != nullptr;
}

bool isInteractive(const QWidget& widget) {
    return qobject_cast<const QAbstractButton*>(&widget) != nullptr ||
           qobject_cast<const QLineEdit*>(&widget) != nullptr || qobject_cast<const QComboBox*>(&widget) != nullptr ||
           qobject_cast<const QPlainTextEdit*>(&widget) != nullptr ||
           qobject_cast<const QTextEdit*>(&widget) != nullptr ||
           qobject_cast<const QAbstractItemView*>(&widget) != nullptr;
}

/// The widgets that the user sees, without those that Qt puts together by itself.
QWidgetList seenIn(const QWidget& window) {
    QWidgetList seen;
    for (auto* widget : window.findChildren<QWidget*>()) {
        if (widget->isVisible() && widget->window() == &window && !isQtsOwn(*widget)) {
            seen.append(widget);
        }
    }
    return seen;
}

void expectAtLeast(const QWidget& widget, const QSize& needed) {
    EXPECT_GE(widget.width(), needed.width()) << described(widget);
    EXPECT_GE(widget.height(), needed.height()) << described(widget);
}

void expectRoomForText(const QWidget& widget) {
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        if (label->wordWrap()) {
            expectAtLeast(*label, {0, label->heightForWidth(label->width())});
        } else {
            expectAtLeast(*label,
                          isLeftOutOnPurpose(*label) ? QSize(0, label->sizeHint().height()) : label->sizeHint());
        }
    } else if (const auto* group = qobject_cast<const QGroupBox*>(&widget)) {
        EXPECT_GE(group->width(), group->fontMetrics().horizontalAdvance(group->title())) << described(widget);
    } else if (qobject_cast<const QAbstractButton*>(&widget) != nullptr ||
               qobject_cast<const QComboBox*>(&widget) != nullptr ||
               qobject_cast<const IntegerField*>(&widget) != nullptr) {
        expectAtLeast(widget, widget.sizeHint());
    } else if (const auto* field = qobject_cast<const QLineEdit*>(&widget)) {
        constexpr int frameAndMargins = 12;
        const int words =
            field->text().isEmpty() ? field->fontMetrics().horizontalAdvance(field->placeholderText()) : 0;
        expectAtLeast(*field, {words + frameAndMargins, field->sizeHint().height()});
    }
}

void expectTextsWhole(const QWidget& window) {
    for (const QWidget* widget : seenIn(window)) {
        expectRoomForText(*widget);
    }
    for (const auto* menus : window.findChildren<QMenuBar*>()) {
        const auto* more = menus->findChild<QWidget*>(QStringLiteral("qt_menubar_ext_button"));
        EXPECT_TRUE(more == nullptr || !more->isVisible());
    }
}

void expectNoOverlap(const QWidget& window) {
    const QWidgetList seen = seenIn(window);
    for (int first = 0; first < seen.size(); ++first) {
        for (int second = first + 1; second < seen.size(); ++second) {
            const QWidget& one = *seen[first];
            const QWidget& other = *seen[second];
            EXPECT_FALSE(one.parentWidget() == other.parentWidget() && one.geometry().intersects(other.geometry()))
                << described(one) << " and " << described(other);
        }
    }
}

void expectAllInside(const QWidget& window) {
    for (const QWidget* widget : seenIn(window)) {
        const QWidget& parent = *widget->parentWidget();
        const auto* area = qobject_cast<const QScrollArea*>(parent.parentWidget());
        if (area != nullptr && area->widget() == widget) {
            EXPECT_LE(widget->width(), parent.width()) << "scrolls sideways: " << described(*widget);
        } else {
            EXPECT_TRUE(parent.rect().contains(widget->geometry())) << described(*widget);
        }
    }
}

int middle(const QWidget& widget) {
    return widget.mapTo(widget.window(), widget.contentsRect().center()).y();
}

/// What a label names stands beside it, the first line of what has several.
void expectLabelsLevel(const QWidget& window) {
    for (const QWidget* widget : seenIn(window)) {
        const auto* label = qobject_cast<const QLabel*>(widget);
        const QWidget* named = label != nullptr ? label->buddy() : nullptr;
        const auto* table = named != nullptr ? named->findChild<QComboBox*>() : nullptr;
        if (named == nullptr || !named->isVisible() ||
            label->mapTo(&window, label->rect().bottomLeft()).y() < named->mapTo(&window, QPoint()).y()) {
            continue;  // or it stands above, where there is no room beside
        }
        const int unseen = label->fontMetrics().height() / 4;
        if (const auto* text = qobject_cast<const QPlainTextEdit*>(named)) {
            const int line = text->mapTo(&window, text->viewport()->pos() + text->cursorRect().center()).y();
            EXPECT_NEAR(middle(*label), line, unseen) << described(*label);
        } else {
            EXPECT_NEAR(middle(*label), middle(table != nullptr ? *table : *named), unseen) << described(*label);
        }
    }
}

/// Where the Tab key leads, until it leads there again.
std::set<const QWidget*> reachedByTab(QWidget& window) {
    std::set<const QWidget*> reached;
    QWidget* at = QApplication::focusWidget();
    while (at != nullptr && at->window() == &window && reached.insert(at).second) {
        const auto* text = qobject_cast<QPlainTextEdit*>(at);
        const bool takesTab = text != nullptr && !text->tabChangesFocus() && !text->isReadOnly();
        QTest::keyClick(at, Qt::Key_Tab, takesTab ? Qt::ControlModifier : Qt::NoModifier);
        at = QApplication::focusWidget();
    }
    return reached;
}

void expectNamesAndKeys(QWidget& window) {
    const auto reached = reachedByTab(window);
    for (QWidget* widget : seenIn(window)) {
        if (!isInteractive(*widget)) {
            continue;
        }
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << described(*widget);
        const auto* choice = qobject_cast<const QRadioButton*>(widget);
        if (choice != nullptr && !choice->isChecked()) {
            continue;  // Tab leads to the one that is chosen
        }
        EXPECT_NE(widget->focusPolicy() & Qt::TabFocus, 0) << described(*widget);
        if (widget->isEnabled()) {
            EXPECT_TRUE(reached.contains(widget)) << described(*widget);
        }
    }
}

struct Words {
    const char* name;
    double size = 1;  ///< of the type, in usual ones
    const char* language = "en";
};

class LabelsTest : public testing::TestWithParam<Words> {
protected:
    LabelsTest() {
        QFont larger = usual;
        larger.setPointSizeF(usual.pointSizeF() * GetParam().size);
        QApplication::setFont(larger);
        installTranslations(translations, {QString::fromLatin1(GetParam().language)});
        stand.addTheUnusual();
    }
    ~LabelsTest() override { QApplication::setFont(usual); }

    /// At the size that it opens with.
    static void open(QWidget& window) {
        window.show();
        QApplication::setActiveWindow(&window);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        QApplication::processEvents();
    }
    static void check(QWidget& window) {
        QApplication::processEvents();
        // What a form needs goes up to its window one event at a time.
        ASSERT_TRUE(QTest::qWaitFor([&] { return window.width() >= window.minimumSizeHint().width(); }));
        QApplication::processEvents();
        expectTextsWhole(window);
        expectNoOverlap(window);
        expectAllInside(window);
        expectLabelsLevel(window);
        expectNamesAndKeys(window);
    }
    void checkWithFindBar(QWidget& window) {
        window.findChild<FindButton*>()->click();
        auto* bar = window.findChild<FindBar*>();
        const auto* field = window.findChild<QWidget*>(QStringLiteral("find"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return bar->rect().contains(field->parentWidget()->geometry()); }));
        check(window);
    }
    /// Every tab of the editor in this window.
    static void checkTabs(QWidget& window) {
        for (int tab = 0; tab < 3; ++tab) {
            SCOPED_TRACE(tab);
            window.findChild<HostTabsView*>()->setTab(tab);
            check(window);
        }
    }
    void select(QWidget& window, std::size_t host) {
        auto* list = window.findChild<HostListView*>();
        list->setCurrentIndex(list->model()->index(static_cast<int>(host), 0));
    }

    const QFont usual = QApplication::font();
    QObject translations;  ///< they go with it
    Showroom stand;
};

TEST_P(LabelsTest, OfTheMainWindowWithoutASelection) {
    ContentView window(stand.services);
    open(window);
    check(window);
}

TEST_P(LabelsTest, OfTheEditor) {
    ContentView window(stand.services);
    open(window);
    select(window, 0);
    checkTabs(window);
}

TEST_P(LabelsTest, OfAnEditorWithLongNamesAndConflicts) {
    ContentView window(stand.services);
    open(window);
    select(window, stand.unusual());
    checkTabs(window);
}

TEST_P(LabelsTest, OfAnEditorThatAsksForAPassword) {
    auto hosts = stand.manager.hosts().get();
    hosts[0].authMethod = AuthMethod::password;
    stand.setHosts(std::move(hosts));
    ContentView window(stand.services);
    open(window);
    select(window, 0);
    checkTabs(window);
}

TEST_P(LabelsTest, OfTheSheetForANewHost) {
    ContentView window(stand.services);
    open(window);
    NewHostSheet sheet(
        stand.services, [](const SSHHost&) {}, &window);
    open(sheet);
    checkTabs(sheet);
}

TEST_P(LabelsTest, OfTheSettings) {
    SettingsView window(stand.services);
    open(window);
    check(window);
}

TEST_P(LabelsTest, OfThePacEditor) {
    PacEditorView window(stand.services);
    open(window);
    check(window);
    checkWithFindBar(window);
}

TEST_P(LabelsTest, OfTheExceptions) {
    ExceptionsEditorView window(stand.services);
    open(window);
    check(window);
    checkWithFindBar(window);
}

TEST_P(LabelsTest, OfTheQuickException) {
    QuickExceptionView window(stand.services);
    open(window);
    check(window);
}

TEST_P(LabelsTest, OfTheAboutBox) {
    AboutView window(stand.services);
    open(window);
    check(window);
}

INSTANTIATE_TEST_SUITE_P(Type, LabelsTest,
                         testing::Values(Words{.name = "Usual"}, Words{.name = "Larger", .size = 1.5},
                                         Words{.name = "German", .language = "de"}),
                         [](const auto& type) { return type.param.name; });

}  // namespace
}  // namespace velmora
