#include "fakes/FakeProcessLauncher.h"
#include "fakes/ResourceLimit.h"
#include "fakes/TemporaryDirectory.h"
#include "fakes/VirtualScheduler.h"
#include "tunnel/HostLog.h"
#include "tunnel/TunnelEngine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace velmora {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

const auto connecting = ConnectionStatus::connecting();
const auto connected = ConnectionStatus::connected();
const auto disconnected = ConnectionStatus::disconnected();

class TunnelEngineTest : public testing::Test {
protected:
    SSHHost& addHost(const std::string& name) {
        SSHHost host;
        host.name = name;
        host.hostname = name + ".example";
        hosts_.push_back(host);
        return hosts_.back();
    }

    std::string log(const SSHHost& host) { return contentOf(engine_.logURL(host)); }

    /// The process says something on standard error and ends; the main thread hears of it.
    void fail(std::size_t process, const std::string& words = "boom\n") {
        launcher_.process(process).exitSaying(words, 255);
        scheduler_.runPosted();
    }

    ConnectionStatus status(const SSHHost& host) { return engine_.status(host.id); }

    std::size_t askpassFiles() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(askpass_.path()), {}));
    }

    TemporaryDirectory logs_;
    TemporaryDirectory askpass_;
    VirtualScheduler scheduler_;
    FakeProcessLauncher launcher_;
    std::vector<SSHHost> hosts_ = [] {
        std::vector<SSHHost> hosts;
        hosts.reserve(8);  // tests keep references
        return hosts;
    }();
    SshSettings settings_;
    std::map<Uuid, std::string> passwords_;
    Environment environment_{{"HOME", "/home/anna"}};
    TunnelEngine engine_{
        scheduler_, launcher_,
        TunnelSources{.hosts = [this]() -> const std::vector<SSHHost>& { return hosts_; },
                      .settings = [this] { return settings_; },
                      .password = [this](const Uuid& id) -> std::optional<std::string> {
                          const auto entry = passwords_.find(id);
                          return entry != passwords_.end() ? std::optional(entry->second) : std::nullopt;
                      },
                      .environment = [this] { return environment_; }},
        TunnelPlaces{.home = "/home/anna", .logDirectory = logs_.path(), .askpassDirectory = askpass_.path()}};
};

// ---- connecting ----

TEST_F(TunnelEngineTest, ConnectStartsSshAndCountsAsConnectedAfterThreeSeconds) {
    const auto& host = addHost("a");
    engine_.connect(host);
    EXPECT_EQ(status(host), connecting);
    ASSERT_EQ(launcher_.count(), 1U);
    EXPECT_EQ(launcher_.last().program, "/usr/bin/ssh");
    EXPECT_EQ(launcher_.last().arguments, sshArguments(host, settings_, "/home/anna", AskpassPrepared::no));
    EXPECT_EQ(launcher_.last().environment, environment_);
    scheduler_.advance(2999ms);
    EXPECT_EQ(status(host), connecting);
    EXPECT_TRUE(engine_.connectedAt()->empty());
    scheduler_.advance(1ms);
    EXPECT_EQ(status(host), connected);
    EXPECT_EQ(engine_.connectedAt()->at(host.id), scheduler_.now());
}

TEST_F(TunnelEngineTest, ConnectingTwiceLaunchesOneProcessAndChangesNothing) {
    const auto& host = addHost("a");
    engine_.connect(host);
    scheduler_.advance(3s);
    const auto log = this->log(host);
    engine_.connect(host);
    EXPECT_EQ(launcher_.count(), 1U);
    EXPECT_EQ(status(host), connected);
    EXPECT_EQ(this->log(host), log);
}

TEST_F(TunnelEngineTest, TheInputOfSshStaysOpenWhileItRuns) {
    const auto& host = addHost("a");
    engine_.connect(host);
    scheduler_.advance(1h);
    EXPECT_FALSE(launcher_.last().isInputAtEnd()) << "a session would end with its input";
    engine_.disconnect(host);
    EXPECT_TRUE(launcher_.last().isInputAtEnd());
}

