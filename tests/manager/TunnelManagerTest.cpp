#include "fakes/FakeSystem.h"
#include "manager/TunnelManager.h"
#include "model/HostJson.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace velmora {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class TunnelManagerTest : public testing::Test {
protected:
    TunnelManager& start() {
        manager_.emplace(system_.platform());
        return *manager_;
    }

    std::filesystem::path hostsFile() const { return system_.home / "share/Velmora/hosts.json"; }

    void writeHostsFile(const std::string& content) {
        std::filesystem::create_directories(hostsFile().parent_path());
        writeContent(hostsFile(), content);
    }

    void storeHosts(const std::vector<SSHHost>& hosts) { writeHostsFile(*encodeHosts(hosts)); }

    static SSHHost hostNamed(const std::string& name) {
        SSHHost host;
        host.name = name;
        host.hostname = name + ".example";
        return host;
    }

    std::vector<std::string> launchedDestinations() {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < system_.launcher.count(); ++i) {
            names.push_back(system_.launcher.process(i).arguments.back());
        }
        return names;
    }

    FakeSystem system_;
    std::optional<TunnelManager> manager_;
};

// ---- hosts file ----

TEST_F(TunnelManagerTest, WithoutAHostsFileItStartsEmptyAndTheFirstSaveMakesTheFile) {
    auto& manager = start();
    EXPECT_THAT(manager.hosts().get(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(hostsFile()));
    const auto host = hostNamed("a");
    manager.hosts().set({host});
    EXPECT_FALSE(std::filesystem::exists(hostsFile())) << "a change writes nothing";
    manager.save();
    EXPECT_EQ(*decodeHosts(contentOf(hostsFile())), std::vector{host});
    EXPECT_EQ(modeOf(hostsFile()), 0600);
    EXPECT_EQ(modeOf(hostsFile().parent_path()), 0700);
    EXPECT_EQ(modeOf(system_.home / "state/Logs/Velmora"), 0700);
}

TEST_F(TunnelManagerTest, HostsKeepTheirOrderOverARestart) {
    storeHosts({hostNamed("c"), hostNamed("a"), hostNamed("b")});
    auto& manager = start();
    const auto hosts = manager.hosts().get();
    manager.save();
    EXPECT_EQ(start().hosts().get(), hosts);
    EXPECT_EQ(hosts[0].name, "c");
    EXPECT_FALSE(std::filesystem::exists(hostsFile().string() + ".unreadable"));
}

TEST_F(TunnelManagerTest, AHostsFileThatCannotBeDecodedIsIgnoredAndKeptBeforeTheFirstSave) {
    const std::string bad = R"([{"name":"precious"},{"port":"22"}])";
    writeHostsFile(bad);
    auto& manager = start();
    EXPECT_THAT(manager.hosts().get(), IsEmpty());
    EXPECT_EQ(contentOf(hostsFile()), bad) << "left until the next save";
    manager.save();
    EXPECT_EQ(contentOf(hostsFile()), "[]");
    EXPECT_EQ(contentOf(hostsFile().string() + ".unreadable"), bad);
}

TEST_F(TunnelManagerTest, TheUnreadableFileIsKeptOnce) {
    writeHostsFile("precious");
    auto& manager = start();
    manager.save();
    manager.save();
    EXPECT_EQ(contentOf(hostsFile().string() + ".unreadable"), "precious");
}

TEST_F(TunnelManagerTest, AnUnreadableFileThatIsALinkKeepsBeingOne) {
    std::filesystem::create_directories(hostsFile().parent_path());
    writeContent(system_.home / "real.json", "precious");
    std::filesystem::create_symlink(system_.home / "real.json", hostsFile());
    start().save();
    EXPECT_TRUE(std::filesystem::is_symlink(hostsFile()));
    EXPECT_EQ(contentOf(system_.home / "real.json"), "[]");
    EXPECT_EQ(contentOf(hostsFile().string() + ".unreadable"), "precious");
}

TEST_F(TunnelManagerTest, AFileThatWasOutOfReachAtStartIsKeptBeforeItIsWrittenOver) {
    storeHosts({hostNamed("precious")});
    const auto precious = contentOf(hostsFile());
    const auto folder = hostsFile().parent_path();
    const auto away = folder.string() + ".away";
    std::filesystem::rename(folder, away);
    std::filesystem::create_symlink(folder, folder);  // leads nowhere, which is not the same as nothing
    auto& manager = start();
    EXPECT_THAT(manager.hosts().get(), IsEmpty());
    manager.save();  // in vain

    std::filesystem::remove(folder);
    std::filesystem::rename(away, folder);
    manager.save();
    EXPECT_EQ(contentOf(hostsFile()), "[]");
    EXPECT_EQ(contentOf(hostsFile().string() + ".unreadable"), precious);
    manager.save();
    EXPECT_EQ(contentOf(hostsFile().string() + ".unreadable"), precious) << "and what we wrote is not kept";
}

TEST_F(TunnelManagerTest, AFileThatComesAfterTheStartIsKeptBeforeItIsWrittenOver) {
    auto& manager = start();
    writeContent(hostsFile(), "precious");
    manager.save();
    EXPECT_EQ(contentOf(hostsFile()), "[]");
    EXPECT_EQ(contentOf(hostsFile().string() + ".unreadable"), "precious");
}

TEST_F(TunnelManagerTest, WhatCannotBeCopiedIsMovedOutOfTheWay) {
    std::filesystem::create_directories(hostsFile() / "a folder where the file should be");
    start().save();
    EXPECT_EQ(contentOf(hostsFile()), "[]");
    EXPECT_TRUE(std::filesystem::exists(hostsFile().string() + ".unreadable/a folder where the file should be"));
}

TEST_F(TunnelManagerTest, ALinkToAFileThatIsNotThereYetKeepsBeingOne) {
    std::filesystem::create_directories(hostsFile().parent_path());
    std::filesystem::create_symlink(system_.home / "real.json", hostsFile());
    start().save();
    EXPECT_TRUE(std::filesystem::is_symlink(hostsFile()));
    EXPECT_EQ(contentOf(system_.home / "real.json"), "[]");
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(hostsFile().string() + ".unreadable")));
}

