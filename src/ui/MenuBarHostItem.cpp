#include "ui/MenuBarHostItem.h"

#include "ui/ToolTip.h"

namespace velmora {

MenuBarHostItem::MenuBarHostItem(TunnelManager& manager, const SSHHost& host, StatusDots& dots, MenuText drawnAs)
    : manager_(manager),
      dots_(dots),
      drawnAs_(drawnAs),
      host_(host),
      status_(manager.status(host.id)),
      action_(dots.icon(status_.state), menuLabel(host.name, drawnAs)) {
    action_.setIconVisibleInMenu(true);
    action_.setMenuRole(QAction::NoRole);
    showWords();
    QObject::connect(&action_, &QAction::triggered, &action_, [this] { manager_.toggle(SSHHost(host_)); });
}

void MenuBarHostItem::update(const SSHHost& host, const ConnectionStatus& status) {
    if (host.name != host_.name) {
        action_.setText(menuLabel(host.name, drawnAs_));
    }
    if (host != host_) {
        host_ = host;
    }
    if (status != status_) {
        if (status.state != status_.state) {
            action_.setIcon(dots_.icon(status.state));
        }
        status_ = status;
        showWords();
    }
}

void MenuBarHostItem::showWords() {
    if (drawnAs_ == MenuText::widget) {  // an exported menu has no place for them
        action_.setToolTip(toolTipOf(statusText(status_)));
    }
}

}  // namespace velmora
