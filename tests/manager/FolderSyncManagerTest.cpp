#include "fakes/FakeSystem.h"
#include "manager/TunnelManager.h"
#include "model/HostJson.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace velmora {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

/// A manager whose home and shared folder are a test's own.
class FolderSyncManagerTest : public testing::Test {
protected:
    FolderSyncManagerTest() { fs::create_directory(folder()); }

    TunnelManager& start() {
        manager_.reset();
        manager_.emplace(system_.platform());
        return *manager_;
    }

    /// With hosts and a folder, both in step.
    TunnelManager& startSharing(const std::vector<SSHHost>& hosts) {
        storeHosts(hosts);
        auto& manager = start();
        manager.folderSync().setFolder(folder());
        manager.folderSync().push(manager.hosts().get());
        system_.scheduler.advance(3s);
        return manager;
    }

    void poll() { system_.scheduler.advance(5s); }

    fs::path hostsFile() const { return system_.home / "share/Velmora/hosts.json"; }
    fs::path folder() const { return system_.home / "shared"; }
    fs::path syncFile() const { return folder() / "velmora-sync.json"; }

    void storeHosts(const std::vector<SSHHost>& hosts) const {
        fs::create_directories(hostsFile().parent_path());
        writeContent(hostsFile(), *encodeHosts(hosts));
    }

    /// Another machine saves: later than anything here, however coarse the file system's clock is.
    void writeFromElsewhere(const std::string& content) {
        writeContent(syncFile(), content);
        fs::last_write_time(syncFile(), laterDate_ += 1s);
    }
    void writeFromElsewhere(const std::vector<SSHHost>& hosts) { writeFromElsewhere(*encodeHosts(hosts)); }

    static SSHHost hostNamed(const std::string& name) {
        SSHHost host;
        host.name = name;
        host.hostname = name + ".example";
        return host;
    }

    FakeSystem system_;
    std::optional<TunnelManager> manager_;
    fs::file_time_type laterDate_ = fs::file_time_type::clock::now() + 1h;
};

// ---- saving ----

TEST_F(FolderSyncManagerTest, WhileDisabledSaveWritesTheHostsFileOnlyAndNoTimerRuns) {
    auto& manager = start();
    manager.hosts().set({hostNamed("a")});
    manager.save();
    EXPECT_TRUE(fs::exists(hostsFile()));
    EXPECT_TRUE(fs::is_empty(folder()));
    EXPECT_EQ(system_.scheduler.pendingTimers(), 0U);
}

TEST_F(FolderSyncManagerTest, EverySaveWritesTheSameListToTheFolder) {
    auto& manager = startSharing({});
    manager.hosts().set({hostNamed("b"), hostNamed("a")});
    EXPECT_EQ(contentOf(syncFile()), "[]") << "a change by itself writes nothing";
    manager.save();
    EXPECT_EQ(contentOf(syncFile()), *encodeHosts(manager.hosts().get()));
    EXPECT_EQ(contentOf(syncFile()), contentOf(hostsFile()));
    manager.deleteHost(manager.hosts()->front().id);
    EXPECT_EQ(contentOf(syncFile()), contentOf(hostsFile()));
}

TEST_F(FolderSyncManagerTest, OwnSaveIsNotAppliedAtTheNextPoll) {
    auto& manager = startSharing({hostNamed("a")});
    manager.save();
    const auto unsaved = std::vector{hostNamed("not saved yet")};
    manager.hosts().set(unsaved);
    poll();
    EXPECT_EQ(manager.hosts().get(), unsaved);
}

TEST_F(FolderSyncManagerTest, ChoosingAFolderAndDisablingLikeTheSettingsDo) {
    writeFromElsewhere({hostNamed("theirs")});
    auto& manager = startSharing({hostNamed("mine")});
    poll();
    EXPECT_EQ(manager.hosts()->front().name, "mine") << "the local list has replaced the file's";
    manager.folderSync().disable();
    const auto left = contentOf(syncFile());
    manager.hosts().set({});
    manager.save();
    EXPECT_EQ(contentOf(syncFile()), left);
}

// ---- receiving ----

TEST_F(FolderSyncManagerTest, AnEmptyListDisconnectsAndRemovesEveryHost) {
    auto& manager = startSharing({hostNamed("a"), hostNamed("b")});
    writeFromElsewhere("[]");
    poll();
    EXPECT_THAT(manager.hosts().get(), IsEmpty());
    EXPECT_EQ(system_.launcher.process(0).terminations, 1);
    EXPECT_EQ(system_.launcher.process(1).terminations, 1);
    EXPECT_EQ(contentOf(hostsFile()), "[]");
}

