#pragma once

#include "fakes/FakeProcessLauncher.h"
#include "fakes/FakeProcessRunner.h"
#include "fakes/InMemoryDefaultsStore.h"
#include "fakes/RecordingCredentialStore.h"
#include "fakes/TemporaryDirectory.h"
#include "fakes/VirtualScheduler.h"
#include "manager/TunnelManager.h"

#include <chrono>
#include <string>
#include <vector>

namespace velmora {

/// A real manager on a system of the test's own.
class ManagerStand {
public:
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

    TemporaryDirectory home;
    VirtualScheduler scheduler;
    FakeProcessLauncher launcher;
    FakeProcessRunner runner;
    RecordingCredentialStore credentials;
    InMemoryDefaultsStore defaults;
    TunnelManager manager{Platform{.paths = {.home = home.path(),
                                             .applicationSupport = home / "share",
                                             .library = home / "state",
                                             .configuration = home / "config",
                                             .temporary = home.path(),
                                             .largeTemporary = home.path()},
                                   .scheduler = scheduler,
                                   .launcher = launcher,
                                   .runner = runner,
                                   .credentials = credentials,
                                   .defaults = defaults,
                                   .pacPort = 0}};
};

}  // namespace velmora
