#pragma once

#include "base/Uuid.h"
#include "model/ForwardingRule.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

enum class AuthMethod : std::uint8_t { key, password };

/// In the order in which the user sees them.
inline constexpr std::array allAuthMethods{AuthMethod::key, AuthMethod::password};

/// "SSH Key" or "Password": the text in files and on the screen.
[[nodiscard]] std::string_view rawValue(AuthMethod method);
[[nodiscard]] std::optional<AuthMethod> authMethodFrom(std::string_view rawValue);

/// One tunnel as the user described it: where to connect, how to authenticate, what to forward.
struct SSHHost {
    Uuid id = Uuid::random();
    std::string name = "Unnamed";
    std::string tags;
    std::string hostname;  ///< a server, or an alias of the user's ssh configuration
    std::int64_t port = 22;
    std::string username;  ///< empty leaves the choice to ssh
    std::vector<ForwardingRule> forwardingRules;
    bool noSessionRequest = true;
    bool connectOnStartup = true;
    bool useSSHConfigAlias = false;
    std::string proxyJump;
    AuthMethod authMethod = AuthMethod::key;
    std::string identityFile;
    std::int64_t serverAliveInterval = 60;  ///< seconds
    std::int64_t serverAliveCountMax = 3;
    bool compression = false;
    std::int64_t connectTimeout = 30;  ///< seconds
    bool strictHostKeyChecking = false;
    std::string customOptions;  ///< one ssh option per line

    bool operator==(const SSHHost&) const = default;
};

}  // namespace velmora
