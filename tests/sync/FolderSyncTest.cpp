#include "base/AtomicFile.h"
#include "fakes/Waiting.h"
#include "sync/FolderSyncFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <thread>

namespace velmora {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto settingsKey = "syncFolderPath";

class FolderSyncTest : public FolderSyncFixture {
protected:
    FolderSyncTest() { fs::create_directory(folder()); }

    std::string json() const { return *encodeHosts(hosts_); }
};

// ---- enabled and disabled ----

TEST_F(FolderSyncTest, WhileDisabledNothingIsWrittenReadOrPolled) {
    EXPECT_FALSE(sync_.isEnabled());
    EXPECT_EQ(sync_.folder(), std::nullopt);
    EXPECT_EQ(sync_.folderDisplayName(), std::nullopt);
    sync_.push(hosts_);
    EXPECT_EQ(sync_.pull(), std::nullopt);
    sync_.startPollingIfEnabled();
    EXPECT_EQ(scheduler_.pendingTimers(), 0U);
    EXPECT_TRUE(fs::is_empty(folder()));
    EXPECT_FALSE(defaults_.contains(settingsKey));
}

TEST_F(FolderSyncTest, TheFolderComesFromTheSettingsAndNothingElseHappensAtFirst) {
    writeFromElsewhere(json(), 0);
    defaults_.setString(settingsKey, folder().string());
    FolderSync restarted(scheduler_, defaults_);
    EXPECT_TRUE(restarted.isEnabled());
    EXPECT_EQ(restarted.folder(), folder());
    EXPECT_EQ(restarted.folderDisplayName(), "shared");
    EXPECT_EQ(scheduler_.pendingTimers(), 0U);
    restarted.startPollingIfEnabled();
    EXPECT_EQ(scheduler_.pendingTimers(), 1U);
}

TEST_F(FolderSyncTest, AnEmptyPathInTheSettingsIsNoFolder) {
    defaults_.setString(settingsKey, "");
    EXPECT_FALSE(FolderSync(scheduler_, defaults_).isEnabled());
}

TEST_F(FolderSyncTest, ChoosingAFolderRemembersItAndPollsButTouchesNoFile) {
    sync_.setFolder(folder());
    EXPECT_TRUE(sync_.isEnabled());
    EXPECT_EQ(defaults_.string(settingsKey), folder().string());
    EXPECT_EQ(scheduler_.pendingTimers(), 1U);
    EXPECT_TRUE(fs::is_empty(folder()));
    sync_.setFolder(directory_.path());
    EXPECT_EQ(scheduler_.pendingTimers(), 1U) << "one timer for the new folder";
    EXPECT_EQ(sync_.folder(), directory_.path());
}

TEST_F(FolderSyncTest, TheFolderIsShownByItsOwnName) {
    sync_.setFolder("/home/anna/Cloud Drive/");
    EXPECT_EQ(sync_.folderDisplayName(), "Cloud Drive");
    EXPECT_EQ(defaults_.string(settingsKey), "/home/anna/Cloud Drive");
    sync_.setFolder("/");
    EXPECT_EQ(sync_.folderDisplayName(), "/");
}

TEST_F(FolderSyncTest, DisablingLeavesTheFileAndForgetsTheFolder) {
    sync_.setFolder(folder());
    sync_.push(hosts_);
    sync_.disable();
    EXPECT_EQ(contentOf(file()), json());
    EXPECT_FALSE(sync_.isEnabled());
    EXPECT_FALSE(defaults_.contains(settingsKey));
    EXPECT_EQ(scheduler_.pendingTimers(), 0U);
    writeFromElsewhere("[]", 0);
    poll();
    EXPECT_THAT(received_, IsEmpty());
}

TEST_F(FolderSyncTest, EnablingAgainOnTheSameFolderOverwritesTheFileWithTheLocalList) {
    writeFromElsewhere(*encodeHosts({syncedHost("theirs")}), 0);
    sync_.setFolder(folder());
    sync_.push(hosts_);
    EXPECT_EQ(contentOf(file()), json());
    poll();
    EXPECT_THAT(received_, IsEmpty()) << "what was written is not read back";
}

// ---- the file ----

TEST_F(FolderSyncTest, TheFileIsWhatTheHostsFileHolds) {
    sync_.setFolder(folder());
    sync_.push(hosts_);
    EXPECT_EQ(contentOf(file()), json());
    EXPECT_EQ(modeOf(file()), 0600);
    EXPECT_EQ(sync_.pull(), hosts_);
    sync_.push({});
    EXPECT_EQ(contentOf(file()), "[]");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder()), fs::directory_iterator()), 1);
}

