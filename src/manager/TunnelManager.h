#pragma once

#include "base/Observable.h"
#include "base/Uuid.h"
#include "manager/KeychainStore.h"
#include "model/ConnectionStatus.h"
#include "model/SSHHost.h"
#include "pac/PacImporter.h"
#include "pac/PacServer.h"
#include "platform/CredentialStore.h"
#include "platform/DefaultsStore.h"
#include "platform/Paths.h"
#include "platform/ProcessLauncher.h"
#include "platform/ProcessRunner.h"
#include "platform/Scheduler.h"
#include "sync/FolderSync.h"
#include "sync/ImportExportCommands.h"
#include "sync/ImportResult.h"
#include "tunnel/PortPlanning.h"
#include "tunnel/TunnelEngine.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace velmora {

/// The system as the manager sees it. All of it outlives the manager.
struct Platform {
    Paths paths;
    Scheduler& scheduler;
    ProcessLauncher& launcher;
    ProcessRunner& runner;
    CredentialStore& credentials;
    DefaultsStore& defaults;
    Environment environment;  ///< the application's own
    std::string sshProgram = "/usr/bin/ssh";
    std::uint16_t pacPort = 18087;
};

/// The one controller that the windows talk to: owns the hosts, the settings and the tunnels. Lives from launch to
/// quit. Main thread only.
class TunnelManager final {
public:
    using PortConflict = velmora::PortConflict;

    /// Reads settings and hosts, connects the hosts marked for start-up, and takes the shared folder's list.
    explicit TunnelManager(Platform platform);
    TunnelManager(const TunnelManager&) = delete;
    TunnelManager& operator=(const TunnelManager&) = delete;
    ~TunnelManager();

    // ---- hosts ----

    [[nodiscard]] Observable<std::vector<SSHHost>>& hosts() { return hosts_; }
    [[nodiscard]] const Observable<std::vector<SSHHost>>& hosts() const { return hosts_; }

    /// Writes the hosts file and the shared folder's. A change of `hosts` by itself writes nothing. Errors are silent.
    void save();
    /// Stops the host, forgets it, its status and its password, and saves.
    void deleteHost(const Uuid& id);
    /// The host with this id, or null. Valid until `hosts` changes.
    [[nodiscard]] const SSHHost* findHost(const Uuid& id) const;

    // ---- tunnels ----

    void connect(const SSHHost& host) { engine_->connect(host); }
    void disconnect(const SSHHost& host) { engine_->disconnect(host); }
    void toggle(const SSHHost& host) { engine_->toggle(host); }
    void reconnectActiveHosts() { engine_->reconnectActiveHosts(); }
    /// What the program does before it ends: every ssh is asked to end, every askpass file goes.
    void terminateAllProcesses() { engine_->terminateAllProcesses(); }

    [[nodiscard]] ConnectionStatus status(const Uuid& id) const { return engine_->status(id); }
    [[nodiscard]] Observable<StatusTable>& statuses() { return engine_->statuses(); }
    [[nodiscard]] Observable<ConnectionTimes>& connectedAt() { return engine_->connectedAt(); }
    [[nodiscard]] bool isActive(const SSHHost& host) const { return engine_->status(host.id).isActive(); }
    /// How long the host has been connected, in words; nothing without a connection time.
    [[nodiscard]] std::optional<std::string> uptimeString(const Uuid& id) const;
    [[nodiscard]] std::filesystem::path logURL(const SSHHost& host) const { return engine_->logURL(host); }
    /// The ssh command line that a user can paste into a terminal.
    [[nodiscard]] std::string sshCommand(const SSHHost& host) const;

    [[nodiscard]] std::int64_t suggestedDynamicPort() const { return velmora::suggestedDynamicPort(hosts_.get()); }
    [[nodiscard]] std::vector<PortConflict> portConflicts(const SSHHost& host) const {
        return velmora::portConflicts(host, hosts_.get());
    }

    // ---- the proxy script ----

    [[nodiscard]] PacServer& pacServer() { return pacServer_; }
    /// Adds a host that bypasses every proxy, in its bare form, unless the list has it.
    void addProxyException(std::string_view entry);
    /// Serves what the hosts and the exceptions give, and keeps doing so. Returns the text.
    std::string regeneratePac();
    /// Serves an edited text, and takes its DIRECT lines as the new list of exceptions. Unless the text is what the
    /// hosts give anyway, it is served until `regeneratePac`.
    void applyPac(const std::string& edited);
    /// Adds the patterns of somebody's script to the Dynamic rules on the same ports, and saves if there are new ones.
    /// Returns how many were added.
    std::size_t importPacPatterns(const std::filesystem::path& file);
    /// The same with a script that has been read and taken apart already, which can take its time.
    std::size_t importPacPatterns(const std::vector<PacImporter::Entry>& entries);

    // ---- sharing, imports, backups ----

    [[nodiscard]] FolderSync& folderSync() { return folderSync_; }
    /// What the import and export commands work on. Valid as long as the manager.
    [[nodiscard]] HostListAccess hostListAccess();
    /// Adds the profiles of a Core Tunnel backup whose names are new, and saves. A bad file changes nothing.
    ImportResult importFromCoreTunnel(const std::filesystem::path& file);

    // ---- passwords ----

    [[nodiscard]] KeychainStore& keychain() { return keychain_; }

    // ---- settings: stored as they are set ----

    [[nodiscard]] const Observable<bool>& performanceMode() const { return performanceMode_; }
    [[nodiscard]] const Observable<std::string>& globalProxyJump() const { return globalProxyJump_; }
    [[nodiscard]] const Observable<bool>& globalProxyJumpEnabled() const { return globalProxyJumpEnabled_; }
    [[nodiscard]] const Observable<std::string>& proxyExceptions() const { return proxyExceptions_; }

    /// Running tunnels keep their options until their next connect.
    void setPerformanceMode(bool on);
    /// Takes effect at the next connect, or when the switch below is turned.
    void setGlobalProxyJump(std::string jumpHost);
    /// Restarts every active host.
    void setGlobalProxyJumpEnabled(bool on);
    void setProxyExceptions(std::string exceptions);

private:
    void removeAbandonedScripts();
    void loadSettings();
    void loadHosts();
    void connectStartupHosts();
    void startServingPac();
    void followHostsAndExceptions(const std::vector<SSHHost>& hosts, const std::string& exceptions);
    void startSharing();
    void applyFolderHosts(std::vector<SSHHost> incoming);
    void writeHostsFile();
    void keepUnknownHostsFile();
    [[nodiscard]] SshSettings sshSettings() const;
    [[nodiscard]] Environment resolvedEnvironment();

    Platform platform_;
    KeychainStore keychain_;
    PacServer pacServer_;
    std::filesystem::path storageURL_;
    std::filesystem::path logDir_;
    bool isHostsFileKnown_ = false;  ///< read at start, or written since

    Observable<std::vector<SSHHost>> hosts_;
    Observable<bool> performanceMode_{false};
    Observable<std::string> globalProxyJump_;
    Observable<bool> globalProxyJumpEnabled_{false};
    Observable<std::string> proxyExceptions_;

    std::unique_ptr<TunnelEngine> engine_;
    FolderSync folderSync_;
    bool isReceivingFolderUpdate_ = false;  ///< what comes from the folder is not pushed back
    std::vector<Subscription> cancellables_;
    std::thread abandonedScripts_;  ///< removes them
};

}  // namespace velmora