TEST_F(TunnelManagerTest, AHostThatCannotBeWrittenLeavesTheFile) {
    storeHosts({hostNamed("a")});
    auto& manager = start();
    const auto before = contentOf(hostsFile());
    auto broken = hostNamed("b");
    broken.name = "\xFF";
    manager.hosts().set({broken});
    manager.save();
    EXPECT_EQ(contentOf(hostsFile()), before);
}

TEST_F(TunnelManagerTest, WithoutAPlaceToWriteItStillWorks) {
    writeContent(system_.home / "share", "a file where the folder should be");
    auto& manager = start();
    manager.hosts().set({hostNamed("a")});
    manager.save();
    manager.connect(manager.hosts()->front());
    EXPECT_EQ(system_.launcher.count(), 1U);
}

// ---- start-up ----

TEST_F(TunnelManagerTest, HostsMarkedForStartUpThatHaveAHostNameAreConnectedInOrder) {
    auto off = hostNamed("off");
    off.connectOnStartup = false;
    auto nameless = hostNamed("nameless");
    nameless.hostname.clear();
    storeHosts({hostNamed("b"), off, nameless, hostNamed("a")});
    auto& manager = start();
    EXPECT_THAT(launchedDestinations(), ElementsAre("b.example", "a.example"));
    EXPECT_EQ(manager.status(nameless.id), ConnectionStatus::disconnected());
    EXPECT_EQ(manager.status(off.id), ConnectionStatus::disconnected());
}

