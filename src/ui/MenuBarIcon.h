#pragma once

#include "manager/TunnelManager.h"
#include "platform/TrayWatcher.h"

#include <QCoreApplication>
#include <QIcon>
#include <QString>
#include <QSystemTrayIcon>

#include <functional>

class QMenu;

namespace velmora {

/// The icon in the status bar: "network" while a host is connecting or connected, otherwise "network-slash". Main
/// thread.
class MenuBarIcon final {
    Q_DECLARE_TR_FUNCTIONS(velmora::MenuBarIcon)

public:
    /// Shows itself at once. A click where the panel does not open the menu by itself calls `activated`.
    MenuBarIcon(TunnelManager& manager, TrayKind kind, QMenu& menu, std::function<void()> activated);
    MenuBarIcon(const MenuBarIcon&) = delete;
    MenuBarIcon& operator=(const MenuBarIcon&) = delete;

    /// Takes over what the manager knows now.
    void refresh();

    [[nodiscard]] const QString& symbol() const { return symbol_; }
    [[nodiscard]] QString toolTip() const { return tray_.toolTip(); }

    /// A drawing of `icons/` for a status bar of this kind.
    [[nodiscard]] static QIcon icon(const QString& symbol, TrayKind kind);

private:
    TunnelManager& manager_;
    TrayKind kind_;
    QString symbol_;
    QSystemTrayIcon tray_;
};

}  // namespace velmora