TEST_F(TunnelEngineTest, WithoutAHostNameNothingIsLaunchedOrLogged) {
    auto& host = addHost("a");
    host.hostname.clear();
    engine_.connect(host);
    EXPECT_EQ(status(host), ConnectionStatus::error("No hostname configured"));
    EXPECT_EQ(launcher_.count(), 0U);
    EXPECT_FALSE(std::filesystem::exists(engine_.logURL(host)));
    scheduler_.advance(1h);
    EXPECT_EQ(launcher_.count(), 0U) << "not retried";
}

TEST_F(TunnelEngineTest, TheLogHoldsHeaderOutputAndExit) {
    const auto& host = addHost("a");
    engine_.connect(host);
    launcher_.last().events.standardError("one ");
    launcher_.last().events.standardError("two\n");
    launcher_.last().exit(255);
    EXPECT_EQ(log(host),
              "[2026-03-14 00:00:00 +0000] ssh -N -p 22 -o StrictHostKeyChecking=no -o UserKnownHostsFile=/dev/null "
              "-o ServerAliveInterval=60 -o ServerAliveCountMax=3 -o ConnectTimeout=30 a.example\n"
              "one two\n[exit 255]\n");
}

TEST_F(TunnelEngineTest, ALaunchFailureIsShownAndNotRetried) {
    const auto& host = addHost("a");
    launcher_.failure = Error{"No such file or directory"};
    engine_.connect(host);
    EXPECT_EQ(status(host), ConnectionStatus::error("No such file or directory"));
    EXPECT_THAT(log(host), StartsWith("[2026"));
    launcher_.failure.reset();
    scheduler_.advance(1h);
    EXPECT_EQ(launcher_.count(), 0U);
    engine_.toggle(host);
    EXPECT_EQ(launcher_.count(), 1U);
    EXPECT_EQ(status(host), connecting);
}

TEST_F(TunnelEngineTest, ALackOfDescriptorsIsShownAndNotRetried) {
    const auto& host = addHost("a");
    {
        const ResourceLimit none(RLIMIT_NOFILE, 0);
        engine_.connect(host);
    }
    EXPECT_EQ(status(host), ConnectionStatus::error("Too many open files"));
    scheduler_.advance(1h);
    EXPECT_EQ(launcher_.count(), 0U);
    engine_.connect(host);
    EXPECT_EQ(status(host), connecting);
}

TEST_F(TunnelEngineTest, AnExitWithinThreeSecondsNeverBecomesConnected) {
    const auto& host = addHost("a");
    engine_.connect(host);
    scheduler_.advance(2s);
    fail(0);
    const auto after = status(host);
    scheduler_.advance(2s);
    EXPECT_EQ(status(host), after);
    EXPECT_EQ(after.state, ConnectionStatus::State::error);
    EXPECT_TRUE(engine_.connectedAt()->empty());
}

TEST_F(TunnelEngineTest, HostsOfOneNameShareALog) {
    const auto& first = addHost("same");
    const auto& second = addHost("same");
    engine_.connect(first);
    engine_.connect(second);
    EXPECT_EQ(engine_.logURL(first), engine_.logURL(second));
    EXPECT_EQ(launcher_.count(), 2U);
}

// ---- passwords ----

TEST_F(TunnelEngineTest, APasswordHostGetsAnAskpassScriptWhileItRuns) {
    auto& host = addHost("a");
    host.authMethod = AuthMethod::password;
    passwords_[host.id] = "secret";
    engine_.connect(host);
    const auto& process = launcher_.last();
    const std::filesystem::path script = process.environment.at("SSH_ASKPASS");
    EXPECT_EQ(script.parent_path(), askpass_.path());
    EXPECT_THAT(script.filename().string(), testing::MatchesRegex("velmora-askpass-.*\\.sh"));
    EXPECT_EQ(modeOf(script), 0700);
    EXPECT_EQ(process.environment.at("SSH_ASKPASS_REQUIRE"), "force");
    EXPECT_EQ(process.environment.at("DISPLAY"), "dummy");
    EXPECT_EQ(process.arguments, sshArguments(host, settings_, "/home/anna", AskpassPrepared::yes));
    EXPECT_THAT(log(host), HasSubstr("ssh -o IdentitiesOnly=yes -o NumberOfPasswordPrompts=1 -N "));
    EXPECT_THAT(log(host), Not(HasSubstr("secret")));
    scheduler_.advance(1h);
    EXPECT_TRUE(std::filesystem::exists(script));
    fail(0);
    EXPECT_FALSE(std::filesystem::exists(script));
}

