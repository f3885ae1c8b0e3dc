#pragma once

#include "manager/TunnelManager.h"
#include "ui/MenuBarHostItem.h"
#include "ui/MenuLabel.h"
#include "ui/StatusLook.h"

#include <QAction>
#include <QMenu>

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace velmora {

/// The status-bar menu. It follows the manager when it is told to `refresh`; entries that stay are changed in place.
/// Main thread.
class MenuBarContent final {
public:
    struct Actions {
        std::function<void()> openMainWindow;
        std::function<void()> quit;
    };

    MenuBarContent(TunnelManager& manager, MenuText drawnAs, Actions actions);
    MenuBarContent(const MenuBarContent&) = delete;
    MenuBarContent& operator=(const MenuBarContent&) = delete;
    ~MenuBarContent();

    [[nodiscard]] QMenu& menu() { return menu_; }

    /// Takes over what the manager knows now.
    void refresh();

private:
    void connectAll();
    void disconnectAll();
    void dropItemsOfMissingHosts();
    void placeItem(std::size_t position, const SSHHost& host);
    [[nodiscard]] QAction* actionAt(std::size_t position);

    TunnelManager& manager_;
    MenuText drawnAs_;
    StatusDots dots_;
    QMenu menu_;
    QAction* connectAll_;
    QAction* disconnectAll_;
    QAction* hostsEnd_;
    std::vector<std::unique_ptr<MenuBarHostItem>> items_;
};

}  // namespace velmora
