#pragma once

#include "model/SSHHost.h"

#include <chrono>
#include <filesystem>
#include <vector>

namespace velmora {

/// The ids of the current hosts that the received list does not have, each once, in the order of the current hosts.
[[nodiscard]] std::vector<Uuid> removedIds(const std::vector<SSHHost>& current, const std::vector<SSHHost>& received);

/// Where the first list stands that a received one has replaced on a day: beside the hosts file, with ".before-sync"
/// after its name.
[[nodiscard]] std::filesystem::path replacedHostsFile(const std::filesystem::path& hostsFile);

/// Where the list stands that lost hosts later on such a day: beside the hosts file, with ".before-removal" after its
/// name.
[[nodiscard]] std::filesystem::path removedHostsFile(const std::filesystem::path& hostsFile);

/// To be called before a received list replaces the current one: keeps the current one, so that a bad list from
/// elsewhere destroys nothing for good. There are two files for that, of mode 0600. The first list that is replaced on
/// a day (UTC, of the given clock) goes to the one and stays there for the day. A later one goes to the other when the
/// received list lacks hosts of it, in place of what an earlier removal has left there. Lists that are equal and an
/// empty current list leave both alone. Failures are silent.
void keepReplacedHosts(const std::filesystem::path& hostsFile, const std::vector<SSHHost>& current,
                       const std::vector<SSHHost>& received, std::chrono::system_clock::time_point now);

}  // namespace velmora
