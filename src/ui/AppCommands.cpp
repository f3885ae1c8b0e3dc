#include "ui/AppCommands.h"

#include <utility>

namespace velmora {

AppCommands::AppCommands(HostListAccess hosts, Dialogs& dialogs, std::function<void()> quit)
    : hosts_(std::move(hosts)), dialogs_(dialogs), quit_(std::move(quit)) {
    setObjectName(QString::fromLatin1(addTunnelNotification));
}

void AppCommands::importVelmoraFile() {
    if (const auto result = velmora::importVelmoraFile(dialogs_, hosts_)) {
        importResult_.set(result);
    }
}

void AppCommands::importCoreTunnelFile() {
    if (const auto result = velmora::importCoreTunnelFile(dialogs_, hosts_)) {
        importResult_.set(result);
    }
}

void AppCommands::exportTunnels() {
    velmora::exportTunnels(dialogs_, hosts_);
}

}  // namespace velmora