TEST_F(FolderSyncTest, HostsThatCannotBeWrittenLeaveTheFileAndItsDate) {
    sync_.setFolder(folder());
    sync_.push(hosts_);
    writeFromElsewhere("[]", 0);
    sync_.push({syncedHost("\xFF")});
    EXPECT_EQ(contentOf(file()), "[]");
    poll();
    EXPECT_THAT(received_, ElementsAre(IsEmpty())) << "the other's change is still news";
}

// ---- polling ----

TEST_F(FolderSyncTest, TheFirstLookIsAfterFiveSecondsAndThenEveryFive) {
    writeFromElsewhere("[]", 0);
    sync_.setFolder(folder());
    scheduler_.advance(4999ms);
    EXPECT_THAT(received_, IsEmpty());
    scheduler_.advance(1ms);
    EXPECT_THAT(received_, SizeIs(1)) << "an unknown date differs from any";
    writeFromElsewhere(json(), 1);
    scheduler_.advance(4999ms);
    EXPECT_THAT(received_, SizeIs(1));
    scheduler_.advance(1ms);
    EXPECT_THAT(received_, ElementsAre(IsEmpty(), hosts_));
}

TEST_F(FolderSyncTest, OnlyAChangedFileIsDelivered) {
    writeFromElsewhere(json(), 0);
    sync_.setFolder(folder());
    for (int i = 0; i < 10; ++i) {
        poll();
    }
    EXPECT_THAT(received_, ElementsAre(hosts_));
}

TEST_F(FolderSyncTest, OwnPushIsNotReadBack) {
    sync_.setFolder(folder());
    for (int i = 0; i < 3; ++i) {
        sync_.push(hosts_);
        poll();
    }
    EXPECT_THAT(received_, IsEmpty());
}

