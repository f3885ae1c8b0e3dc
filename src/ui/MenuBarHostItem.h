#pragma once

#include "manager/TunnelManager.h"
#include "ui/MenuLabel.h"
#include "ui/StatusLook.h"

#include <QAction>

#include <string>

namespace velmora {

/// One host's entry of the status-bar menu: a dot in the colour of its status, and its name. Choosing it connects an
/// inactive host and disconnects an active one.
class MenuBarHostItem final {
public:
    MenuBarHostItem(TunnelManager& manager, const SSHHost& host, StatusDots& dots, MenuText drawnAs);
    MenuBarHostItem(const MenuBarHostItem&) = delete;
    MenuBarHostItem& operator=(const MenuBarHostItem&) = delete;

    [[nodiscard]] const Uuid& id() const { return host_.id; }
    [[nodiscard]] QAction& action() { return action_; }

    /// Shows the host as it is now; touches the menu only where something differs.
    void update(const SSHHost& host, const ConnectionStatus& status);

private:
    void showWords();

    TunnelManager& manager_;
    StatusDots& dots_;
    MenuText drawnAs_;
    SSHHost host_;
    ConnectionStatus status_;
    QAction action_;
};

}  // namespace velmora
