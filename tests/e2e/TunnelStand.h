#pragma once

#include "fakes/InMemoryDefaultsStore.h"
#include "fakes/RecordingCredentialStore.h"
#include "fakes/TemporaryDirectory.h"
#include "fixtures/Sshd.h"
#include "manager/TunnelManager.h"
#include "platform/CredentialStore.h"
#include "platform/posix/AsioProcessLauncher.h"
#include "platform/posix/IoThread.h"
#include "platform/posix/SystemProcessRunner.h"
#include "platform/qt/QtScheduler.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

/// The manager as the program builds it: the real clock, event loop, process launcher and ssh, in directories of the
/// test's own.
class TunnelStand final {
public:
    TunnelStand();
    explicit TunnelStand(CredentialStore& credentials);
    /// With a program in the place of ssh, and more in its environment.
    TunnelStand(std::string sshProgram, const Environment& more);
    TunnelStand(const TunnelStand&) = delete;
    TunnelStand& operator=(const TunnelStand&) = delete;
    ~TunnelStand();

    [[nodiscard]] TunnelManager& manager() { return *manager_; }

    /// Adds a host to the manager's list and connects it.
    void connect(const SSHHost& host);

    /// Ends manager and launcher, as the program does on its way out.
    void quit();

    /// The passwords of the hosts, unless a store was given.
    [[nodiscard]] RecordingCredentialStore& passwords() { return passwords_; }

    /// Runs the event loop until the condition holds; false when it has not in time.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& condition,
                                 std::chrono::milliseconds limit = std::chrono::seconds(15));
    [[nodiscard]] bool waitForState(const SSHHost& host, ConnectionStatus::State state);
    /// Runs the event loop for a while.
    void run(std::chrono::milliseconds duration);

    [[nodiscard]] std::string log(const SSHHost& host) const;
    [[nodiscard]] std::vector<std::filesystem::path> askpassFiles() const;
    /// The ssh processes that this test program has started and that still run.
    [[nodiscard]] static std::vector<pid_t> sshProcesses();

private:
    TunnelStand(CredentialStore& credentials, std::string sshProgram, const Environment& more);

    TemporaryDirectory directory_;
    RecordingCredentialStore passwords_;
    InMemoryDefaultsStore defaults_;
    QtScheduler scheduler_;
    IoThread io_;
    SystemProcessRunner runner_;
    std::unique_ptr<AsioProcessLauncher> launcher_;
    std::unique_ptr<TunnelManager> manager_;
};

/// A host that logs in at the server with its key.
[[nodiscard]] SSHHost hostAt(const Sshd& sshd);
[[nodiscard]] ForwardingRule localRule(std::uint16_t bindPort, std::uint16_t targetPort);
[[nodiscard]] ForwardingRule remoteRule(std::uint16_t bindPort, std::uint16_t targetPort);
[[nodiscard]] ForwardingRule dynamicRule(std::uint16_t bindPort);

}  // namespace velmora
