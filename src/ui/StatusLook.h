#pragma once

#include "model/ConnectionStatus.h"

#include <QColor>
#include <QIcon>
#include <QString>

#include <array>
#include <optional>
#include <string>

namespace velmora {

/// "Not Connected", "Connecting...", "Connected" or "Connected · 2h 14m", "Error: …". On one line.
[[nodiscard]] QString statusText(const ConnectionStatus& status, const std::optional<std::string>& uptime = {});

/// The colour of a host's dot in a window: green, amber, grey or red.
[[nodiscard]] QColor statusColor(ConnectionStatus::State state);

/// The same, as much darker or lighter as it takes to stand out from the background: a contrast of 3:1 at least.
[[nodiscard]] QColor statusColor(ConnectionStatus::State state, const QColor& background);

/// The dots that stand before the hosts in the menu. White ones carry a thin outline, to be seen on white. Each is
/// drawn when it is first shown.
class StatusDots final {
public:
    [[nodiscard]] const QIcon& icon(ConnectionStatus::State state);

private:
    std::array<QIcon, 4> icons_;
};

}  // namespace velmora
