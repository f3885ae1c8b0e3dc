#pragma once

#include "model/SSHHost.h"

#include <vector>

namespace velmora {

// A backup is the host list as the hosts file holds it, without passwords.

/// What a backup is called unless the user chooses another name.
inline constexpr auto backupFileName = "velmora-backup.json";

/// The candidates whose name no existing host has, exactly as it is written, in their order. Candidates are not
/// compared with each other: two of one new name both come in. A host keeps its id, unless an existing host or an
/// earlier candidate has the same one; then it gets a fresh one, because everything about a host is found by its id.
[[nodiscard]] std::vector<SSHHost> hostsToImport(std::vector<SSHHost> candidates, const std::vector<SSHHost>& existing);

}  // namespace velmora
