#include "ui/MenuBarIcon.h"

#include "ui/SymbolIcon.h"

#include <QMenu>
#include <QStringList>

#include <array>
#include <cstddef>
#include <utility>

// The drawings stand in a static library: without this the linker leaves them out.
static void keepDrawings() {
    Q_INIT_RESOURCE(icons);
}

namespace velmora {

namespace {

/// As far from white as from black, since nobody tells what colour a panel has; the system tints its own menu bar.
QColor tint(TrayKind kind) {
    return kind == TrayKind::menuBar ? QColor(Qt::black) : QColor(0x80, 0x84, 0x8a);
}

using Counts = std::array<int, 4>;

Counts countStates(TunnelManager& manager) {
    Counts counts{};
    for (const SSHHost& host : manager.hosts().get()) {
        ++counts[static_cast<std::size_t>(manager.status(host.id).state)];
    }
    return counts;
}

int count(const Counts& counts, ConnectionStatus::State state) {
    return counts[static_cast<std::size_t>(state)];
}

/// The icon's state in words.
QString summary(const Counts& counts) {
    using State = ConnectionStatus::State;
    QStringList parts;
    if (const int hosts = count(counts, State::connected); hosts > 0) {
        parts << MenuBarIcon::tr("%n connected", nullptr, hosts);
    }
    if (const int hosts = count(counts, State::connecting); hosts > 0) {
        parts << MenuBarIcon::tr("%n connecting", nullptr, hosts);
    }
    if (const int hosts = count(counts, State::error); hosts > 0) {
        parts << MenuBarIcon::tr("%n failed", nullptr, hosts);
    }
    return MenuBarIcon::tr("Velmora: %1")
        .arg(parts.isEmpty() ? MenuBarIcon::tr("not connected") : parts.join(QStringLiteral(", ")));
}

}  // namespace

MenuBarIcon::MenuBarIcon(TunnelManager& manager, TrayKind kind, QMenu& menu, std::function<void()> activated)
    : manager_(manager), kind_(kind) {
    refresh();
    tray_.setContextMenu(&menu);
    QObject::connect(&tray_, &QSystemTrayIcon::activated, &tray_,
                     [activated = std::move(activated)](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger) {
                             activated();
                         }
                     });
    tray_.show();
}

void MenuBarIcon::refresh() {
    const Counts counts = countStates(manager_);
    const bool anyActive =
        count(counts, ConnectionStatus::State::connecting) > 0 || count(counts, ConnectionStatus::State::connected) > 0;
    const QString drawing = anyActive ? QStringLiteral("network") : QStringLiteral("network-slash");
    if (drawing != symbol_) {
        symbol_ = drawing;
        tray_.setIcon(icon(drawing, kind_));
    }
    if (const QString words = summary(counts); words != tray_.toolTip()) {
        tray_.setToolTip(words);
    }
}

QIcon MenuBarIcon::icon(const QString& symbol, TrayKind kind) {
    keepDrawings();
    QIcon drawing = symbolIcon(symbol, tint(kind));
    drawing.setIsMask(kind == TrayKind::menuBar);
    return drawing;
}

}  // namespace velmora
