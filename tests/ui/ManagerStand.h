#pragma once

#include "fakes/FakeSystem.h"

#include <chrono>
#include <string>
#include <vector>

namespace velmora {

/// A real manager on a system of the test's own.
struct ManagerStand : FakeSystem {
    ManagerStand() = default;
    /// Serves the proxy script on this port.
    explicit ManagerStand(std::uint16_t port) : FakeSystem{.pacPort = port} {}

    static SSHHost hostNamed(const std::string& name) {
        SSHHost host;
        host.name = name;
        host.hostname = "server.example";
        host.connectOnStartup = false;
        return host;
    }

    void setHosts(std::vector<SSHHost> hosts) { manager.hosts().set(std::move(hosts)); }
    /// The hosts with these names, new ones.
    void setHostsNamed(const std::vector<std::string>& names) {
        std::vector<SSHHost> hosts;
        for (const auto& name : names) {
            hosts.push_back(hostNamed(name));
        }
        setHosts(std::move(hosts));
    }
    [[nodiscard]] SSHHost host(std::size_t position) const { return manager.hosts().get().at(position); }

    void makeConnected(std::size_t position) {
        manager.connect(host(position));
        scheduler.advance(std::chrono::seconds(4));
    }
    void makeFailed(std::size_t position) {
        manager.connect(host(position));
        launcher.last().exitSaying("ssh: no route\n", 255);
        scheduler.runPosted();
    }

    TunnelManager manager{platform()};
};

}  // namespace velmora
