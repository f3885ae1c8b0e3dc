#include "ui/MenuBarContent.h"

#include "ui/WindowServices.h"

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

void setVisible(QAction& action, bool visible) {
    if (action.isVisible() != visible) {
        action.setVisible(visible);
    }
}

}  // namespace

MenuBarContent::MenuBarContent(TunnelManager& manager, Updater& updater, MenuText drawnAs, Actions actions)
    : manager_(manager), updater_(updater), drawnAs_(drawnAs) {
    menu_.setToolTipsVisible(true);
    addEntries(std::move(actions));
    refresh();
}

MenuBarContent::~MenuBarContent() = default;

void MenuBarContent::addEntries(Actions actions) {
    const auto opens = [open = std::move(actions.openManagedWindow)](std::string_view id) {
        return [open, id] { open(id); };
    };
    update_ = addEntry(menu_, {}, [this] { updater_.install(); });
    updateEnd_ = menu_.addSeparator();
    connectAll_ = addEntry(menu_, tr("Connect All"), [this] { connectAll(); });
    disconnectAll_ = addEntry(menu_, tr("Disconnect All"), [this] { disconnectAll(); });
    menu_.addSeparator();
    hostsEnd_ = menu_.addSeparator();
    addEntry(menu_, tr("Add Proxy Exception…"), opens(windows::quickException));
    menu_.addSeparator();
    addEntry(menu_, tr("Open Main Window"), opens(windows::main));
    addEntry(menu_, tr("Settings…"), opens(windows::settings));
    addEntry(menu_, tr("About Velmora"), opens(windows::about));
    menu_.addSeparator();
    addEntry(menu_, tr("Quit Velmora"), std::move(actions.quit));
}

void MenuBarContent::refresh() {
    showUpdate();
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
    setVisible(*hostsEnd_, !hosts.empty());
}

void MenuBarContent::showUpdate() {
    const auto& manifest = updater_.available().get();
    if (manifest) {
        const QString label = tr("Update to v%1 & Relaunch").arg(QString::fromStdString(manifest->version));
        update_->setText(menuLabel(label.toStdString(), drawnAs_));  // a text that stays the same changes nothing
        setEnabled(*update_, !*updater_.isBusy());
    }
    setVisible(*update_, manifest.has_value());
    setVisible(*updateEnd_, manifest.has_value());
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
