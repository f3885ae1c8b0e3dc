#pragma once

#include "manager/TunnelManager.h"
#include "platform/ActivationPolicy.h"
#include "platform/TrayWatcher.h"
#include "ui/AppCommands.h"
#include "ui/ManagedWindows.h"
#include "ui/MenuBarContent.h"
#include "ui/MenuBarIcon.h"
#include "ui/WindowServices.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

/// The shell around the manager: the status icon with its menu, the windows, and the way out. Lives from launch to
/// quit. Main thread.
class VelmoraApp final : public QObject {
    Q_OBJECT

public:
    /// What the shell works with. All of it outlives the shell.
    struct Parts {
        TunnelManager& manager;
        Updater& updater;
        DefaultsStore& defaults;
        Dialogs& dialogs;
        Workspace& workspace;
        LaunchAtLogin& launchAtLogin;
        TrayWatcher& tray;
        ActivationPolicy& policy;
        std::string teamIdentifier;
    };

    explicit VelmoraApp(const Parts& parts);
    ~VelmoraApp() override;

    /// Opens the window of this name, or brings it forward when it is open. A name that no window has does nothing.
    void openManagedWindow(std::string_view id);

    /// Stops every tunnel and ends the program's event loop. However often and from wherever it is called, the tunnels
    /// are stopped once.
    void quit();

    /// Null until there is a place for it.
    [[nodiscard]] MenuBarIcon* icon() { return icon_.get(); }
    [[nodiscard]] MenuBarContent* content() { return content_.get(); }
    [[nodiscard]] AppCommands& commands() { return commands_; }
    /// Null while it is closed.
    [[nodiscard]] ManagedWindow* window(std::string_view id) const { return windows_.find(id); }

private:
    bool eventFilter(QObject* object, QEvent* event) override;
    void trayFound(TrayKind kind);
    void shutDown();
    void refresh();
    void followWindows();
    void showImportResult();

    TunnelManager& manager_;
    Dialogs& dialogs_;
    ActivationPolicy& policy_;
    bool shutDown_ = false;

    QTimer refreshSoon_;  ///< one run for however many changes a turn of the event loop brings
    AppCommands commands_;
    WindowServices services_;
    ManagedWindows windows_{services_};
    std::unique_ptr<MenuBarContent> content_;
    std::unique_ptr<MenuBarIcon> icon_;
    std::vector<Subscription> subscriptions_;
};

}  // namespace velmora