TEST_F(FolderSyncTest, ANanosecondIsADifference) {
    writeFromElsewhere(json(), 1'000'000'001);
    sync_.setFolder(folder());
    poll();
    setDate(1'000'000'002);
    poll();
    EXPECT_THAT(received_, SizeIs(2));
}

TEST_F(FolderSyncTest, AnOlderCopyIsApplied) {
    sync_.setFolder(folder());
    sync_.push({});
    writeFromElsewhere(json(), -1'000'000'000);
    poll();
    EXPECT_THAT(received_, ElementsAre(hosts_));
}

TEST_F(FolderSyncTest, ChoosingAFolderForgetsTheDateOfAFileSeenBefore) {
    writeFromElsewhere(json(), 0);
    sync_.setFolder(folder());
    poll();
    ASSERT_THAT(received_, SizeIs(1));
    sync_.setFolder(folder());
    poll();
    EXPECT_THAT(received_, SizeIs(2));
}

TEST_F(FolderSyncTest, APushThatFailsForgetsTheDateOfTheOneBefore) {
    sync_.setFolder(folder());
    sync_.push(hosts_);
    const auto date = fs::last_write_time(file());
    const auto elsewhere = directory_ / "elsewhere";
    fs::rename(folder(), elsewhere);
    sync_.push({});
    fs::rename(elsewhere, folder());
    ASSERT_EQ(fs::last_write_time(file()), date);
    poll();
    EXPECT_THAT(received_, ElementsAre(hosts_)) << "what is in the folder is not what was pushed last";
}

TEST_F(FolderSyncTest, AMalformedFileIsNotRetriedUntilItsDateChanges) {
    writeFromElsewhere("not JSON", 0);
    sync_.setFolder(folder());
    poll();
    writeFromElsewhere(json(), 0);  // decodable now, and of the same date
    poll();
    EXPECT_THAT(received_, IsEmpty());
    setDate(1);
    poll();
    EXPECT_THAT(received_, ElementsAre(hosts_));
}

TEST_F(FolderSyncTest, AFileThatVanishesIsNoChange) {
    sync_.setFolder(folder());
    sync_.push(hosts_);
    fs::remove(file());
    poll();
    EXPECT_THAT(received_, IsEmpty());
    writeFromElsewhere("[]", 0);
    poll();
    EXPECT_THAT(received_, ElementsAre(IsEmpty()));
}

TEST_F(FolderSyncTest, PullDoesNotCountAsHavingSeenTheFile) {
    writeFromElsewhere(json(), 0);
    defaults_.setString(settingsKey, folder().string());
    FolderSync launched(scheduler_, defaults_);
    int deliveries = 0;
    launched.setOnChange([&](const auto& hosts) {
        EXPECT_EQ(hosts, hosts_);
        ++deliveries;
    });
    EXPECT_EQ(launched.pull(), hosts_);
    launched.startPollingIfEnabled();
    EXPECT_EQ(deliveries, 0);
    poll();
    EXPECT_EQ(deliveries, 1) << "the first look after a launch delivers the file once more";
    poll();
    EXPECT_EQ(deliveries, 1);
}

TEST_F(FolderSyncTest, TheHandlerMayDisable) {
    writeFromElsewhere(json(), 0);
    sync_.setFolder(folder());
    sync_.setOnChange([this](const auto& hosts) {
        received_.push_back(hosts);
        sync_.disable();
    });
    poll();
    poll();
    EXPECT_THAT(received_, SizeIs(1));
    EXPECT_EQ(scheduler_.pendingTimers(), 0U);
}

TEST_F(FolderSyncTest, WithoutAHandlerAChangeIsDropped) {
    writeFromElsewhere(json(), 0);
    sync_.setOnChange(nullptr);
    sync_.setFolder(folder());
    poll();
    EXPECT_THAT(received_, IsEmpty());
}

TEST_F(FolderSyncTest, PollingEndsWithTheSynchroniser) {
    defaults_.setString(settingsKey, folder().string());
    {
        FolderSync shortLived(scheduler_, defaults_);
        shortLived.startPollingIfEnabled();
        EXPECT_EQ(scheduler_.pendingTimers(), 1U);
    }
    EXPECT_EQ(scheduler_.pendingTimers(), 0U);
}

TEST_F(FolderSyncTest, TwoMachinesTheLaterWriteWinsOnBothSides) {
    InMemoryDefaultsStore otherDefaults;
    FolderSync other(scheduler_, otherDefaults);
    std::vector<std::vector<SSHHost>> receivedByOther;
    other.setOnChange([&](std::vector<SSHHost> hosts) { receivedByOther.push_back(std::move(hosts)); });
    sync_.setFolder(folder());
    other.setFolder(folder());
    const std::vector later{syncedHost("later")};
    sync_.push(hosts_);
    setDate(0);  // so that the two writes differ however coarse the file system's clock is
    other.push(later);
    poll();
    EXPECT_THAT(received_, ElementsAre(later));
    EXPECT_THAT(receivedByOther, IsEmpty());
    EXPECT_EQ(contentOf(file()), *encodeHosts(later));
}

// ---- folders and files that are not as they should be ----

TEST_F(FolderSyncTest, AMissingFolderChangesNothingAndIsUsedOnceItIsThere) {
    fs::remove(folder());
    sync_.setFolder(folder());
    sync_.push(hosts_);
    poll();
    EXPECT_FALSE(fs::exists(folder()));
    EXPECT_EQ(sync_.pull(), std::nullopt);
    fs::create_directory(folder());
    writeFromElsewhere(json(), 0);
    poll();
    EXPECT_THAT(received_, ElementsAre(hosts_));
}

TEST_F(FolderSyncTest, AFileInsteadOfAFolderChangesNothing) {
    fs::remove(folder());
    writeContent(folder(), "a file");
    sync_.setFolder(folder());
    sync_.push(hosts_);
    poll();
    EXPECT_EQ(sync_.pull(), std::nullopt);
    EXPECT_EQ(contentOf(folder()), "a file");
    EXPECT_THAT(received_, IsEmpty());
}

TEST_F(FolderSyncTest, ASyncFileThatIsADirectoryChangesNothing) {
    fs::create_directory(file());
    sync_.setFolder(folder());
    sync_.push(hosts_);
    poll();
    EXPECT_EQ(sync_.pull(), std::nullopt);
    EXPECT_TRUE(fs::is_empty(file()));
    EXPECT_THAT(received_, IsEmpty());
}

TEST_F(FolderSyncTest, ASyncFileThatIsAPipeDoesNotBlock) {
    ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
    sync_.setFolder(folder());
    poll();
    EXPECT_EQ(sync_.pull(), std::nullopt);
    EXPECT_THAT(received_, IsEmpty());
}

TEST_F(FolderSyncTest, WhatIsNoListOfHostsInUtf8ChangesNothing) {
    sync_.setFolder(folder());
    std::int64_t date = 0;
    for (const auto* content : {"", " ", "null", "{}", "[1]", R"([{"port":"22"}])", "[{\"name\":\"\xFF\"}]",
                                "\xFF\xFE[]", "[]]", R"([{"authMethod":"key"}])"}) {
        writeFromElsewhere(content, ++date);
        poll();
        EXPECT_EQ(sync_.pull(), std::nullopt) << content;
    }
    EXPECT_THAT(received_, IsEmpty());
}

TEST_F(FolderSyncTest, AFileTruncatedAtAnyByteChangesNothing) {
    sync_.setFolder(folder());
    const auto whole = *encodeHosts({syncedHost("caf\xC3\xA9")});
    for (std::size_t length = 0; length < whole.size(); ++length) {
        writeFromElsewhere(whole.substr(0, length), static_cast<std::int64_t>(length));
        poll();
        ASSERT_THAT(received_, IsEmpty()) << length;
    }
    writeFromElsewhere(whole, -1);
    poll();
    EXPECT_THAT(received_, SizeIs(1));
}

TEST_F(FolderSyncTest, AFileOf100MegabytesIsReadAndOneBeyondTheLimitIsNot) {
    sync_.setFolder(folder());
    const std::string tags(100'000'000, 'x');
    writeFromElsewhere(R"([{"tags":")" + tags + R"("}])", 0);
    poll();
    ASSERT_THAT(received_, SizeIs(1));
    EXPECT_EQ(received_[0].at(0).tags, tags);
    writeFromElsewhere(std::string(100'000'000, 'x'), 1);
    poll();
    fs::resize_file(file(), maximumHostListSize + 1);
    setDate(2);
    poll();
    EXPECT_THAT(received_, SizeIs(1));
}

// ---- others at work at the same time ----

/// Gives the file ever later dates while the program reads it, as somebody does who is still writing.
class RestlessFile final {
public:
    explicit RestlessFile(const fs::path& file)
        : thread_([this, file, date = fs::last_write_time(file)]() mutable {
              while (!done_) {
                  date += 1us;
                  fs::last_write_time(file, date);
              }
          }) {}
    RestlessFile(const RestlessFile&) = delete;
    RestlessFile& operator=(const RestlessFile&) = delete;
    ~RestlessFile() {
        done_ = true;
        thread_.join();
    }

private:
    std::atomic<bool> done_ = false;
    std::thread thread_;
};

TEST_F(FolderSyncTest, AFileThatChangesWhileItIsReadIsDeliveredOnceItRests) {
    std::vector<SSHHost> many(5000, syncedHost("one of many"));
    writeFromElsewhere(*encodeHosts(many), 0);
    sync_.setFolder(folder());
    {
        const RestlessFile restless(file());
        EXPECT_TRUE(waitFor([&] { return sync_.pull() == std::nullopt; }));
        EXPECT_TRUE(waitFor([&] {
            received_.clear();
            poll();
            return received_.empty();
        }));
    }
    poll();
    EXPECT_THAT(received_, ElementsAre(many));
}

/// Reads the file as fast as it can until somebody makes the file `stop`; ends with 0 when it has seen whole lists
/// only.
int readUntilStopped(const fs::path& file, const fs::path& stop, std::size_t few, std::size_t many) {
    std::size_t reads = 0;
    while (!fs::exists(stop)) {
        const auto hosts = decodeHosts(contentOf(file));
        if (!hosts || (hosts->size() != few && hosts->size() != many)) {
            return 1;
        }
        ++reads;
    }
    return reads > 0 ? 0 : 2;
}

TEST_F(FolderSyncTest, AReaderInAnotherProcessNeverSeesHalfAFileOver1000Saves) {
    const std::vector<SSHHost> few(2, syncedHost("few"));
    const std::vector<SSHHost> many(100, syncedHost("many"));
    sync_.setFolder(folder());
    sync_.push(few);
    const auto stop = directory_ / "stop";
    const pid_t reader = ::fork();
    if (reader == 0) {
        ::_exit(readUntilStopped(file(), stop, few.size(), many.size()));
    }
    for (int i = 0; i < 1000; ++i) {
        sync_.push(i % 2 == 0 ? many : few);
    }
    writeContent(stop, "");
    int status = -1;
    ASSERT_EQ(::waitpid(reader, &status, 0), reader);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
}  // namespace velmora