TEST_F(TunnelManagerTest, ScriptsOfACrashedRunAreRemovedAtStart) {
    const auto script = system_.runtime / ("velmora-askpass-" + Uuid::random().toString() + ".sh");
    writeContent(script, "#!/bin/sh\n");
    start();
    manager_.reset();  // the folder is looked through beside the start, and that is waited for here
    EXPECT_FALSE(std::filesystem::exists(script));
}

TEST_F(TunnelManagerTest, SettingsAreReadAtStartAndAbsentOnesAreOffOrEmpty) {
    auto& fresh = start();
    EXPECT_FALSE(fresh.performanceMode().get());
    EXPECT_FALSE(fresh.globalProxyJumpEnabled().get());
    EXPECT_EQ(fresh.globalProxyJump().get(), "");
    EXPECT_EQ(fresh.proxyExceptions().get(), "");
    EXPECT_FALSE(system_.defaults.contains("performanceMode")) << "reading writes nothing";
    system_.defaults.setBoolean("performanceMode", true);
    system_.defaults.setBoolean("globalProxyJumpEnabled", true);
    system_.defaults.setString("globalProxyJump", "jump");
    system_.defaults.setString("proxyExceptions", "a\nb");
    storeHosts({hostNamed("a")});
    auto& manager = start();
    EXPECT_TRUE(manager.performanceMode().get());
    EXPECT_TRUE(manager.globalProxyJumpEnabled().get());
    EXPECT_EQ(manager.globalProxyJump().get(), "jump");
    EXPECT_EQ(manager.proxyExceptions().get(), "a\nb");
    EXPECT_THAT(system_.launcher.last().arguments, Contains("jump")) << "known before the first host connects";
}

// ---- settings ----

TEST_F(TunnelManagerTest, SettingsAreWrittenAsTheyAreSet) {
    auto& manager = start();
    manager.setPerformanceMode(true);
    manager.setGlobalProxyJump("jump");
    manager.setGlobalProxyJumpEnabled(true);
    manager.setProxyExceptions("x\ny");
    EXPECT_TRUE(system_.defaults.boolean("performanceMode"));
    EXPECT_EQ(system_.defaults.string("globalProxyJump"), "jump");
    EXPECT_TRUE(system_.defaults.boolean("globalProxyJumpEnabled"));
    EXPECT_EQ(system_.defaults.string("proxyExceptions"), "x\ny");
}

TEST_F(TunnelManagerTest, SwitchingTheGlobalJumpHostRestartsActiveHostsAndTypingDoesNot) {
    storeHosts({hostNamed("connected"), hostNamed("connecting"), hostNamed("failed")});
    auto& manager = start();
    system_.scheduler.advance(3s);
    const auto hosts = manager.hosts().get();
    manager.disconnect(hosts[1]);
    manager.connect(hosts[1]);
    system_.launcher.process(2).exit(1);
    system_.scheduler.runPosted();
    ASSERT_EQ(system_.launcher.count(), 4U);

    manager.setGlobalProxyJump("j");
    manager.setGlobalProxyJump("ju");
    EXPECT_EQ(system_.launcher.count(), 4U);
    manager.setGlobalProxyJumpEnabled(true);
    ASSERT_EQ(system_.launcher.count(), 6U);
    EXPECT_EQ(system_.launcher.process(4).arguments.back(), "connected.example");
    EXPECT_EQ(system_.launcher.process(5).arguments.back(), "connecting.example");
    EXPECT_THAT(system_.launcher.process(4).arguments, Contains("ju"));
    manager.setGlobalProxyJumpEnabled(false);
    EXPECT_EQ(system_.launcher.count(), 8U);
    EXPECT_THAT(system_.launcher.last().arguments, Not(Contains("-J")));
}

