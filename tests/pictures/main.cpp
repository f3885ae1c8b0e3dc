// usage: velmora_pictures FOLDER light|dark [WINDOW]...
//
// Draws every window, or these, into FOLDER as WINDOW-light.png or WINDOW-dark.png. What they show is made up and the
// same each time; nothing of the user's is read or changed.

#include "ui/AboutView.h"
#include "ui/ApplicationStyle.h"
#include "ui/ContentView.h"
#include "ui/ExceptionsEditorView.h"
#include "ui/FindBar.h"
#include "ui/FindButton.h"
#include "ui/HostListView.h"
#include "ui/HostTabsView.h"
#include "ui/MenuBarContent.h"
#include "ui/NewHostSheet.h"
#include "ui/PacEditorView.h"
#include "ui/QuickExceptionView.h"
#include "ui/SettingsView.h"
#include "ui/Showroom.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QPixmap>
#include <QScrollArea>
#include <QStyle>
#include <QTest>

#include <cstdio>
#include <cstdlib>

namespace velmora {
namespace {

/// The port stands in the windows: pictures for people show the usual one. Without the variable it is any free one, so
/// that tests keep away from a Velmora that the developer uses.
std::uint16_t pacPort() {
    return static_cast<std::uint16_t>(qEnvironmentVariableIntValue("VELMORA_PICTURES_PAC_PORT"));
}

QPalette darkPalette() {
    const QColor window(0x32, 0x33, 0x36);
    const QColor text(0xE8, 0xE8, 0xEA);
    const QColor faded(0x80, 0x82, 0x87);
    QPalette colors(QColor(0x45, 0x46, 0x4A), window);
    colors.setColor(QPalette::WindowText, text);
    colors.setColor(QPalette::Base, QColor(0x1E, 0x1F, 0x22));
    colors.setColor(QPalette::AlternateBase, QColor(0x25, 0x26, 0x29));
    colors.setColor(QPalette::Text, text);
    colors.setColor(QPalette::ButtonText, text);
    colors.setColor(QPalette::BrightText, Qt::white);
    colors.setColor(QPalette::PlaceholderText, QColor(0xA0, 0xA2, 0xA8));
    colors.setColor(QPalette::ToolTipBase, QColor(0x3A, 0x3B, 0x3F));
    colors.setColor(QPalette::ToolTipText, text);
    colors.setColor(QPalette::Highlight, QColor(0x2F, 0x6F, 0xD0));
    colors.setColor(QPalette::HighlightedText, Qt::white);
    colors.setColor(QPalette::Link, QColor(0x6C, 0xA8, 0xFF));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        colors.setColor(QPalette::Disabled, role, faded);
    }
    return colors;
}

void require(bool happened, const char* otherwise) {
    if (!happened) {
        std::fprintf(stderr, "%s\n", otherwise);
        std::exit(EXIT_FAILURE);
    }
}

/// Brings the windows to the screen and takes their pictures.
class Photographer final {
public:
    Photographer(const QString& folder, QString look, QStringList wanted)
        : folder_(folder), look_(std::move(look)), wanted_(std::move(wanted)) {}

    template <typename View>
    void take(const QString& name, const std::function<void(View&)>& prepare = {}) {
        if (!wanted_.isEmpty() && !wanted_.contains(name)) {
            return;
        }
        View window(room_.services);
        show(window);
        if (prepare) {
            prepare(window);
        }
        save(window, name);
    }
    void takeSheet(const QString& name) {
        if (!wanted_.isEmpty() && !wanted_.contains(name)) {
            return;
        }
        NewHostSheet sheet(
            room_.services, [](const SSHHost&) {}, nullptr);
        show(sheet);
        save(sheet, name);
    }
    void takeMenu(const QString& name) {
        if (!wanted_.isEmpty() && !wanted_.contains(name)) {
            return;
        }
        MenuBarContent content(room_.manager, room_.updater, MenuText::widget, {});
        content.refresh();
        content.menu().popup({});
        save(content.menu(), name);
        content.menu().close();
    }

private:
    static void show(QWidget& window) {
        window.show();
        QApplication::setActiveWindow(&window);
        require(QTest::qWaitForWindowExposed(&window), "a window did not show");
    }
    void save(QWidget& window, const QString& name) {
        QApplication::processEvents();
        const QString file = QStringLiteral("%1/%2-%3.png").arg(folder_, name, look_);
        require(window.grab().save(file), qUtf8Printable(QStringLiteral("cannot write ") + file));
    }

    QString folder_;
    QString look_;
    QStringList wanted_;
    Showroom room_{pacPort()};
};

void select(QWidget& window, int row) {
    auto* list = window.findChild<HostListView*>();
    list->setCurrentIndex(list->model()->index(row, 0));
}

void find(QWidget& window, const QString& words) {
    window.findChild<FindButton*>()->click();
    const auto* bar = window.findChild<FindBar*>();
    auto* field = window.findChild<QLineEdit*>(QStringLiteral("find"));
    QTest::keyClicks(field, words);
    require(QTest::qWaitFor([&] { return bar->rect().contains(field->parentWidget()->geometry()); }),
            "the find bar did not open");
    QTest::qWait(300);  // the field's button fades in
}

void takeAll(Photographer& photographer) {
    photographer.take<ContentView>(QStringLiteral("main"), [](ContentView& window) {
        window.resize(960, 720);  // with all of the rules
        select(window, 0);
    });
    const std::array<std::pair<QString, int>, 2> tabs{
        {{QStringLiteral("main-connection"), 1}, {QStringLiteral("main-advanced"), 2}}};
    for (const auto& [name, tab] : tabs) {
        photographer.take<ContentView>(name, [tab = tab](ContentView& window) {
            select(window, 0);
            window.findChild<HostTabsView*>()->setTab(tab);
        });
    }
    photographer.take<ContentView>(QStringLiteral("main-no-selection"));
    photographer.takeSheet(QStringLiteral("new-tunnel"));
    photographer.takeMenu(QStringLiteral("menu"));
    photographer.take<SettingsView>(QStringLiteral("settings"), [](SettingsView& window) {
        const auto* scroll = window.findChild<QScrollArea*>();
        window.resize(window.width(), scroll->widget()->sizeHint().height());  // all of it
    });
    photographer.take<PacEditorView>(QStringLiteral("pac-editor"),
                                     [](PacEditorView& window) { find(window, QStringLiteral("socks5")); });
    photographer.take<ExceptionsEditorView>(QStringLiteral("exceptions-editor"));
    photographer.take<QuickExceptionView>(QStringLiteral("quick-exception"), [](QuickExceptionView& window) {
        window.findChild<QLineEdit*>()->setText(QStringLiteral("intranet.example.com"));
    });
    photographer.take<AboutView>(QStringLiteral("about"));
}

int run(QStringList arguments) {
    if (arguments.size() < 3 || (arguments[2] != QStringLiteral("light") && arguments[2] != QStringLiteral("dark"))) {
        std::fputs("usage: velmora_pictures FOLDER light|dark [WINDOW]...\n", stderr);
        return 2;
    }
    QApplication::setStyle(new ApplicationStyle(*qApp));
    QApplication::setFont(QFont(QStringLiteral("Noto Sans"), 10));
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setCursorFlashTime(0);  // the cursor stays
    if (arguments[2] == QStringLiteral("dark")) {
        QPalette colors = darkPalette();
        QApplication::style()->polish(colors);
        QApplication::setPalette(colors);
    }
    Photographer photographer(arguments[1], arguments[2], arguments.mid(3));
    takeAll(photographer);
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace velmora

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    return velmora::run(QApplication::arguments());
}
