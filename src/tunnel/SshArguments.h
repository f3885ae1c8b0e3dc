#pragma once

#include "model/SSHHost.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

/// The settings that apply to every host.
struct SshSettings {
    bool performanceMode = false;
    bool globalProxyJumpEnabled = false;
    std::string globalProxyJump;  ///< for hosts without a jump host of their own
};

enum class AskpassPrepared : std::uint8_t { no, yes };

/// What ssh is started with, without the program's name. `home` replaces a leading "~" of the identity file.
[[nodiscard]] std::vector<std::string> sshArguments(const SSHHost& host, const SshSettings& settings,
                                                    const std::string& home, AskpassPrepared askpass);

/// The same as one line that a user can paste into a terminal: paths as typed, nothing about passwords, and no quoting
/// (an argument that holds a space stands as it is).
[[nodiscard]] std::string sshCommand(const SSHHost& host, const SshSettings& settings);

}  // namespace velmora