TEST_F(TunnelEngineTest, ADisplayThatIsSetStays) {
    auto& host = addHost("a");
    host.authMethod = AuthMethod::password;
    passwords_[host.id] = "secret";
    environment_["DISPLAY"] = ":7";
    engine_.connect(host);
    EXPECT_EQ(launcher_.last().environment.at("DISPLAY"), ":7");
}

TEST_F(TunnelEngineTest, WithoutAPasswordSshRunsWithoutAskpass) {
    auto& host = addHost("a");
    host.authMethod = AuthMethod::password;
    engine_.connect(host);
    passwords_[host.id] = "";
    auto& other = addHost("b");
    other.authMethod = AuthMethod::password;
    passwords_[other.id] = "";
    engine_.connect(other);
    for (const std::size_t i : {0U, 1U}) {
        EXPECT_EQ(launcher_.process(i).environment, environment_);
        EXPECT_EQ(launcher_.process(i).arguments.front(), "-N");
    }
    EXPECT_EQ(askpassFiles(), 0U);
}

TEST_F(TunnelEngineTest, AKeyHostNeverLooksAtItsPassword) {
    const auto& host = addHost("a");
    passwords_[host.id] = "secret";
    engine_.connect(host);
    EXPECT_EQ(launcher_.last().environment, environment_);
    EXPECT_EQ(askpassFiles(), 0U);
}

TEST_F(TunnelEngineTest, AScriptThatCannotBeWrittenLeavesSshWithoutIt) {
    auto& host = addHost("a");
    host.authMethod = AuthMethod::password;
    passwords_[host.id] = "secret";
    std::filesystem::remove(askpass_.path());
    engine_.connect(host);
    EXPECT_EQ(launcher_.last().arguments.front(), "-N");
    EXPECT_EQ(status(host), connecting);
}

TEST_F(TunnelEngineTest, AfterALaunchFailureTheScriptStaysUntilTheNextDisconnect) {
    auto& host = addHost("a");
    host.authMethod = AuthMethod::password;
    passwords_[host.id] = "secret";
    launcher_.failure = Error{"no"};
    engine_.connect(host);
    EXPECT_EQ(askpassFiles(), 1U);
    engine_.connect(host);
    EXPECT_EQ(askpassFiles(), 1U) << "a new attempt replaces the script";
    engine_.disconnect(host);
    EXPECT_EQ(askpassFiles(), 0U);
}

// ---- reasons ----

TEST_F(TunnelEngineTest, TheReasonIsTheFirstPlainLineOfTheWholeLog) {
    const auto& host = addHost("a");
    writeContent(engine_.logURL(host), "[yesterday] ssh\nold error\n[exit 255]\n");
    engine_.connect(host);
    fail(0, "new error\n");
    EXPECT_EQ(status(host).message, "Reconnecting in 5s… (old error)");
}

TEST_F(TunnelEngineTest, ALogWithoutPlainLinesGivesTheExitCode) {
    const auto& host = addHost("a");
    engine_.connect(host);
    fail(0, "debug1: x\n[y]\n");
    EXPECT_EQ(status(host).message, "Reconnecting in 5s… (Exited (code 255))");
}

// ---- coming back ----

TEST_F(TunnelEngineTest, TheFirstUnexpectedExitWaitsFiveSecondsAndSaysWhy) {
    const auto& host = addHost("a");
    engine_.connect(host);
    fail(0, "Connection closed by remote host\n");
    EXPECT_EQ(status(host), ConnectionStatus::error("Reconnecting in 5s… (Connection closed by remote host)"));
    scheduler_.advance(4999ms);
    EXPECT_EQ(launcher_.count(), 1U);
    scheduler_.advance(1ms);
    EXPECT_EQ(launcher_.count(), 2U);
    EXPECT_EQ(status(host), connecting);
}

