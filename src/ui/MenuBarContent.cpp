#include "ui/MenuBarContent.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace velmora {

namespace {

QAction* addEntry(QMenu& menu, const QString& text, std::function<void()> chosen) {
    QAction* action = menu.addAction(text);
    action->setMenuRole(QAction::NoRole);
    QObject::connect(action, &QAction::triggered, action, std::move(chosen));
    return action;
}

void setEnabled(QAction& action, bool enabled) {
    if (action.isEnabled() != enabled) {
        action.setEnabled(enabled);
    }
}

}  // namespace

MenuBarContent::MenuBarContent(TunnelManager& manager, MenuText drawnAs, Actions actions)
    : manager_(manager), drawnAs_(drawnAs) {
    menu_.setToolTipsVisible(true);
    connectAll_ = addEntry(menu_, QStringLiteral("Connect All"), [this] { connectAll(); });
    disconnectAll_ = addEntry(menu_, QStringLiteral("Disconnect All"), [this] { disconnectAll(); });
    menu_.addSeparator();
    hostsEnd_ = menu_.addSeparator();
    addEntry(menu_, QStringLiteral("Open Main Window"), std::move(actions.openMainWindow));
    menu_.addSeparator();
    addEntry(menu_, QStringLiteral("Quit Velmora"), std::move(actions.quit));
    refresh();
}

MenuBarContent::~MenuBarContent() = default;

void MenuBarContent::refresh() {
    dropItemsOfMissingHosts();
    bool anyActive = false;
    bool anyIdle = false;
    const auto& hosts = manager_.hosts().get();
    for (std::size_t position = 0; position < hosts.size(); ++position) {
        placeItem(position, hosts[position]);
        const ConnectionStatus status = manager_.status(hosts[position].id);
        items_[position]->update(hosts[position], status);
        (status.isActive() ? anyActive : anyIdle) = true;
    }
    items_.resize(hosts.size());
    setEnabled(*connectAll_, anyIdle);
    setEnabled(*disconnectAll_, anyActive);
    if (hostsEnd_->isVisible() == hosts.empty()) {
        hostsEnd_->setVisible(!hosts.empty());
    }
}

/// First of all, so that the items behind them keep their places. An id may be there more than once.
void MenuBarContent::dropItemsOfMissingHosts() {
    std::unordered_map<Uuid, std::size_t> wanted;
    for (const SSHHost& host : manager_.hosts().get()) {
        ++wanted[host.id];
    }
    std::erase_if(items_, [&wanted](const auto& item) {
        const auto entry = wanted.find(item->id());
        if (entry == wanted.end() || entry->second == 0) {
            return true;
        }
        --entry->second;
        return false;
    });
}

/// Sees to it that the item of this host stands here: it is there, stands further down, or is made.
void MenuBarContent::placeItem(std::size_t position, const SSHHost& host) {
    const auto here = items_.begin() + static_cast<std::ptrdiff_t>(position);
    const auto found = std::find_if(here, items_.end(), [&host](const auto& item) { return item->id() == host.id; });
    if (found == here && found != items_.end()) {
        return;
    }
    QAction* before = actionAt(position);
    if (found == items_.end()) {
        const auto item = items_.insert(here, std::make_unique<MenuBarHostItem>(manager_, host, dots_, drawnAs_));
        menu_.insertAction(before, &(*item)->action());
        return;
    }
    menu_.removeAction(&(*found)->action());
    menu_.insertAction(before, &(*found)->action());
    std::rotate(here, found, found + 1);
}

QAction* MenuBarContent::actionAt(std::size_t position) {
    return position < items_.size() ? &items_[position]->action() : hostsEnd_;
}

void MenuBarContent::connectAll() {
    const auto hosts = manager_.hosts().get();
    for (const SSHHost& host : hosts) {
        if (!manager_.isActive(host)) {
            manager_.connect(host);
        }
    }
}

void MenuBarContent::disconnectAll() {
    const auto hosts = manager_.hosts().get();
    for (const SSHHost& host : hosts) {
        if (manager_.isActive(host)) {
            manager_.disconnect(host);
        }
    }
}

}  // namespace velmora
