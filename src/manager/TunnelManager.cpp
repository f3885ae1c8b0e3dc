#include "manager/TunnelManager.h"

#include "base/AtomicFile.h"
#include "base/Text.h"
#include "model/HostJson.h"
#include "model/HostsFile.h"
#include "pac/PacGenerator.h"
#include "pac/PacImporter.h"
#include "pac/ProxyExceptions.h"
#include "sync/ReplacedHosts.h"
#include "tunnel/AskpassScript.h"

#include <algorithm>
#include <iterator>
#include <system_error>

namespace velmora {

namespace {

namespace keys {

constexpr std::string_view performanceMode = "performanceMode";
constexpr std::string_view globalProxyJump = "globalProxyJump";
constexpr std::string_view globalProxyJumpEnabled = "globalProxyJumpEnabled";
constexpr std::string_view proxyExceptions = "proxyExceptions";

}  // namespace keys

}  // namespace

TunnelManager::TunnelManager(Platform platform)
    : platform_(std::move(platform)),
      keychain_(platform_.credentials),
      pacServer_(platform_.pacPort),
      storageURL_(platform_.paths.applicationSupport / "Velmora" / "hosts.json"),
      logDir_(platform_.paths.library / "Logs" / "Velmora"),
      folderSync_(platform_.scheduler, platform_.defaults) {
    loadSettings();
    std::ignore = createPrivateDirectory(storageURL_.parent_path());  // silent: the program works without
    std::ignore = createPrivateDirectory(logDir_);                    // silent too
    engine_ = std::make_unique<TunnelEngine>(
        platform_.scheduler, platform_.launcher,
        TunnelSources{
            .hosts = [this]() -> const std::vector<SSHHost>& { return hosts_.get(); },
            .settings = [this] { return sshSettings(); },
            .password = [this](const Uuid& id) { return keychain_.load(id); },
            .environment = [this] { return resolvedEnvironment(); },
        },
        TunnelPlaces{platform_.sshProgram, platform_.paths.home, logDir_, platform_.paths.temporary});
    loadHosts();
    connectStartupHosts();
    startServingPac();
    startSharing();
    removeAbandonedScripts();  // last: a thread that runs must find its way to the destructor
}

TunnelManager::~TunnelManager() {
    if (abandonedScripts_.joinable()) {
        abandonedScripts_.join();
    }
}

/// On a thread of its own: a temporary folder may hold tens of thousands of files.
void TunnelManager::removeAbandonedScripts() {
    auto directories = platform_.paths.otherTemporaries;
    directories.insert(platform_.paths.temporary);
    try {
        abandonedScripts_ = std::thread([directories = std::move(directories)] {
            for (const auto& directory : directories) {
                removeAbandonedAskpassScripts(directory);
            }
        });
    } catch (const std::system_error&) {
        return;  // no thread to be had: the scripts stay until the next start
    }
}

void TunnelManager::loadSettings() {
    performanceMode_.set(platform_.defaults.boolean(keys::performanceMode));
    globalProxyJump_.set(platform_.defaults.string(keys::globalProxyJump));
    globalProxyJumpEnabled_.set(platform_.defaults.boolean(keys::globalProxyJumpEnabled));
    proxyExceptions_.set(platform_.defaults.string(keys::proxyExceptions));
}

void TunnelManager::loadHosts() {
    if (auto hosts = readHostsFile(storageURL_)) {
        hosts_.set(*std::move(hosts));
        isHostsFileKnown_ = true;
    }  // else silent: the program starts without hosts, and what is there stays until it is saved
}

void TunnelManager::connectStartupHosts() {
    const auto hosts = hosts_.get();
    for (const auto& host : hosts) {
        if (host.connectOnStartup && !host.hostname.empty()) {
            connect(host);
        }
    }
}

void TunnelManager::save() {
    writeHostsFile();
    if (!isReceivingFolderUpdate_) {
        folderSync_.push(hosts_.get());
    }
}

void TunnelManager::writeHostsFile() {
    const auto json = encodeHosts(hosts_.get());
    if (!json) {
        return;  // silent: the list in memory and the file stay as they are
    }
    if (!isHostsFileKnown_) {
        keepUnknownHostsFile();
    }
    if (writeFileAtomically(storageURL_, *json)) {  // else silent: the list in memory stays
        isHostsFileKnown_ = true;
    }
}

void TunnelManager::startServingPac() {
    pacServer_.start();
    cancellables_.push_back(hosts_.subscribe(
        [this](const std::vector<SSHHost>& hosts) { followHostsAndExceptions(hosts, proxyExceptions_.get()); }));
    cancellables_.push_back(proxyExceptions_.subscribe(
        [this](const std::string& exceptions) { followHostsAndExceptions(hosts_.get(), exceptions); }));
}

void TunnelManager::followHostsAndExceptions(const std::vector<SSHHost>& hosts, const std::string& exceptions) {
    if (!pacServer_.isCustom()) {
        pacServer_.setContent(PacGenerator::generate(hosts, parseExceptions(exceptions)));
    }
}

void TunnelManager::addProxyException(std::string_view entry) {
    if (auto exceptions = velmora::addProxyException(proxyExceptions_.get(), entry)) {
        setProxyExceptions(*std::move(exceptions));
    }
}

std::string TunnelManager::regeneratePac() {
    auto text = PacGenerator::generate(hosts_.get(), parseExceptions(proxyExceptions_.get()));
    pacServer_.setContent(text);
    pacServer_.setCustom(false);
    return text;
}

void TunnelManager::applyPac(const std::string& edited) {
    pacServer_.setCustom(true);  // first, so that the new exceptions do not regenerate over the edit
    pacServer_.setContent(edited);
    const auto exceptions = directPatterns(edited);
    setProxyExceptions(join(exceptions, "\n"));
    pacServer_.setCustom(PacServer::isHandEdit(edited, PacGenerator::generate(hosts_.get(), exceptions)));
}

std::size_t TunnelManager::importPacPatterns(const std::filesystem::path& file) {
    return importPacPatterns(PacImporter::parse(PacImporter::readScript(file)));
}

std::size_t TunnelManager::importPacPatterns(const std::vector<PacImporter::Entry>& entries) {
    auto hosts = hosts_.get();
    const auto additions = PacImporter::addPatterns(entries, hosts);
    if (additions > 0) {
        hosts_.set(std::move(hosts));
        save();
    }
    return additions;
}

/// The shared list wins over the local one, whose start-up hosts are connected already.
void TunnelManager::startSharing() {
    folderSync_.setOnChange([this](std::vector<SSHHost> incoming) { applyFolderHosts(std::move(incoming)); });
    if (auto shared = folderSync_.pull()) {
        keepReplacedHosts(storageURL_, hosts_.get(), *shared, platform_.scheduler.now());
        hosts_.set(*std::move(shared));
    }
    folderSync_.startPollingIfEnabled();
}

/// Hosts in both lists run on with what they were started with.
void TunnelManager::applyFolderHosts(std::vector<SSHHost> incoming) {
    isReceivingFolderUpdate_ = true;
    keepReplacedHosts(storageURL_, hosts_.get(), incoming, platform_.scheduler.now());
    for (const auto& id : removedIds(hosts_.get(), incoming)) {
        if (const auto* host = findHost(id)) {
            disconnect(SSHHost(*host));
        }
    }
    hosts_.set(std::move(incoming));
    writeHostsFile();
    isReceivingFolderUpdate_ = false;
}

HostListAccess TunnelManager::hostListAccess() {
    return {.hosts = [this]() -> const std::vector<SSHHost>& { return hosts_.get(); },
            .append =
                [this](std::vector<SSHHost> added) {
                    hosts_.edit([&](std::vector<SSHHost>& hosts) {
                        std::move(added.begin(), added.end(), std::back_inserter(hosts));
                    });
                },
            .save = [this] { save(); }};
}

ImportResult TunnelManager::importFromCoreTunnel(const std::filesystem::path& file) {
    return velmora::importFromCoreTunnel(file, hostListAccess());
}

/// A file that was not read at start may be all that the user has: its bytes are kept under another name before
/// anything is written over it. Also a file that has come since: a home may be late or out of reach when the program
/// starts.
void TunnelManager::keepUnknownHostsFile() {
    auto kept = storageURL_;
    kept += ".unreadable";
    std::error_code error;
    std::filesystem::copy_file(storageURL_, kept, std::filesystem::copy_options::overwrite_existing, error);
    if (error && error != std::errc::no_such_file_or_directory) {
        std::filesystem::rename(storageURL_, kept, error);  // we may not read it, but we may move it
    }
}

void TunnelManager::deleteHost(const Uuid& id) {
    const Uuid removed = id;  // the one passed in may stand in the list itself
    if (const auto* host = findHost(removed)) {
        disconnect(SSHHost(*host));
    }
    hosts_.edit([&](std::vector<SSHHost>& hosts) {
        std::erase_if(hosts, [&](const SSHHost& host) { return host.id == removed; });
    });
    engine_->removeStatus(removed);
    keychain_.remove(removed);
    save();
}

const SSHHost* TunnelManager::findHost(const Uuid& id) const {
    const auto& hosts = hosts_.get();
    const auto host = std::find_if(hosts.begin(), hosts.end(), [&](const SSHHost& each) { return each.id == id; });
    return host != hosts.end() ? &*host : nullptr;
}

std::optional<std::string> TunnelManager::uptimeString(const Uuid& id) const {
    const auto& times = engine_->connectedAt().get();
    const auto since = times.find(id);
    if (since == times.end()) {
        return std::nullopt;
    }
    const auto elapsed = platform_.scheduler.now() - since->second;
    return uptimeText(std::chrono::duration_cast<std::chrono::seconds>(elapsed));
}

std::string TunnelManager::sshCommand(const SSHHost& host) const {
    return velmora::sshCommand(host, sshSettings());
}

SshSettings TunnelManager::sshSettings() const {
    return {performanceMode_.get(), globalProxyJumpEnabled_.get(), globalProxyJump_.get()};
}

void TunnelManager::setPerformanceMode(bool on) {
    performanceMode_.set(on);
    platform_.defaults.setBoolean(keys::performanceMode, on);
}

void TunnelManager::setGlobalProxyJump(std::string jumpHost) {
    globalProxyJump_.set(std::move(jumpHost));
    platform_.defaults.setString(keys::globalProxyJump, globalProxyJump_.get());
}

void TunnelManager::setGlobalProxyJumpEnabled(bool on) {
    globalProxyJumpEnabled_.set(on);
    platform_.defaults.setBoolean(keys::globalProxyJumpEnabled, on);
    reconnectActiveHosts();
}

void TunnelManager::setProxyExceptions(std::string exceptions) {
    proxyExceptions_.set(std::move(exceptions));
    platform_.defaults.setString(keys::proxyExceptions, proxyExceptions_.get());
}

/// Sessions that were not started from a shell may lack the agent's socket; the session's own launcher knows it.
Environment TunnelManager::resolvedEnvironment() {
    constexpr auto agentSocket = "SSH_AUTH_SOCK";
    auto environment = platform_.environment;
    if (const auto socket = environment.find(agentSocket); socket != environment.end() && !socket->second.empty()) {
        return environment;
    }
    const auto answer = platform_.runner.run("/bin/launchctl", {"getenv", agentSocket});
    if (!answer || !isValidUtf8(answer->standardOutput)) {
        return environment;
    }
    if (const auto socket = trimWhitespaceAndNewlines(answer->standardOutput); !socket.empty()) {
        environment[agentSocket] = socket;
    }
    return environment;
}

}  // namespace velmora