TEST_F(TunnelEngineTest, FailuresInARowWaitLongerUpToAMinuteForEver) {
    const auto& host = addHost("a");
    engine_.connect(host);
    std::vector<std::string> texts;
    for (const auto delay : {5s, 10s, 20s, 40s, 60s, 60s, 60s}) {
        fail(launcher_.count() - 1);
        texts.push_back(status(host).message);
        const auto before = launcher_.count();
        scheduler_.advance(delay - 1ms);
        EXPECT_EQ(launcher_.count(), before);
        scheduler_.advance(1ms);
        EXPECT_EQ(launcher_.count(), before + 1);
    }
    EXPECT_THAT(texts,
                ElementsAre("Reconnecting in 5s… (boom)", "Reconnecting in 10s… (boom)", "Reconnecting in 20s… (boom)",
                            "Reconnecting in 40s… (boom)", "Reconnecting in 60s… (boom)", "Reconnecting in 60s… (boom)",
                            "Reconnecting in 60s… (boom)"));
}

TEST_F(TunnelEngineTest, AHostThatReachedConnectedWaitsFiveSecondsAgain) {
    const auto& host = addHost("a");
    engine_.connect(host);
    fail(0);
    scheduler_.advance(5s);
    fail(1);
    scheduler_.advance(10s + 3s);
    ASSERT_EQ(status(host), connected);
    fail(2);
    EXPECT_THAT(status(host).message, StartsWith("Reconnecting in 5s… "));
    EXPECT_TRUE(engine_.connectedAt()->empty());
}

TEST_F(TunnelEngineTest, DisconnectDuringTheWaitCancelsTheRetry) {
    const auto& host = addHost("a");
    engine_.connect(host);
    fail(0);
    engine_.disconnect(host);
    EXPECT_EQ(status(host), disconnected);
    scheduler_.advance(1h);
    EXPECT_EQ(launcher_.count(), 1U);
    EXPECT_EQ(status(host), disconnected);
}

TEST_F(TunnelEngineTest, DisconnectStartsTheBackOffAnew) {
    const auto& host = addHost("a");
    engine_.connect(host);
    fail(0);
    scheduler_.advance(5s);
    fail(1);
    engine_.disconnect(host);
    engine_.connect(host);
    fail(2);
    EXPECT_THAT(status(host).message, StartsWith("Reconnecting in 5s… "));
}

TEST_F(TunnelEngineTest, AnExitAfterDisconnectStartsTheBackOffAnew) {
    const auto& host = addHost("a");
    engine_.connect(host);
    engine_.disconnect(host);
    fail(0);
    EXPECT_EQ(status(host), disconnected);
    EXPECT_THAT(log(host), HasSubstr("[exit 255]\n"));
    scheduler_.advance(1h);
    EXPECT_EQ(launcher_.count(), 1U);
}

TEST_F(TunnelEngineTest, ConnectingDuringTheWaitStartsAtOnceAndKeepsTheCount) {
    const auto& host = addHost("a");
    engine_.connect(host);
    fail(0);
    engine_.toggle(host);
    EXPECT_EQ(launcher_.count(), 2U);
    EXPECT_EQ(status(host), connecting);
    fail(1);
    EXPECT_THAT(status(host).message, StartsWith("Reconnecting in 10s… "));
    scheduler_.advance(9999ms);
    EXPECT_EQ(launcher_.count(), 2U) << "the first retry was cancelled";
}

TEST_F(TunnelEngineTest, AHostThatIsGoneAfterTheWaitIsNotConnected) {
    const auto host = addHost("a");
    engine_.connect(host);
    fail(0);
    hosts_.clear();
    scheduler_.advance(1h);
    EXPECT_EQ(launcher_.count(), 1U);
}

