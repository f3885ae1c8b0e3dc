#pragma once

#include "base/Uuid.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

enum class ForwardingType : std::uint8_t { local, remote, dynamic };

/// In the order in which the user sees them.
inline constexpr std::array allForwardingTypes{ForwardingType::local, ForwardingType::remote, ForwardingType::dynamic};

/// "Local", "Remote" or "Dynamic": the text in files and on the screen.
[[nodiscard]] std::string_view rawValue(ForwardingType type);
[[nodiscard]] std::optional<ForwardingType> forwardingTypeFrom(std::string_view rawValue);

/// One port forwarding of a host.
struct ForwardingRule {
    Uuid id = Uuid::random();
    ForwardingType type = ForwardingType::local;
    std::string bindAddress;  ///< empty leaves the address to ssh
    std::int64_t bindPort = 0;
    std::string targetAddress;    ///< Local and Remote only
    std::int64_t targetPort = 0;  ///< Local and Remote only
    bool enabled = true;
    std::string pacPatterns;  ///< Dynamic only: host globs, one per line

    bool operator==(const ForwardingRule&) const = default;

    /// What this rule adds to ssh's command line: nothing, or a flag and its argument. Addresses and ports are passed
    /// as they were typed; ssh refuses what makes no sense.
    [[nodiscard]] std::vector<std::string> sshArguments() const;
};

}  // namespace velmora
