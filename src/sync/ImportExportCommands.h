#pragma once

#include "model/SSHHost.h"
#include "sync/FilePanels.h"
#include "sync/ImportResult.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace velmora {

/// The application's host list as the imports and the export see it.
struct HostListAccess {
    std::function<const std::vector<SSHHost>&()> hosts;
    std::function<void(std::vector<SSHHost>)> append;  ///< at the end, in one change; saves nothing
    std::function<void()> save;
};

// The three commands of the menu. They run where they are called, and return when the user has answered and the work is
// done. Main thread only.

/// Writes all hosts to a file of the user's choice. Failures are silent.
void exportTunnels(FilePanels& panels, const HostListAccess& list);

/// Adds the hosts of a backup whose names are new, one at a time, each saved. Nothing comes back when the user cancels
/// and when the file is no backup; then nothing has changed.
[[nodiscard]] std::optional<ImportResult> importVelmoraFile(FilePanels& panels, const HostListAccess& list);

/// Adds the profiles of a Core Tunnel backup. Nothing comes back when the user cancels.
[[nodiscard]] std::optional<ImportResult> importCoreTunnelFile(FilePanels& panels, const HostListAccess& list);

/// Adds the profiles of a Core Tunnel backup whose names are new, in one change, and saves, even when all of them were
/// known. A file that cannot be read or decoded changes nothing and counts as none imported, none skipped.
ImportResult importFromCoreTunnel(const std::filesystem::path& file, const HostListAccess& list);

}  // namespace velmora
