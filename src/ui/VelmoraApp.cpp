#include "ui/VelmoraApp.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QPixmapCache>
#include <QSessionManager>

#include <algorithm>
#include <utility>

namespace velmora {

namespace {

bool isTitledAndVisible(const QWidget* window) {
    return window->isVisible() && (window->windowType() == Qt::Window || window->windowType() == Qt::Dialog);
}

}  // namespace

VelmoraApp::VelmoraApp(const Parts& parts)
    : manager_(parts.manager),
      dialogs_(parts.dialogs),
      policy_(parts.policy),
      commands_(parts.manager.hostListAccess(), parts.dialogs, [this] { quit(); }),
      services_{.manager = parts.manager,
                .updater = parts.updater,
                .defaults = parts.defaults,
                .dialogs = parts.dialogs,
                .workspace = parts.workspace,
                .launchAtLogin = parts.launchAtLogin,
                .commands = commands_,
                .openManagedWindow = [this](std::string_view id) { openManagedWindow(id); },
                .teamIdentifier = parts.teamIdentifier} {
    refreshSoon_.setSingleShot(true);
    connect(&refreshSoon_, &QTimer::timeout, this, &VelmoraApp::refresh);
    subscriptions_.push_back(manager_.hosts().observe([this] { refreshSoon_.start(0); }));
    subscriptions_.push_back(manager_.statuses().observe([this] { refreshSoon_.start(0); }));
    subscriptions_.push_back(parts.updater.available().observe([this] { refreshSoon_.start(0); }));
    subscriptions_.push_back(parts.updater.isBusy().observe([this] { refreshSoon_.start(0); }));
    subscriptions_.push_back(commands_.importResult().observe([this] { showImportResult(); }));

    connect(qApp, &QCoreApplication::aboutToQuit, this, &VelmoraApp::shutDown);
    // The session is not to bring the program back by itself; that is what "Launch at Login" is for.
    const auto neverRestart = [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); };
    connect(qApp, &QGuiApplication::saveStateRequest, this, neverRestart, Qt::DirectConnection);
    connect(qApp, &QGuiApplication::commitDataRequest, this, neverRestart, Qt::DirectConnection);

    parts.tray.start([this](TrayKind kind) { trayFound(kind); }, [this] { openManagedWindow(windows::main); });
}

VelmoraApp::~VelmoraApp() = default;

void VelmoraApp::trayFound(TrayKind kind) {
    const auto openMainWindow = [this] { openManagedWindow(windows::main); };
    const auto drawnAs = kind == TrayKind::statusNotifier ? MenuText::exported : MenuText::widget;
    content_ = std::make_unique<MenuBarContent>(
        manager_, services_.updater, drawnAs,
        MenuBarContent::Actions{.openManagedWindow = services_.openManagedWindow, .quit = [this] { quit(); }});

    std::function<void()> activated;
    switch (kind) {
        case TrayKind::menuBar:
            activated = [] {};
            break;  // the system has opened the menu
        case TrayKind::statusNotifier:
            activated = openMainWindow;
            break;
        case TrayKind::embedded:
            activated = [this] { content_->menu().popup(QCursor::pos()); };
            break;
    }
    icon_ = std::make_unique<MenuBarIcon>(manager_, kind, content_->menu(), std::move(activated));
}

void VelmoraApp::openManagedWindow(std::string_view id) {
    if (!ManagedWindows::contains(id)) {
        return;
    }
    policy_.setRegular();
    ManagedWindow& window = windows_.open(id);
    window.removeEventFilter(this);
    window.installEventFilter(this);
    policy_.activate();
}

void VelmoraApp::quit() {
    shutDown();
    QApplication::quit();
}

void VelmoraApp::shutDown() {
    if (!std::exchange(shutDown_, true)) {
        manager_.terminateAllProcesses();
    }
}

bool VelmoraApp::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::Close || event->type() == QEvent::Hide) {
        // One turn later, when the window is gone.
        QTimer::singleShot(0, this, &VelmoraApp::followWindows);
    }
    return QObject::eventFilter(object, event);
}

void VelmoraApp::followWindows() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    if (std::none_of(windows.begin(), windows.end(), isTitledAndVisible)) {
        policy_.setAccessory();
        QPixmapCache::clear();  // it would wake up to let go of what the windows have left
    }
}

void VelmoraApp::refresh() {
    if (content_) {
        content_->refresh();
        icon_->refresh();
    }
}

void VelmoraApp::showImportResult() {
    const auto& result = commands_.importResult().get();
    if (!result) {
        return;
    }
    dialogs_.alert(
        {.message = tr("Import Complete"), .informativeText = QString::fromStdString(importAlertMessage(*result))},
        [this] { commands_.importResult().set({}); });
}

}  // namespace velmora
