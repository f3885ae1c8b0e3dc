#include "ui/ListedHost.h"

#include <algorithm>

namespace velmora {

ListedHost::ListedHost(TunnelManager& manager, const Uuid& id) : manager_(manager) {
    host_.id = id;
    follow();
    subscription_ = manager_.hosts().observe([this] { follow(); });
}

void ListedHost::edit(const Edit& change) {
    SSHHost edited = host_;
    change(edited);
    if (!exists_ || edited == host_) {
        return;  // what changes nothing must not make everybody look
    }
    manager_.hosts().edit([&edited](std::vector<SSHHost>& hosts) {
        const auto place =
            std::find_if(hosts.begin(), hosts.end(), [&edited](const SSHHost& host) { return host.id == edited.id; });
        if (place != hosts.end()) {
            *place = edited;
        }
    });
}

void ListedHost::follow() {
    const SSHHost* const now = manager_.findHost(host_.id);
    const bool same = now != nullptr ? exists_ && *now == host_ : !exists_;
    if (same) {
        return;
    }
    exists_ = now != nullptr;
    if (now != nullptr) {
        host_ = *now;
    }
    Q_EMIT changed();
}

}  // namespace velmora
