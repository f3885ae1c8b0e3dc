#pragma once

#include "model/SSHHost.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

/// A local port that two rules would bind.
struct PortConflict {
    std::int64_t port = 0;
    std::string otherHostName;  ///< the host's own name when both rules are its own

    bool operator==(const PortConflict&) const = default;
};

/// The lowest port from 21000 upward that no rule names, enabled or not.
[[nodiscard]] std::int64_t suggestedDynamicPort(const std::vector<SSHHost>& hosts);

/// Which local ports of `host` are bound twice, in the order of its rules. `host` may be an unsaved edit; its stored
/// copy among `hosts` is left out by its id.
[[nodiscard]] std::vector<PortConflict> portConflicts(const SSHHost& host, const std::vector<SSHHost>& hosts);

/// "< 1m", "42m", "3h 5m", "2d 4h".
[[nodiscard]] std::string uptimeText(std::chrono::seconds uptime);

}  // namespace velmora
