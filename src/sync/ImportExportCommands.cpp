#include "sync/ImportExportCommands.h"

#include "base/AtomicFile.h"
#include "base/Localized.h"
#include "model/HostJson.h"
#include "model/HostsFile.h"
#include "sync/Backup.h"
#include "sync/CoreTunnelImporter.h"

#include <utility>

namespace velmora {

namespace {

ImportResult resultOf(std::size_t imported, std::size_t inFile) {
    return {.imported = static_cast<std::int64_t>(imported), .skipped = static_cast<std::int64_t>(inFile - imported)};
}

}  // namespace

void exportTunnels(FilePanels& panels, const HostListAccess& list) {
    const auto json = encodeHosts(list.hosts());
    if (!json) {
        return;  // silent
    }
    if (const auto file =
            panels.chooseFileToSave(localized("velmora::FilePanels", "Export Velmora Hosts"), backupFileName)) {
        std::ignore = writeFileAtomically(*file, *json);  // silent
    }
}

std::optional<ImportResult> importVelmoraFile(FilePanels& panels, const HostListAccess& list) {
    const auto file = panels.chooseFileToOpen(localized("velmora::FilePanels", "Select Velmora Backup"),
                                              localized("velmora::FilePanels", "Choose a velmora-backup.json file"));
    if (!file) {
        return std::nullopt;
    }
    auto candidates = readHostsFile(*file);
    if (!candidates) {
        return std::nullopt;  // silent: not a backup
    }
    const auto inFile = candidates->size();
    auto hosts = hostsToImport(*std::move(candidates), list.hosts());
    for (auto& host : hosts) {
        list.append({std::move(host)});
        list.save();
    }
    return resultOf(hosts.size(), inFile);
}

std::optional<ImportResult> importCoreTunnelFile(FilePanels& panels, const HostListAccess& list) {
    const auto file = panels.chooseFileToOpen(localized("velmora::FilePanels", "Select Core Tunnel Backup"),
                                              localized("velmora::FilePanels", "Choose a .coretunnel backup file"));
    return file ? std::optional(importFromCoreTunnel(*file, list)) : std::nullopt;
}

ImportResult importFromCoreTunnel(const std::filesystem::path& file, const HostListAccess& list) {
    auto profiles = CoreTunnelImporter::importHosts(file);
    if (!profiles) {
        return {};
    }
    const auto inFile = profiles->size();
    auto hosts = hostsToImport(*std::move(profiles), list.hosts());
    const auto imported = hosts.size();
    list.append(std::move(hosts));
    list.save();
    return resultOf(imported, inFile);
}

}  // namespace velmora