TEST_F(FolderSyncManagerTest, ADroppedConnectedHostIsDisconnectedAndItsPasswordStays) {
    const auto a = hostNamed("a");
    auto b = hostNamed("b");
    b.authMethod = AuthMethod::password;
    system_.credentials.items[{"com.velmora.app", b.id.toString()}] = "secret";
    auto& manager = startSharing({a, b});
    ASSERT_EQ(manager.status(b.id), ConnectionStatus::connected());
    writeFromElsewhere({a});
    poll();
    EXPECT_THAT(manager.hosts().get(), ElementsAre(a));
    EXPECT_EQ(system_.launcher.process(0).terminations, 0);
    EXPECT_EQ(system_.launcher.process(1).terminations, 1);
    EXPECT_EQ(manager.status(b.id), ConnectionStatus::disconnected());
    EXPECT_EQ(system_.credentials.items.size(), 1U) << "removal through the folder is no deletion";
}

TEST_F(FolderSyncManagerTest, AChangedPortOfAConnectedHostAppliesAtItsNextConnect) {
    auto a = hostNamed("a");
    auto& manager = startSharing({a});
    const auto connectedAt = manager.connectedAt()->at(a.id);
    a.port = 2222;
    writeFromElsewhere({a});
    poll();
    EXPECT_EQ(manager.hosts()->front().port, 2222);
    EXPECT_EQ(system_.launcher.count(), 1U);
    EXPECT_EQ(system_.launcher.last().terminations, 0);
    EXPECT_EQ(manager.status(a.id), ConnectionStatus::connected());
    EXPECT_EQ(manager.connectedAt()->at(a.id), connectedAt);
    manager.disconnect(manager.hosts()->front());
    manager.connect(manager.hosts()->front());
    EXPECT_THAT(system_.launcher.last().arguments, testing::Contains("2222"));
}

TEST_F(FolderSyncManagerTest, OrderNamesAndEveryFieldComeFromTheFile) {
    auto a = hostNamed("a");
    const auto b = hostNamed("b");
    auto& manager = startSharing({a, b});
    a.name = "renamed";
    a.tags = "x";
    const std::vector received{hostNamed("new"), b, a};
    writeFromElsewhere(received);
    poll();
    EXPECT_EQ(manager.hosts().get(), received);
    EXPECT_EQ(*decodeHosts(contentOf(hostsFile())), received);
    EXPECT_EQ(system_.launcher.count(), 2U) << "a received host is not connected by itself";
}

TEST_F(FolderSyncManagerTest, AReceivedListIsNotPushedBack) {
    auto& manager = startSharing({});
    const auto theirs = "[ " + encodeHosts({hostNamed("theirs")})->substr(1);
    writeFromElsewhere(theirs);
    const auto saveAtEveryChange = manager.hosts().observe([&] { manager.save(); });
    poll();
    EXPECT_EQ(manager.hosts()->size(), 1U);
    EXPECT_EQ(contentOf(hostsFile()), *encodeHosts(manager.hosts().get()));
    EXPECT_EQ(contentOf(syncFile()), theirs);
}

TEST_F(FolderSyncManagerTest, AfterAReceivedListSavesArePushedAgain) {
    auto& manager = startSharing({});
    writeFromElsewhere({hostNamed("theirs")});
    poll();
    manager.hosts().edit([](std::vector<SSHHost>& hosts) { hosts.push_back(hostNamed("mine")); });
    manager.save();
    EXPECT_EQ(*decodeHosts(contentOf(syncFile())), manager.hosts().get());
}

TEST_F(FolderSyncManagerTest, AMalformedFileChangesNothing) {
    auto& manager = startSharing({hostNamed("a")});
    const auto before = contentOf(hostsFile());
    writeFromElsewhere("not JSON");
    poll();
    EXPECT_EQ(manager.hosts()->size(), 1U);
    EXPECT_EQ(contentOf(hostsFile()), before);
    EXPECT_EQ(system_.launcher.last().terminations, 0);
}

TEST_F(FolderSyncManagerTest, TheListThatIsReplacedIsKeptBesideTheHostsFile) {
    const std::vector mine{hostNamed("mine")};
    startSharing(mine);
    writeFromElsewhere("[]");
    poll();
    const auto kept = hostsFile().string() + ".before-sync";
    EXPECT_EQ(*decodeHosts(contentOf(kept)), mine);
    EXPECT_EQ(modeOf(kept), 0600);
    writeFromElsewhere({hostNamed("theirs")});
    poll();
    writeFromElsewhere("[]");
    poll();
    EXPECT_EQ(*decodeHosts(contentOf(kept)), mine) << "the first of the day";
}

TEST_F(FolderSyncManagerTest, WhatAReceivedListRemovesLaterOnTheDayIsKeptToo) {
    auto& manager = startSharing({hostNamed("mine")});
    const std::vector theirs{hostNamed("theirs")};
    writeFromElsewhere(theirs);
    poll();
    manager.hosts().edit([](std::vector<SSHHost>& hosts) { hosts.push_back(hostNamed("made since")); });
    manager.save();
    const auto before = manager.hosts().get();
    writeFromElsewhere(theirs);
    poll();
    EXPECT_EQ(*decodeHosts(contentOf(hostsFile().string() + ".before-removal")), before);
}

// ---- launch ----