TEST_F(TunnelEngineTest, EditsMadeDuringTheWaitTakeEffect) {
    auto& host = addHost("a");
    engine_.connect(host);
    fail(0);
    host.hostname = "new.example";
    scheduler_.advance(5s);
    EXPECT_EQ(launcher_.last().arguments.back(), "new.example");
}

// ---- stopping ----

TEST_F(TunnelEngineTest, DisconnectAsksSshToEndAndForgetsIt) {
    auto& host = addHost("a");
    host.authMethod = AuthMethod::password;
    passwords_[host.id] = "secret";
    engine_.connect(host);
    scheduler_.advance(3s);
    engine_.disconnect(host);
    EXPECT_EQ(launcher_.process(0).terminations, 1);
    EXPECT_EQ(status(host), disconnected);
    EXPECT_TRUE(engine_.connectedAt()->empty());
    EXPECT_EQ(askpassFiles(), 0U);
}

TEST_F(TunnelEngineTest, ToggleStopsWhatIsActiveAndStartsWhatIsNot) {
    const auto& host = addHost("a");
    engine_.toggle(host);
    EXPECT_EQ(status(host), connecting);
    engine_.toggle(host);
    EXPECT_EQ(status(host), disconnected);
    EXPECT_EQ(launcher_.process(0).terminations, 1);
    engine_.toggle(host);
    scheduler_.advance(3s);
    engine_.toggle(host);
    EXPECT_EQ(launcher_.process(1).terminations, 1);
}

TEST_F(TunnelEngineTest, ReconnectingRestartsOnlyWhatIsActive) {
    const auto& up = addHost("up");
    const auto& erring = addHost("erring");
    const auto& down = addHost("down");
    engine_.connect(up);
    scheduler_.advance(3s);
    engine_.connect(erring);
    fail(1);
    engine_.reconnectActiveHosts();
    ASSERT_EQ(launcher_.count(), 3U);
    EXPECT_EQ(launcher_.process(0).terminations, 1);
    EXPECT_EQ(launcher_.last().arguments.back(), "up.example");
    EXPECT_EQ(status(up), connecting);
    EXPECT_EQ(status(erring).state, ConnectionStatus::State::error);
    EXPECT_EQ(status(down), disconnected);
}

TEST_F(TunnelEngineTest, ReconnectingFollowsTheOrderOfTheList) {
    const auto& a = addHost("a");
    const auto& b = addHost("b");
    const auto& c = addHost("c");
    engine_.connect(c);
    engine_.connect(a);
    engine_.connect(b);
    engine_.reconnectActiveHosts();
    EXPECT_EQ(launcher_.process(3).arguments.back(), "a.example");
    EXPECT_EQ(launcher_.process(4).arguments.back(), "b.example");
    EXPECT_EQ(launcher_.process(5).arguments.back(), "c.example");
}

TEST_F(TunnelEngineTest, AtQuitEverySshIsAskedToEndAndNoScriptIsLeft) {
    auto& first = addHost("a");
    first.authMethod = AuthMethod::password;
    passwords_[first.id] = "secret";
    const auto& second = addHost("b");
    const auto& waiting = addHost("c");
    engine_.connect(first);
    engine_.connect(second);
    engine_.connect(waiting);
    fail(2);
    const auto before = status(second);
    engine_.terminateAllProcesses();
    EXPECT_EQ(launcher_.process(0).terminations, 1);
    EXPECT_EQ(launcher_.process(1).terminations, 1);
    EXPECT_EQ(askpassFiles(), 0U);
    EXPECT_EQ(status(second), before);
    scheduler_.advance(1h);
    EXPECT_EQ(launcher_.count(), 3U) << "no retry after quit";
}

// ---- the exit that is handled late ----

