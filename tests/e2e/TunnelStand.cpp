#include "e2e/TunnelStand.h"

#include "fixtures/Processes.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <unistd.h>

namespace velmora {

namespace {

Paths pathsIn(const std::filesystem::path& directory) {
    const Paths paths{.home = directory / "home",
                      .applicationSupport = directory / "share",
                      .library = directory / "state",
                      .configuration = directory / "config",
                      .temporary = directory / "run",
                      .largeTemporary = directory / "run"};
    for (const auto& path : {paths.home, paths.applicationSupport, paths.library, paths.configuration}) {
        std::filesystem::create_directory(path);
    }
    std::filesystem::create_directory(paths.temporary);
    std::filesystem::permissions(paths.temporary, std::filesystem::perms::owner_all);
    return paths;
}

/// Without an agent, whose keys would be offered first, and without a screen.
Environment plainEnvironment(const Paths& paths, const Environment& more) {
    Environment environment{{"PATH", "/usr/bin:/bin"}, {"HOME", paths.home.string()}, {"LC_ALL", "C"}};
    environment.insert(more.begin(), more.end());
    return environment;
}

ForwardingRule ruleOf(ForwardingType type, std::uint16_t bindPort) {
    ForwardingRule rule;
    rule.type = type;
    rule.bindAddress = "127.0.0.1";
    rule.bindPort = bindPort;
    return rule;
}

ForwardingRule ruleTo(ForwardingType type, std::uint16_t bindPort, std::uint16_t targetPort) {
    auto rule = ruleOf(type, bindPort);
    rule.targetAddress = "127.0.0.1";
    rule.targetPort = targetPort;
    return rule;
}

}  // namespace

TunnelStand::TunnelStand() : TunnelStand(passwords_) {}

TunnelStand::TunnelStand(CredentialStore& credentials) : TunnelStand(credentials, "/usr/bin/ssh", {}) {}

TunnelStand::TunnelStand(std::string sshProgram, const Environment& more)
    : TunnelStand(passwords_, std::move(sshProgram), more) {}

TunnelStand::TunnelStand(CredentialStore& credentials, std::string sshProgram, const Environment& more)
    : launcher_(std::make_unique<AsioProcessLauncher>(io_)) {
    const Paths paths = pathsIn(directory_.path());
    manager_ = std::make_unique<TunnelManager>(Platform{.paths = paths,
                                                        .scheduler = scheduler_,
                                                        .launcher = *launcher_,
                                                        .runner = runner_,
                                                        .credentials = credentials,
                                                        .defaults = defaults_,
                                                        .environment = plainEnvironment(paths, more),
                                                        .sshProgram = std::move(sshProgram),
                                                        .pacPort = 0});
}

TunnelStand::~TunnelStand() {
    quit();
}

void TunnelStand::connect(const SSHHost& host) {
    manager_->hosts().edit([&](std::vector<SSHHost>& hosts) { hosts.push_back(host); });
    manager_->connect(host);
}

void TunnelStand::quit() {
    if (manager_) {
        manager_->terminateAllProcesses();
    }
    manager_.reset();
    launcher_.reset();
}

bool TunnelStand::waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        run(std::chrono::milliseconds(20));
    }
    return true;
}

bool TunnelStand::waitForState(const SSHHost& host, ConnectionStatus::State state) {
    return waitUntil([&] { return manager_->status(host.id).state == state; });
}

void TunnelStand::run(std::chrono::milliseconds duration) {
    QEventLoop loop;
    QTimer::singleShot(duration, &loop, &QEventLoop::quit);
    loop.exec();
}

std::string TunnelStand::log(const SSHHost& host) const {
    return contentOf(manager_->logURL(host));
}

std::vector<std::filesystem::path> TunnelStand::askpassFiles() const {
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::directory_iterator(directory_.path() / "run")) {
        if (entry.path().filename().string().starts_with("velmora-askpass-")) {
            found.push_back(entry.path());
        }
    }
    return found;
}

std::vector<pid_t> TunnelStand::sshProcesses() {
    auto processes = descendantsOf(getpid());
    std::erase_if(processes, [](pid_t pid) { return programName(pid) != "ssh"; });
    return processes;
}

SSHHost hostAt(const Sshd& sshd) {
    SSHHost host;
    host.name = "test";
    host.hostname = "127.0.0.1";
    host.port = sshd.port();
    host.username = Sshd::userName();
    host.identityFile = sshd.userKey();
    return host;
}

ForwardingRule localRule(std::uint16_t bindPort, std::uint16_t targetPort) {
    return ruleTo(ForwardingType::local, bindPort, targetPort);
}

ForwardingRule remoteRule(std::uint16_t bindPort, std::uint16_t targetPort) {
    return ruleTo(ForwardingType::remote, bindPort, targetPort);
}

ForwardingRule dynamicRule(std::uint16_t bindPort) {
    return ruleOf(ForwardingType::dynamic, bindPort);
}

}  // namespace velmora
