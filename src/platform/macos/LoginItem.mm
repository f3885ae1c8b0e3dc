#include "platform/macos/LoginItem.h"

#import <ServiceManagement/ServiceManagement.h>

namespace velmora {

bool LoginItem::isEnabled() const {
    if (@available(macOS 13.0, *)) {
        return [[SMAppService mainAppService] status] == SMAppServiceStatusEnabled;
    }
    return false;
}

void LoginItem::set(bool enabled) {
    if (@available(macOS 13.0, *)) {
        SMAppService* service = [SMAppService mainAppService];
        // A failure is silent: the switch keeps what the user chose.
        if (enabled) {
            [service registerAndReturnError:nullptr];
        } else {
            [service unregisterAndReturnError:nullptr];
        }
    }
}

}  // namespace velmora