TEST_F(TunnelManagerTest, ChangingPerformanceModeLeavesARunningTunnelAlone) {
    storeHosts({hostNamed("a")});
    auto& manager = start();
    system_.scheduler.advance(3s);
    manager.setPerformanceMode(true);
    EXPECT_EQ(system_.launcher.count(), 1U);
    EXPECT_EQ(system_.launcher.last().terminations, 0);
    manager.disconnect(manager.hosts()->front());
    manager.connect(manager.hosts()->front());
    EXPECT_THAT(system_.launcher.last().arguments, Contains("GSSAPIAuthentication=no"));
}

// ---- deleting ----

TEST_F(TunnelManagerTest, DeletingAConnectedHostStopsItAndForgetsItsPassword) {
    auto host = hostNamed("a");
    host.authMethod = AuthMethod::password;
    storeHosts({host, hostNamed("b")});
    system_.credentials.items[{"com.velmora.app", host.id.toString()}] = "secret";
    auto& manager = start();
    system_.scheduler.advance(3s);
    manager.deleteHost(host.id);
    EXPECT_EQ(system_.launcher.process(0).terminations, 1);
    EXPECT_FALSE(manager.statuses()->contains(host.id));
    EXPECT_THAT(system_.credentials.items, IsEmpty());
    ASSERT_EQ(manager.hosts()->size(), 1U);
    EXPECT_EQ(manager.hosts()->front().name, "b");
    EXPECT_EQ(*decodeHosts(contentOf(hostsFile())), manager.hosts().get());
    EXPECT_TRUE(std::filesystem::is_empty(system_.runtime.path()));
}

TEST_F(TunnelManagerTest, AHostThatIsDeletedLosesItsPasswordLastOfAllBeforeTheFileIsWritten) {
    const auto host = hostNamed("a");
    storeHosts({host});
    auto& manager = start();
    system_.scheduler.advance(3s);
    int removals = 0;
    system_.credentials.onRemove = [&] {
        ++removals;
        EXPECT_EQ(system_.launcher.process(0).terminations, 1);
        EXPECT_THAT(manager.hosts().get(), IsEmpty());
        EXPECT_FALSE(manager.statuses()->contains(host.id));
        EXPECT_EQ(*decodeHosts(contentOf(hostsFile())), std::vector{host});
    };
    manager.deleteHost(host.id);
    EXPECT_EQ(removals, 1);
    EXPECT_EQ(contentOf(hostsFile()), "[]");
}

TEST_F(TunnelManagerTest, DeletingAHostInTheWaitLeavesNoRetry) {
    const auto host = hostNamed("a");
    storeHosts({host});
    auto& manager = start();
    system_.launcher.last().exit(1);
    system_.scheduler.runPosted();
    manager.deleteHost(host.id);
    system_.scheduler.advance(1h);
    EXPECT_EQ(system_.launcher.count(), 1U);
}

TEST_F(TunnelManagerTest, DeletingAnUnknownHostStillForgetsItsPassword) {
    const auto id = Uuid::random();
    system_.credentials.items[{"com.velmora.app", id.toString()}] = "secret";
    start().deleteHost(id);
    EXPECT_THAT(system_.credentials.items, IsEmpty());
    EXPECT_EQ(contentOf(hostsFile()), "[]");
}

// ---- the environment of ssh ----

TEST_F(TunnelManagerTest, AnAgentSocketInTheEnvironmentIsKept) {
    storeHosts({hostNamed("a")});
    start();
    EXPECT_EQ(system_.launcher.last().environment, system_.environment);
    EXPECT_THAT(system_.runner.runs, IsEmpty());
}

TEST_F(TunnelManagerTest, AMissingAgentSocketIsAskedOfTheSession) {
    system_.environment = {{"HOME", "/x"}, {"SSH_AUTH_SOCK", ""}};
    system_.runner.answers["/bin/launchctl"] = {
        .status = 0, .standardOutput = " /private/agent \n", .standardError = {}};
    storeHosts({hostNamed("a")});
    start();
    EXPECT_EQ(system_.launcher.last().environment.at("SSH_AUTH_SOCK"), "/private/agent");
    EXPECT_THAT(system_.runner.runs, ElementsAre(std::pair(std::string("/bin/launchctl"),
                                                           std::vector<std::string>{"getenv", "SSH_AUTH_SOCK"})));
}

