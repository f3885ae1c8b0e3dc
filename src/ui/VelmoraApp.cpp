#include "ui/VelmoraApp.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QSessionManager>

#include <algorithm>
#include <utility>

namespace velmora {

namespace {

constexpr std::string_view mainWindowId = "main";

bool isTitledAndVisible(const QWidget* window) {
    return window->isVisible() && (window->windowType() == Qt::Window || window->windowType() == Qt::Dialog);
}

}  // namespace

VelmoraApp::VelmoraApp(TunnelManager& manager, TrayWatcher& tray, ActivationPolicy& policy,
                       std::filesystem::path hostsFile)
    : manager_(manager), policy_(policy), hostsFile_(std::move(hostsFile)) {
    refreshSoon_.setSingleShot(true);
    connect(&refreshSoon_, &QTimer::timeout, this, &VelmoraApp::refresh);
    subscriptions_.push_back(manager_.hosts().observe([this] { refreshSoon_.start(0); }));
    subscriptions_.push_back(manager_.statuses().observe([this] { refreshSoon_.start(0); }));

    connect(qApp, &QCoreApplication::aboutToQuit, this, &VelmoraApp::shutDown);
    // The session is not to bring the program back by itself; that is what "Launch at Login" is for.
    const auto neverRestart = [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); };
    connect(qApp, &QGuiApplication::saveStateRequest, this, neverRestart, Qt::DirectConnection);
    connect(qApp, &QGuiApplication::commitDataRequest, this, neverRestart, Qt::DirectConnection);

    tray.start([this](TrayKind kind) { trayFound(kind); }, [this] { openManagedWindow(mainWindowId); });
}

VelmoraApp::~VelmoraApp() = default;

void VelmoraApp::trayFound(TrayKind kind) {
    const auto openMainWindow = [this] { openManagedWindow(mainWindowId); };
    const auto drawnAs = kind == TrayKind::statusNotifier ? MenuText::exported : MenuText::widget;
    content_ = std::make_unique<MenuBarContent>(
        manager_, drawnAs, MenuBarContent::Actions{.openMainWindow = openMainWindow, .quit = [this] { quit(); }});

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
    if (id != mainWindowId) {
        return;
    }
    policy_.setRegular();
    if (!mainWindow_) {
        mainWindow_ = std::make_unique<HostListWindow>(manager_, hostsFile_, [this] { quit(); });
        mainWindow_->installEventFilter(this);
    }
    if (mainWindow_->isMinimized()) {
        mainWindow_->showNormal();
    }
    mainWindow_->show();
    mainWindow_->raise();
    mainWindow_->activateWindow();
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
    }
}

void VelmoraApp::refresh() {
    if (content_) {
        content_->refresh();
        icon_->refresh();
    }
    if (mainWindow_) {
        mainWindow_->refresh();
    }
}

}  // namespace velmora
