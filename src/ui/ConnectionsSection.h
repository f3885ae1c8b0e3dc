#pragma once

#include "base/Observable.h"
#include "ui/SettingsSection.h"

#include <vector>

namespace velmora {

struct WindowServices;

/// What holds for all connections. Main thread.
class ConnectionsSection final : public SettingsSection {
    Q_OBJECT

public:
    explicit ConnectionsSection(WindowServices& services);

private:
    std::vector<Subscription> subscriptions_;
};

}  // namespace velmora