TEST_F(TunnelManagerTest, WithoutAnAnswerInTextTheEnvironmentStaysAsItIs) {
    system_.environment = {{"HOME", "/x"}};
    storeHosts({hostNamed("a")});
    start();
    EXPECT_EQ(system_.launcher.last().environment, system_.environment);
    for (const std::string answer : {"\n", "/private/\xFF\n"}) {
        system_.runner.answers["/bin/launchctl"] = {.status = 0, .standardOutput = answer, .standardError = {}};
        start();
        EXPECT_EQ(system_.launcher.last().environment, system_.environment) << testing::PrintToString(answer);
    }
}

// ---- queries ----

TEST_F(TunnelManagerTest, UptimeFollowsTheConnectionTimeWhateverTheStatus) {
    storeHosts({hostNamed("a")});
    auto& manager = start();
    const auto id = manager.hosts()->front().id;
    EXPECT_EQ(manager.uptimeString(id), std::nullopt);
    system_.scheduler.advance(3s);
    EXPECT_EQ(manager.uptimeString(id), "< 1m");
    system_.scheduler.advance(59s);
    EXPECT_EQ(manager.uptimeString(id), "< 1m");
    system_.scheduler.advance(1s);
    EXPECT_EQ(manager.uptimeString(id), "1m");
    manager.statuses().edit([&](StatusTable& table) { table[id] = ConnectionStatus::error("odd"); });
    EXPECT_EQ(manager.uptimeString(id), "1m");
    system_.scheduler.shiftClock(-24h);
    EXPECT_EQ(manager.uptimeString(id), "< 1m");
}

TEST_F(TunnelManagerTest, OnlyConnectingAndConnectedHostsAreActive) {
    auto quiet = hostNamed("quiet");
    quiet.connectOnStartup = false;
    storeHosts({hostNamed("a"), quiet});
    auto& manager = start();
    const auto host = manager.hosts()->front();
    EXPECT_TRUE(manager.isActive(host));
    system_.scheduler.advance(3s);
    EXPECT_TRUE(manager.isActive(host));
    system_.launcher.last().exit(1);
    system_.scheduler.runPosted();
    EXPECT_FALSE(manager.isActive(host));
    EXPECT_FALSE(manager.isActive(quiet));
}

TEST_F(TunnelManagerTest, TheCommandTextUsesTheSettingsOfNow) {
    auto& manager = start();
    const auto host = hostNamed("a");
    EXPECT_THAT(manager.sshCommand(host), Not(HasSubstr("-J")));
    manager.setGlobalProxyJump("jump");
    manager.setGlobalProxyJumpEnabled(true);
    EXPECT_THAT(manager.sshCommand(host), HasSubstr(" -J jump "));
}

TEST_F(TunnelManagerTest, PortsAreSuggestedAndJudgedFromTheList) {
    auto a = hostNamed("a");
    a.connectOnStartup = false;
    a.forwardingRules.emplace_back();
    a.forwardingRules[0].bindPort = 21000;
    storeHosts({a});
    auto& manager = start();
    EXPECT_EQ(manager.suggestedDynamicPort(), 21001);
    auto b = hostNamed("b");
    b.forwardingRules = a.forwardingRules;
    EXPECT_EQ(manager.portConflicts(b), (std::vector<TunnelManager::PortConflict>{{21000, "a"}}));
}

TEST_F(TunnelManagerTest, TheLogStandsUnderTheHostsName) {
    EXPECT_EQ(start().logURL(hostNamed("a")), system_.home / "state/Logs/Velmora/a.log");
}

}  // namespace
}  // namespace velmora
