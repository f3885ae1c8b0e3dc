#pragma once

#include "model/SSHHost.h"

#include <chrono>
#include <filesystem>
#include <vector>

namespace velmora {

/// The ids of the current hosts that the received list does not have, each once, in the order of the current hosts.
[[nodiscard]] std::vector<Uuid> removedIds(const std::vector<SSHHost>& current, const std::vector<SSHHost>& received);

/// Where the list stands that a received one has replaced: beside the hosts file, with ".before-sync" after its name.
[[nodiscard]] std::filesystem::path replacedHostsFile(const std::filesystem::path& hostsFile);

/// To be called before a received list replaces the current one: keeps the current one in a file of mode 0600, at most
/// once a day (UTC, of the given clock), so that a bad list from elsewhere destroys nothing for good. Lists that are
/// equal and an empty current list leave the file alone. Failures are silent.
void keepReplacedHosts(const std::filesystem::path& hostsFile, const std::vector<SSHHost>& current,
                       const std::vector<SSHHost>& received, std::chrono::system_clock::time_point now);

}  // namespace velmora