TEST_F(FolderSyncManagerTest, AtLaunchTheFoldersListWinsAndTheFirstPollWritesIt) {
    const std::vector local{hostNamed("local")};
    const std::vector shared{hostNamed("x"), hostNamed("y")};
    storeHosts(local);
    writeFromElsewhere(shared);
    system_.defaults.setString("syncFolderPath", folder().string());
    auto& manager = start();
    EXPECT_EQ(manager.hosts().get(), shared);
    EXPECT_EQ(contentOf(hostsFile()), *encodeHosts(local)) << "nothing is written at launch";
    EXPECT_EQ(system_.launcher.last().arguments.back(), "local.example") << "the local file's hosts had been connected";
    EXPECT_EQ(system_.launcher.count(), 1U);
    int changes = 0;
    const auto counting = manager.hosts().observe([&] { ++changes; });
    system_.scheduler.advance(4999ms);
    EXPECT_EQ(changes, 0);
    system_.scheduler.advance(1ms);
    EXPECT_EQ(changes, 1) << "an unknown date counts as a change";
    EXPECT_EQ(contentOf(hostsFile()), *encodeHosts(shared));
    poll();
    EXPECT_EQ(changes, 1);
}

TEST_F(FolderSyncManagerTest, TheLocalListThatTheFolderReplacesAtLaunchIsKept) {
    const std::vector local{hostNamed("local")};
    storeHosts(local);
    writeFromElsewhere({hostNamed("x")});
    system_.defaults.setString("syncFolderPath", folder().string());
    start();
    poll();
    EXPECT_EQ(*decodeHosts(contentOf(hostsFile().string() + ".before-sync")), local);
}

TEST_F(FolderSyncManagerTest, AtLaunchAnEmptyHostsFileTakesTheFoldersTwoHosts) {
    storeHosts({});
    writeFromElsewhere({hostNamed("x"), hostNamed("y")});
    system_.defaults.setString("syncFolderPath", folder().string());
    EXPECT_EQ(start().hosts()->size(), 2U);
    EXPECT_EQ(contentOf(hostsFile()), "[]");
}

TEST_F(FolderSyncManagerTest, AtLaunchWithoutAFileInTheFolderTheLocalListStays) {
    const std::vector local{hostNamed("local")};
    storeHosts(local);
    system_.defaults.setString("syncFolderPath", folder().string());
    auto& manager = start();
    EXPECT_EQ(manager.hosts().get(), local);
    EXPECT_TRUE(fs::is_empty(folder()));
    writeFromElsewhere("[]");
    poll();
    EXPECT_THAT(manager.hosts().get(), IsEmpty());
}

TEST_F(FolderSyncManagerTest, PollingEndsWithTheManager) {
    startSharing({});
    manager_.reset();
    EXPECT_EQ(system_.scheduler.pendingTimers(), 0U);
}

// ---- Core Tunnel import ----

class CoreTunnelManagerTest : public FolderSyncManagerTest {
protected:
    ImportResult import(const std::string& content) {
        writeContent(system_.home / "backup.coretunnel", content);
        return manager_->importFromCoreTunnel(system_.home / "backup.coretunnel");
    }
};

constexpr auto twoProfiles = R"({"profiles":[{"name":"one","address":"a.example"},{"name":"two","address":"b"}]})";

TEST_F(CoreTunnelManagerTest, NewProfilesAreAppendedInOneChangeSavedAndShared) {
    auto& manager = startSharing({hostNamed("here")});
    int changes = 0;
    const auto counting = manager.hosts().observe([&] { ++changes; });
    const auto result = import(twoProfiles);
    EXPECT_EQ(result.imported, 2);
    EXPECT_EQ(result.skipped, 0);
    EXPECT_EQ(changes, 1);
    ASSERT_EQ(manager.hosts()->size(), 3U);
    EXPECT_EQ(manager.hosts()->at(1).name, "one");
    EXPECT_EQ(contentOf(hostsFile()), *encodeHosts(manager.hosts().get()));
    EXPECT_EQ(contentOf(syncFile()), contentOf(hostsFile()));
}

TEST_F(CoreTunnelManagerTest, TheSameBackupTwiceSkipsEveryProfile) {
    auto& manager = start();
    import(twoProfiles);
    const auto result = import(twoProfiles);
    EXPECT_EQ(result.imported, 0);
    EXPECT_EQ(result.skipped, 2);
    EXPECT_EQ(manager.hosts()->size(), 2U);
}

TEST_F(CoreTunnelManagerTest, AnEmptyBackupStillSavesAndABadOneDoesNot) {
    start();
    const auto bad = import("[]");
    EXPECT_EQ(bad.imported + bad.skipped, 0);
    EXPECT_FALSE(fs::exists(hostsFile()));
    const auto empty = import(R"({"profiles":[]})");
    EXPECT_EQ(empty.imported + empty.skipped, 0);
    EXPECT_EQ(contentOf(hostsFile()), "[]");
}

}  // namespace
}  // namespace velmora