TEST_F(TunnelEngineTest, ALateExitOfTheOldProcessTakesTheNewOnesPlace) {
    auto& host = addHost("a");
    host.authMethod = AuthMethod::password;
    passwords_[host.id] = "secret";
    engine_.connect(host);
    scheduler_.advance(3s);
    engine_.disconnect(host);
    engine_.connect(host);
    fail(0, "old words\n");
    EXPECT_EQ(status(host).message, "Reconnecting in 5s… (old words)");
    EXPECT_EQ(askpassFiles(), 0U) << "the new process's script goes with the old exit";
    EXPECT_EQ(launcher_.process(1).terminations, 0) << "the new process runs on, unknown";
    scheduler_.advance(5s);
    EXPECT_EQ(launcher_.count(), 3U);
    EXPECT_EQ(status(host), connecting);
}

TEST_F(TunnelEngineTest, RestartingActiveHostsMeetsTheLateExitToo) {
    const auto& host = addHost("a");
    engine_.connect(host);
    engine_.reconnectActiveHosts();
    fail(0, "Killed by signal 15.\n");
    EXPECT_EQ(status(host).message, "Reconnecting in 5s… (Killed by signal 15.)");
    scheduler_.advance(5s);
    EXPECT_EQ(launcher_.count(), 3U);
    scheduler_.advance(3s);
    EXPECT_EQ(status(host), connected);
}

TEST_F(TunnelEngineTest, TwoExitsInTheWaitLeaveTwoRetriesOfWhichOneFindsTheTunnelUp) {
    const auto& host = addHost("a");
    engine_.connect(host);
    engine_.disconnect(host);
    engine_.connect(host);
    fail(0);
    scheduler_.advance(2s);
    fail(1);
    EXPECT_THAT(status(host).message, StartsWith("Reconnecting in 10s… "));
    scheduler_.advance(3s);
    EXPECT_EQ(launcher_.count(), 3U) << "the first retry was replaced, not cancelled";
    scheduler_.advance(1h);
    EXPECT_EQ(launcher_.count(), 3U);
    EXPECT_EQ(status(host), connected);
}

TEST_F(TunnelEngineTest, TheSurvivalCheckOfAnOldProcessJudgesTheNewOne) {
    const auto& host = addHost("a");
    engine_.connect(host);
    scheduler_.advance(2s);
    engine_.disconnect(host);
    engine_.connect(host);
    scheduler_.advance(1s);
    EXPECT_EQ(status(host), connected);
}

// ---- the engine and its owner ----

TEST_F(TunnelEngineTest, ObserversSeeEveryState) {
    const auto& host = addHost("a");
    std::vector<ConnectionStatus::State> seen;
    const auto view = engine_.statuses().observe([&] { seen.push_back(engine_.status(host.id).state); });
    engine_.connect(host);
    scheduler_.advance(3s);
    fail(0);
    engine_.disconnect(host);
    using enum ConnectionStatus::State;
    EXPECT_THAT(seen, ElementsAre(ConnectionStatus::State::connecting, ConnectionStatus::State::connected, error,
                                  ConnectionStatus::State::disconnected));
}

TEST_F(TunnelEngineTest, FinishedTasksLeaveNothingBehind) {
    const auto& host = addHost("a");
    for (int i = 0; i < 100; ++i) {
        engine_.connect(host);
        fail(launcher_.count() - 1);
        engine_.disconnect(host);
        scheduler_.advance(4s);
    }
    EXPECT_EQ(scheduler_.pendingTimers(), 0U);
}

TEST(TunnelEngineLifetime, AnExitAfterTheEngineIsGoneIsNotHandled) {
    const TemporaryDirectory directory;
    VirtualScheduler scheduler;
    FakeProcessLauncher launcher;
    std::vector<SSHHost> hosts(1);
    hosts[0].hostname = "x";
    {
        TunnelEngine engine(scheduler, launcher,
                            {.hosts = [&]() -> const std::vector<SSHHost>& { return hosts; },
                             .settings = [] { return SshSettings(); },
                             .password = [](const Uuid&) { return std::nullopt; },
                             .environment = [] { return Environment(); }},
                            {.logDirectory = directory.path(), .askpassDirectory = directory.path()});
        engine.connect(hosts[0]);
    }
    launcher.last().exit(0);
    scheduler.advance(1h);
    EXPECT_EQ(launcher.count(), 1U);
}

}  // namespace
}  // namespace velmora
