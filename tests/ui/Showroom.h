#pragma once

#include "ui/WindowStand.h"

#include <chrono>
#include <cstdint>
#include <utility>

namespace velmora {

/// Hosts in every state, settings and an update: the windows have all to show that they can.
struct Showroom : WindowStand {
    explicit Showroom(std::uint16_t port = 0) : WindowStand(port) {
        setHosts({production(), wiki(), buildServer(), staging(), namedAs("Home NAS", "nas.home.example")});
        manager.setProxyExceptions("printer.example.com\n10.0.*\n*.corp.example");
        manager.setGlobalProxyJump("anna@bastion.example.com");
        makeConnected(0);
        scheduler.advance(std::chrono::minutes(119));
        makeConnected(1);
        scheduler.advance(std::chrono::minutes(15));
        failStaging();
        manager.connect(host(2));
        offerUpdate("1.16.0");
        manager.folderSync().setFolder("/home/anna/Drive/velmora");
    }

    /// What makes lines long, and lines appear that are rarely seen.
    void addTheUnusual() {
        auto hosts = manager.hosts().get();
        hosts.push_back(namedAs("Read-only replica of the reporting database in the second data centre",
                                "replica-of-the-reporting-database.second-data-centre.example.com"));
        hosts.back().forwardingRules = {local("127.0.0.1", 5433, "db.internal", 5432),
                                        local("127.0.0.1", 5433, "a-target-with-a-long-name.internal", 65535),
                                        dynamicRule(21000, "*.internal")};
        hosts.back().tags = "reporting, second data centre, read-only, ask the database team before you write";
        setHosts(std::move(hosts));
        updater.progress().set(DownloadProgress{.received = 6'000'000, .total = 24'000'000});
        updater.status().set("Downloading v1.16.0… The rest of this line is there to be broken somewhere.");
        updater.errorMessage().set("The checksum of the download is not the one in the feed. Nothing was installed.");
    }
    [[nodiscard]] std::size_t unusual() const { return manager.hosts().get().size() - 1; }

private:
    static SSHHost namedAs(const std::string& name, const std::string& hostname) {
        SSHHost made = hostNamed(name);
        made.hostname = hostname;
        return made;
    }
    static ForwardingRule local(const std::string& bind, std::int64_t port, const std::string& target,
                                std::int64_t targetPort) {
        ForwardingRule rule;
        rule.bindAddress = bind;
        rule.bindPort = port;
        rule.targetAddress = target;
        rule.targetPort = targetPort;
        return rule;
    }
    static ForwardingRule dynamicRule(std::int64_t port, const std::string& patterns) {
        ForwardingRule rule;
        rule.type = ForwardingType::dynamic;
        rule.bindAddress = "localhost";
        rule.bindPort = port;
        rule.pacPatterns = patterns;
        return rule;
    }

    static SSHHost production() {
        SSHHost made = namedAs("Production", "gateway.example.com");
        made.tags = "work, database";
        made.username = "anna";
        made.connectOnStartup = true;
        made.strictHostKeyChecking = true;
        made.identityFile = "~/.ssh/id_ed25519";
        made.customOptions = "ExitOnForwardFailure=yes\nLogLevel=ERROR";
        ForwardingRule remote = local("", 9000, "localhost", 3000);
        remote.type = ForwardingType::remote;
        made.forwardingRules = {local("127.0.0.1", 5433, "db.internal", 5432), remote,
                                dynamicRule(21000, "*.internal\ngrafana.example.com")};
        return made;
    }
    static SSHHost wiki() {
        SSHHost made = namedAs("Office wiki", "office.example.com");
        made.forwardingRules = {dynamicRule(21001, "wiki.office.example\n*.office.example")};
        return made;
    }
    static SSHHost buildServer() {
        SSHHost made = namedAs("Build server", "build.example.com");
        made.forwardingRules = {local("127.0.0.1", 8080, "localhost", 8080)};
        return made;
    }
    static SSHHost staging() { return namedAs("Staging", "staging.example.com"); }

    void failStaging() {
        manager.connect(host(3));
        launcher.last().exitSaying("ssh: connect to host staging.example.com port 22: Connection refused\n", 255);
        scheduler.runPosted();
    }
};

}  // namespace velmora
