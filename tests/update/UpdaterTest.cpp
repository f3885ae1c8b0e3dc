#include "UpdateFakes.h"
#include "ZipWriter.h"
#include "fakes/InMemoryDefaultsStore.h"
#include "fakes/InlineWorker.h"
#include "fakes/TemporaryDirectory.h"
#include "fakes/VirtualScheduler.h"
#include "update/UpdateIdentity.h"
#include "update/Updater.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

using Text = std::optional<std::string>;

class UpdaterTest : public testing::Test {
protected:
    UpdaterTest() { create(); }

    void create() {
        updater = std::make_unique<Updater>(
            UpdaterServices{.scheduler = scheduler,
                            .defaults = defaults,
                            .worker = worker,
                            .http = http,
                            .bundles = tools,
                            .launcher = launcher,
                            .alert = alert,
                            .temporaryFolder = root / "temporary",
                            .runningBundle = {.path = root / "Velmora.app", .isBundle = true, .version = version},
                            .defaultFeedURL = "https://updates.example/velmora/appcast.json",
                            .terminate = [this] { ++terminations; }});
    }

    void feedHas(const std::string& body) {
        http.answer = [body] { return HttpAnswer{.status = 200, .body = body}; };
    }
    void feedOffers(const std::string& newVersion) {
        feedHas(R"({"version": ")" + newVersion + R"(", "url": "https://updates.example/a.zip"})");
    }
    void feedAnswers(int status) {
        http.answer = [status] { return HttpAnswer{.status = status, .body = "x"}; };
    }

    /// Lets the job run and its result arrive.
    void settle() {
        worker.runAll();
        scheduler.runPosted();
    }

    void checkManually() {
        updater->check(CheckTrigger::manual);
        settle();
    }

    [[nodiscard]] const Text& status() const { return updater->status().get(); }
    [[nodiscard]] const Text& errorMessage() const { return updater->errorMessage().get(); }

    /// An archive with a bundle of this version in it; the tools expand it by hand.
    void offerInstallable(const std::string& newVersion) {
        const std::string plist = "<plist version=\"1.0\"><dict><key>CFBundleShortVersionString</key><string>" +
                                  newVersion + "</string></dict></plist>";
        writeContent(root / "a.zip", ZipWriter().add({.name = "V.app/Contents/Info.plist", .content = plist}).bytes());
        http.file = root / "a.zip";
        tools.onExpand = [plist](const std::filesystem::path& folder) {
            std::filesystem::create_directories(folder / "V.app/Contents");
            writeContent(folder / "V.app/Contents/Info.plist", plist);
            return ToolOutput{};
        };
        feedOffers(newVersion);
        checkManually();
    }

    TemporaryDirectory root;
    std::string version = "1.9.3";
    VirtualScheduler scheduler;
    InMemoryDefaultsStore defaults;
    InlineWorker worker;
    FakeHttpClient http;
    FakeBundleTools tools;
    RecordingLauncher launcher;
    RecordingAlert alert;
    int terminations = 0;
    bool made = std::filesystem::create_directory(root / "temporary");
    std::unique_ptr<Updater> updater;
};

TEST_F(UpdaterTest, BeginsWithTheInitialValues) {
    EXPECT_TRUE(*updater->autoUpdate());
    EXPECT_EQ(*updater->feedURL(), "https://updates.example/velmora/appcast.json");
    EXPECT_FALSE(*updater->available());
    EXPECT_FALSE(*updater->isBusy());
    EXPECT_FALSE(status());
    EXPECT_FALSE(errorMessage());
    EXPECT_FALSE(*updater->lastCheck());
    EXPECT_FALSE(*updater->progress());
    EXPECT_EQ(updater->currentVersion(), "1.9.3");
}

TEST_F(UpdaterTest, ReadsAndWritesItsSettings) {
    defaults.setBoolean("autoUpdate", false);
    defaults.setString("updateFeedURL", "http://127.0.0.1/feed");
    create();
    EXPECT_FALSE(*updater->autoUpdate());
    EXPECT_EQ(*updater->feedURL(), "http://127.0.0.1/feed");

    updater->setAutoUpdate(true);
    updater->setFeedURL("http://other.example/");
    EXPECT_TRUE(defaults.boolean("autoUpdate"));
    EXPECT_EQ(defaults.string("updateFeedURL"), "http://other.example/");
    EXPECT_TRUE(*updater->autoUpdate());
    EXPECT_EQ(*updater->feedURL(), "http://other.example/");
}

TEST_F(UpdaterTest, AnAutoUpdateSettingThatIsNoBooleanCountsAsOn) {
    defaults.setString("autoUpdate", "sometimes");
    create();
    EXPECT_TRUE(*updater->autoUpdate());
}

TEST_F(UpdaterTest, AnEmptyFeedUrlThatIsSetIsKept) {
    defaults.setString("updateFeedURL", "");
    create();
    EXPECT_EQ(*updater->feedURL(), "");
}

TEST_F(UpdaterTest, ChecksFiveSecondsAfterTheStartAndEverySixHours) {
    feedOffers("1.9.3");
    updater->start();
    scheduler.advance(milliseconds(4999));
    EXPECT_EQ(worker.waiting(), 0U);
    scheduler.advance(milliseconds(1));
    EXPECT_EQ(worker.waiting(), 1U);
    settle();
    scheduler.advance(hours(6) - seconds(5) - milliseconds(1));
    EXPECT_EQ(http.requests.size(), 1U);
    scheduler.advance(milliseconds(1));
    settle();
    EXPECT_EQ(http.requests.size(), 2U);
    scheduler.advance(hours(6));
    settle();
    EXPECT_EQ(http.requests.size(), 3U);
}

TEST_F(UpdaterTest, AutoUpdateFalseMeansNoLaunchCheckAndNoTimerButManualChecksWork) {
    defaults.setBoolean("autoUpdate", false);
    create();
    updater->start();
    EXPECT_EQ(scheduler.pendingTimers(), 0U);
    scheduler.advance(hours(24));
    EXPECT_EQ(worker.waiting(), 0U);

    feedOffers("2.0");
    checkManually();
    EXPECT_EQ((*updater->available())->version, "2.0");
}

TEST_F(UpdaterTest, SwitchingAutoUpdateOffDropsTheTimersAndOnArmsThemAgain) {
    updater->start();
    updater->setAutoUpdate(false);
    EXPECT_EQ(scheduler.pendingTimers(), 0U);
    updater->setAutoUpdate(true);
    EXPECT_EQ(scheduler.pendingTimers(), 2U);
    scheduler.advance(seconds(5));
    EXPECT_EQ(worker.waiting(), 1U);
}

TEST_F(UpdaterTest, TheSecondOfTwoAutomaticTriggersWithinSixtySecondsDoesNothing) {
    feedOffers("1.9.3");
    updater->start();
    scheduler.advance(seconds(5));
    settle();
    ASSERT_EQ(http.requests.size(), 1U);
    updater->setAutoUpdate(true);
    scheduler.advance(seconds(59));
    settle();
    EXPECT_EQ(http.requests.size(), 1U);
    scheduler.advance(seconds(1));
    updater->check(CheckTrigger::automatic);
    settle();
    EXPECT_EQ(http.requests.size(), 2U);
}

TEST_F(UpdaterTest, ManualChecksAreNotThrottled) {
    feedOffers("1.9.3");
    checkManually();
    checkManually();
    EXPECT_EQ(http.requests.size(), 2U);
}

TEST_F(UpdaterTest, AClockThatWasSetBackDoesNotSilenceTheChecks) {
    feedOffers("1.9.3");
    checkManually();
    scheduler.shiftClock(-hours(48));
    updater->check(CheckTrigger::automatic);
    EXPECT_EQ(worker.waiting(), 1U);
}

TEST_F(UpdaterTest, ChecksGoOnForMonthsWhateverTheClockSays) {
    feedOffers("1.9.3");
    updater->start();
    scheduler.advance(seconds(5));
    settle();
    std::size_t checks = 1;
    for (const auto jump : {hours(-24), hours(24), hours(24), hours(-48)}) {
        scheduler.shiftClock(jump);
        for (int sixHours = 0; sixHours < 4 * 50; ++sixHours) {
            scheduler.advance(hours(6));
            settle();
            ASSERT_EQ(http.requests.size(), ++checks);
        }
    }
    EXPECT_EQ(*updater->lastCheck(), scheduler.now());
}

TEST_F(UpdaterTest, ANewerVersionIsOffered) {
    feedOffers("2.0");
    checkManually();
    ASSERT_TRUE(*updater->available());
    EXPECT_EQ((*updater->available())->version, "2.0");
    EXPECT_FALSE(status());
    EXPECT_FALSE(errorMessage());
    EXPECT_EQ(*updater->lastCheck(), scheduler.now());
}

TEST_F(UpdaterTest, EqualVersionsShowTheLatestVersionLineWhenManual) {
    feedOffers("1.9.3");
    checkManually();
    EXPECT_FALSE(*updater->available());
    EXPECT_EQ(status(), "You're on the latest version (v1.9.3).");
}

TEST_F(UpdaterTest, EqualVersionsShowNothingWhenAutomatic) {
    feedOffers("1.9.3");
    updater->check(CheckTrigger::automatic);
    EXPECT_FALSE(status());
    settle();
    EXPECT_FALSE(*updater->available());
    EXPECT_FALSE(status());
    EXPECT_FALSE(errorMessage());
}

TEST_F(UpdaterTest, AnOlderVersionIsNotOfferedAndTakesAnEarlierOfferBack) {
    feedOffers("2.0");
    checkManually();
    feedOffers("1.9.2");
    checkManually();
    EXPECT_FALSE(*updater->available());
    EXPECT_EQ(status(), "You're on the latest version (v1.9.3).");
}

TEST_F(UpdaterTest, AZeroMoreCountsAsNewer) {
    version = "1.2";
    create();
    feedOffers("1.2.0");
    checkManually();
    EXPECT_TRUE(*updater->available());
}

TEST_F(UpdaterTest, WithoutAVersionStringEveryFeedVersionIsNewer) {
    version = "0";
    create();
    feedOffers("0.1");
    checkManually();
    EXPECT_TRUE(*updater->available());
}

TEST_F(UpdaterTest, WhileAManualCheckRunsItSaysSo) {
    updater->check(CheckTrigger::manual);
    EXPECT_TRUE(*updater->isBusy());
    EXPECT_EQ(status(), "Checking…");
    settle();
    EXPECT_FALSE(*updater->isBusy());
}

TEST_F(UpdaterTest, ASecondCheckWhileOneRunsDoesNothing) {
    updater->check(CheckTrigger::automatic);
    updater->check(CheckTrigger::manual);
    EXPECT_EQ(worker.waiting(), 1U);
    EXPECT_FALSE(status());
}

TEST_F(UpdaterTest, AStatusOf404IsShownWhenManual) {
    feedAnswers(404);
    checkManually();
    EXPECT_EQ(errorMessage(), "Update check failed: HTTP 404");
    EXPECT_FALSE(status());
    EXPECT_TRUE(*updater->lastCheck());
}

TEST_F(UpdaterTest, AStatusOf404IsNotShownWhenAutomatic) {
    feedAnswers(404);
    updater->check(CheckTrigger::automatic);
    settle();
    EXPECT_FALSE(errorMessage());
    EXPECT_FALSE(status());
    EXPECT_TRUE(*updater->lastCheck());
}

TEST_F(UpdaterTest, AFailedCheckKeepsTheOfferAndTheNextCheckClearsTheError) {
    feedOffers("2.0");
    checkManually();
    feedAnswers(500);
    checkManually();
    EXPECT_TRUE(*updater->available());
    EXPECT_EQ(errorMessage(), "Update check failed: HTTP 500");
    updater->check(CheckTrigger::automatic);
    scheduler.advance(seconds(60));
    updater->check(CheckTrigger::automatic);
    EXPECT_FALSE(errorMessage());
}

TEST_F(UpdaterTest, ATransportErrorIsShownInItsOwnWords) {
    checkManually();
    EXPECT_EQ(errorMessage(), "Connection refused");
}

TEST_F(UpdaterTest, AFeedOfWrongTypesFailsTheCheck) {
    feedHas(R"({"version": 2, "url": "u"})");
    checkManually();
    EXPECT_EQ(errorMessage(), "The update feed cannot be read: “version” is not text.");
    EXPECT_FALSE(*updater->available());
}

TEST_F(UpdaterTest, AnAnswerThatIsNotHttpIsAccepted) {
    http.answer = [] { return HttpAnswer{.status = std::nullopt, .body = R"({"version": "2.0", "url": "u"})"}; };
    checkManually();
    EXPECT_TRUE(*updater->available());
}

TEST_F(UpdaterTest, AFeedAddressWithSurroundingSpacesWorks) {
    updater->setFeedURL(" \r\n https://updates.example/feed.json \n");
    feedOffers("2.0");
    checkManually();
    EXPECT_TRUE(*updater->available());
    EXPECT_EQ(http.requests.at(0).url, "https://updates.example/feed.json");
}

TEST_F(UpdaterTest, AnAddressThatDoesNotParseIsABadFeedUrl) {
    for (const char* url : {"", "  ", "no url", "http://[half", "https://", "velmora/appcast.json", "http://a b/"}) {
        updater->setFeedURL(url);
        checkManually();
        EXPECT_EQ(errorMessage(), "Update check failed: bad feed URL") << url;
        EXPECT_THAT(http.requests, IsEmpty());
    }
}

TEST_F(UpdaterTest, TheFeedIsAskedForWithItsLimits) {
    checkManually();
    EXPECT_EQ(http.requests.at(0).idleLimit, seconds(20));
    EXPECT_EQ(http.requests.at(0).largestBody, 1U << 20);
}

TEST_F(UpdaterTest, InstallWithoutAnOfferDoesNothing) {
    updater->install();
    EXPECT_FALSE(*updater->isBusy());
    EXPECT_EQ(worker.waiting(), 0U);
}

TEST_F(UpdaterTest, ASecondInstallRequestWhileOneRunsIsIgnored) {
    offerInstallable("2.0");
    updater->install();
    updater->install();
    EXPECT_EQ(worker.waiting(), 1U);
    updater->check(CheckTrigger::manual);
    EXPECT_EQ(worker.waiting(), 1U);
    EXPECT_EQ(status(), "Downloading v2.0…");
}

TEST_F(UpdaterTest, AnInstallationGoesThroughItsStagesAndTerminates) {
    offerInstallable("2.0");
    std::vector<std::string> statuses;
    const auto watch = updater->status().observe([&] { statuses.push_back(status().value_or("-")); });
    std::vector<DownloadProgress> progress;
    const auto watchProgress = updater->progress().observe([&] {
        if (*updater->progress()) {
            progress.push_back(**updater->progress());
        }
    });
    updater->install();
    settle();
    EXPECT_THAT(statuses, ElementsAre("Downloading v2.0…", "Verifying…", "Installing…"));
    const auto size = std::filesystem::file_size(root / "a.zip");
    EXPECT_THAT(progress, ElementsAre(DownloadProgress{size / 2, size}, DownloadProgress{size, size}));
    EXPECT_EQ(http.requests.back().largestBody, std::uint64_t{2} << 30);
    EXPECT_EQ(terminations, 1);
    EXPECT_EQ(launcher.started.size(), 1U);
    EXPECT_TRUE(*updater->isBusy());
    EXPECT_THAT(alert.shown, IsEmpty());
    EXPECT_TRUE(std::filesystem::exists(launcher.started[0].second[0])) << "the script's files must stay";
}

TEST_F(UpdaterTest, AFailedInstallationShowsOneAlertAndIsBusyUntilItIsDismissed) {
    offerInstallable("2.0");
    tools.signature = {.status = 3, .text = "code object is not signed at all\n"};
    updater->install();
    settle();
    const std::string text =
        "Download rejected: not signed by the expected developer.\ncode object is not signed at all\n";
    EXPECT_THAT(alert.shown, ElementsAre(Pair("Update failed", text)));
    EXPECT_EQ(errorMessage(), text);
    EXPECT_FALSE(status());
    EXPECT_FALSE(*updater->progress());
    EXPECT_TRUE(*updater->available());
    EXPECT_TRUE(*updater->isBusy());
    EXPECT_TRUE(std::filesystem::is_empty(root / "temporary"));
    EXPECT_EQ(terminations, 0);
    alert.dismiss();
    EXPECT_FALSE(*updater->isBusy());
}

TEST_F(UpdaterTest, AFailedInstallationCanBeRetried) {
    offerInstallable("2.0");
    tools.signature = {.status = 1, .text = "no"};
    updater->install();
    settle();
    alert.dismiss();
    tools.signature = {};
    updater->install();
    EXPECT_FALSE(errorMessage());
    settle();
    EXPECT_EQ(terminations, 1);
}

TEST_F(UpdaterTest, ADownloadErrorIsTheSystemsOwn) {
    feedOffers("2.0");
    checkManually();
    http.answer = [] { return Error{"No space left on device"}; };
    updater->install();
    settle();
    EXPECT_THAT(alert.shown, ElementsAre(Pair("Update failed", "No space left on device")));
}

TEST_F(UpdaterTest, ABundleWithAnotherVersionIsRejected) {
    offerInstallable("2.0");
    feedOffers("2.0.0");
    checkManually();
    updater->install();
    settle();
    EXPECT_EQ(errorMessage(), "Download rejected: bundle is v2.0, manifest promised v2.0.0.");
}

TEST_F(UpdaterTest, ResultsThatComeAfterItsEndAreDropped) {
    offerInstallable("2.0");
    tools.signature = {.status = 1, .text = "no"};
    updater->install();
    worker.runAll();
    updater.reset();
    scheduler.runPosted();
    EXPECT_THAT(alert.shown, IsEmpty());
    EXPECT_EQ(scheduler.pendingTimers(), 0U);
}

TEST_F(UpdaterTest, AnAlertThatIsDismissedAfterItsEndIsHarmless) {
    offerInstallable("2.0");
    tools.signature = {.status = 1, .text = "no"};
    updater->install();
    settle();
    updater.reset();
    alert.dismiss();
}

TEST(UpdateIdentity, HasAFeedAndATeamOfTenCharacters) {
    const auto identity = UpdateIdentity::ofThisBuild();
    EXPECT_EQ(identity.feedURL, "https://" BUILT_UPDATE_HOST "/velmora/appcast.json");
    EXPECT_EQ(identity.teamIdentifier, BUILT_TEAM_IDENTIFIER);
    EXPECT_EQ(identity.teamIdentifier.size(), 10U);
}

}  // namespace
}  // namespace velmora::test
