#pragma once

#include "manager/TunnelManager.h"
#include "platform/ActivationPolicy.h"
#include "platform/TrayWatcher.h"
#include "ui/HostListWindow.h"
#include "ui/MenuBarContent.h"
#include "ui/MenuBarIcon.h"

#include <QObject>
#include <QTimer>

#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

namespace velmora {

/// The shell around the manager: the status icon with its menu, the windows, and the way out. Lives from launch to
/// quit. Main thread.
class VelmoraApp final : public QObject {
    Q_OBJECT

public:
    /// What is passed in outlives the shell.
    VelmoraApp(TunnelManager& manager, TrayWatcher& tray, ActivationPolicy& policy, std::filesystem::path hostsFile);
    ~VelmoraApp() override;

    /// Opens the window of this name, or brings it forward when it is open. "main" is there; other names do nothing.
    void openManagedWindow(std::string_view id);

    /// Stops every tunnel and ends the program's event loop. However often and from wherever it is called, the tunnels
    /// are stopped once.
    void quit();

    /// Null until there is a place for it.
    [[nodiscard]] MenuBarIcon* icon() { return icon_.get(); }
    [[nodiscard]] MenuBarContent* content() { return content_.get(); }
    /// Null until it is opened for the first time.
    [[nodiscard]] HostListWindow* mainWindow() { return mainWindow_.get(); }

private:
    bool eventFilter(QObject* object, QEvent* event) override;
    void trayFound(TrayKind kind);
    void shutDown();
    void refresh();
    void followWindows();

    TunnelManager& manager_;
    ActivationPolicy& policy_;
    std::filesystem::path hostsFile_;
    bool shutDown_ = false;

    QTimer refreshSoon_;  ///< one run for however many changes a turn of the event loop brings
    std::unique_ptr<MenuBarContent> content_;
    std::unique_ptr<MenuBarIcon> icon_;
    std::unique_ptr<HostListWindow> mainWindow_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace velmora
