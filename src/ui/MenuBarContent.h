#pragma once

#include "manager/TunnelManager.h"
#include "ui/MenuBarHostItem.h"
#include "ui/MenuLabel.h"
#include "ui/StatusLook.h"
#include "update/Updater.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace velmora {

/// The status-bar menu. It follows the manager and the updater when it is told to `refresh`; entries that stay are
/// changed in place. Main thread.
class MenuBarContent final {
    Q_DECLARE_TR_FUNCTIONS(velmora::MenuBarContent)

public:
    struct Actions {
        std::function<void(std::string_view id)> openManagedWindow;
        std::function<void()> quit;
    };

    MenuBarContent(TunnelManager& manager, Updater& updater, MenuText drawnAs, Actions actions);
    MenuBarContent(const MenuBarContent&) = delete;
    MenuBarContent& operator=(const MenuBarContent&) = delete;
    ~MenuBarContent();

    [[nodiscard]] QMenu& menu() { return menu_; }

    /// Takes over what they know now.
    void refresh();

private:
    void addEntries(Actions actions);
    void showUpdate();
    void connectAll();
    void disconnectAll();
    void dropItemsOfMissingHosts();
    void placeItem(std::size_t position, const SSHHost& host);
    [[nodiscard]] QAction* actionAt(std::size_t position);

    TunnelManager& manager_;
    Updater& updater_;
    MenuText drawnAs_;
    StatusDots dots_;
    QMenu menu_;
    QAction* update_ = nullptr;
    QAction* updateEnd_ = nullptr;
    QAction* connectAll_ = nullptr;
    QAction* disconnectAll_ = nullptr;
    QAction* hostsEnd_ = nullptr;
    std::vector<std::unique_ptr<MenuBarHostItem>> items_;
};

}  // namespace velmora
