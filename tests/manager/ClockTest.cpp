#include "fakes/FakeSystem.h"
#include "manager/TunnelManager.h"
#include "model/HostJson.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>

namespace velmora {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::HasSubstr;
using State = ConnectionStatus::State;

constexpr auto day = 24h;

/// Clocks that jump, stand still or run for months. Delays are on the monotonic clock, which stands still while the
/// machine sleeps; the time of day is whatever somebody has set.
class ClockTest : public testing::Test {
protected:
    /// The machine sleeps: no time passes for delays, and the time of day goes on.
    void sleepFor(seconds duration) { system_.scheduler.shiftClock(duration); }
    void setClock(seconds by) { system_.scheduler.shiftClock(by); }
    void pass(milliseconds duration) { system_.scheduler.advance(duration); }

    SSHHost connectedHost() {
        const auto host = connectingHost();
        pass(3s);
        return host;
    }

    SSHHost connectingHost() {
        SSHHost host;
        host.name = "a";
        host.hostname = "a.example";
        manager_.hosts().edit([&](std::vector<SSHHost>& hosts) { hosts.push_back(host); });
        manager_.connect(host);
        return host;
    }

    void drop() {
        system_.launcher.last().exitSaying("Timeout, server not responding.\n", 255);
        system_.scheduler.runPosted();
    }

    State stateOf(const SSHHost& host) { return manager_.status(host.id).state; }
    std::string uptimeOf(const SSHHost& host) { return manager_.uptimeString(host.id).value_or("none"); }

    /// The delays before the next starts, one for each failure in a row.
    void expectDelays(const std::vector<seconds>& delays) {
        for (const auto delay : delays) {
            drop();
            const auto launched = system_.launcher.count();
            pass(delay - 1ms);
            EXPECT_EQ(system_.launcher.count(), launched) << delay.count();
            pass(1ms);
            EXPECT_EQ(system_.launcher.count(), launched + 1) << delay.count();
        }
    }

    FakeSystem system_;
    TunnelManager manager_{system_.platform()};
};

// ---- suspend and resume ----

TEST_F(ClockTest, AWaitGoesOnAfterSleepWhereItStood) {
    const auto host = connectedHost();
    drop();
    pass(2s);
    sleepFor(8h);
    EXPECT_EQ(manager_.status(host.id).message, "Reconnecting in 5s… (Timeout, server not responding.)");
    pass(2999ms);
    EXPECT_EQ(system_.launcher.count(), 1U);
    pass(1ms);
    EXPECT_EQ(system_.launcher.count(), 2U);
    pass(3s);
    EXPECT_EQ(stateOf(host), State::connected);
    EXPECT_EQ(uptimeOf(host), "< 1m");
}

TEST_F(ClockTest, SleepDoesNotCountAsSurvival) {
    const auto host = connectingHost();
    pass(1s);
    sleepFor(8h);
    pass(1999ms);
    EXPECT_EQ(stateOf(host), State::connecting);
    pass(1ms);
    EXPECT_EQ(stateOf(host), State::connected);
    EXPECT_EQ(uptimeOf(host), "< 1m") << "it counts from the moment in which it was connected";
}

TEST_F(ClockTest, UptimeCountsTheTimeAsleepUntilSshNoticesThatTheConnectionIsGone) {
    const auto host = connectedHost();
    sleepFor(8h);
    EXPECT_EQ(stateOf(host), State::connected);
    EXPECT_EQ(uptimeOf(host), "8h");
    pass(3min);
    drop();
    EXPECT_EQ(uptimeOf(host), "none");
    pass(5s + 3s);
    EXPECT_EQ(stateOf(host), State::connected);
    EXPECT_EQ(uptimeOf(host), "< 1m");
}

// ---- somebody sets the clock ----

TEST_F(ClockTest, DelaysDoNotCareAboutTheTimeOfDay) {
    for (const auto jump : {-day, day}) {
        const auto host = connectingHost();
        setClock(jump);
        pass(2999ms);
        EXPECT_EQ(stateOf(host), State::connecting);
        pass(1ms);
        EXPECT_EQ(stateOf(host), State::connected);
        drop();
        setClock(-2 * jump);
        const auto launched = system_.launcher.count();
        pass(4999ms);
        EXPECT_EQ(system_.launcher.count(), launched);
        pass(1ms);
        EXPECT_EQ(system_.launcher.count(), launched + 1);
        setClock(jump);
        manager_.deleteHost(host.id);
    }
}

TEST_F(ClockTest, UptimeIsTheDifferenceOfTwoTimesOfDay) {
    const auto host = connectedHost();
    pass(10min);
    setClock(-day);
    EXPECT_EQ(uptimeOf(host), "< 1m");
    setClock(2 * day);
    EXPECT_EQ(uptimeOf(host), "1d");
    setClock(-day);
    EXPECT_EQ(uptimeOf(host), "10m") << "right again once the clock is";
}

TEST_F(ClockTest, AConnectionMadeUnderAWrongClockIsRightAtItsNextStart) {
    setClock(day);
    const auto host = connectedHost();
    setClock(-day);
    EXPECT_EQ(uptimeOf(host), "< 1m");
    drop();
    pass(5s + 3s + 60s);
    EXPECT_EQ(uptimeOf(host), "1m");
}

TEST_F(ClockTest, TheLogTellsTheTimeOfDayAndTheReasonDoesNotCare) {
    const auto host = connectedHost();
    setClock(-day);
    drop();
    pass(5s);
    drop();
    EXPECT_EQ(manager_.status(host.id).message, "Reconnecting in 10s… (Timeout, server not responding.)");
    const auto log = contentOf(manager_.logURL(host));
    EXPECT_THAT(log, HasSubstr("[2026-03-14 00:00:00 +0000] ssh "));
    EXPECT_THAT(log, HasSubstr("[2026-03-13 00:00:08 +0000] ssh "));
}

TEST_F(ClockTest, SharedListsArriveWhateverTheClockSays) {
    const auto folder = system_.home / "shared";
    std::filesystem::create_directory(folder);
    manager_.folderSync().setFolder(folder);
    manager_.save();
    const auto ours = std::filesystem::last_write_time(folder / "velmora-sync.json");
    for (const auto jump : {day, -2 * day, day}) {
        setClock(jump);
        SSHHost host;
        host.name = "after " + std::to_string(jump.count());
        writeContent(folder / "velmora-sync.json", *encodeHosts({host}));
        std::filesystem::last_write_time(folder / "velmora-sync.json", ours + jump);
        pass(5s);
        ASSERT_EQ(manager_.hosts()->size(), 1U);
        EXPECT_EQ(manager_.hosts()->front().name, host.name);
    }
}

// ---- months ----

class LongUptime : public ClockTest, public testing::WithParamInterface<milliseconds> {};

TEST_P(LongUptime, NothingOverflows) {
    const auto host = connectedHost();
    pass(GetParam());
    EXPECT_EQ(stateOf(host), State::connected);
    EXPECT_EQ(system_.launcher.count(), 1U);
    EXPECT_EQ(system_.scheduler.pendingTimers(), 0U);
    const auto days = std::chrono::floor<std::chrono::days>(GetParam());
    const auto hours = std::chrono::floor<std::chrono::hours>(GetParam() - days);
    EXPECT_EQ(uptimeOf(host), std::to_string(days.count()) + "d" +
                                  (hours.count() > 0 ? " " + std::to_string(hours.count()) + "h" : ""));
    expectDelays({5s, 10s, 20s, 40s, 60s, 60s});
    pass(3s);
    EXPECT_EQ(stateOf(host), State::connected);
    EXPECT_EQ(uptimeOf(host), "< 1m");
}

INSTANTIATE_TEST_SUITE_P(Months, LongUptime,
                         testing::Values(milliseconds(24 * day), milliseconds(25 * day), milliseconds(49 * day),
                                         milliseconds((std::int64_t{1} << 31) - 1), milliseconds(std::int64_t{1} << 31),
                                         milliseconds((std::int64_t{1} << 32) - 1), milliseconds(std::int64_t{1} << 32),
                                         milliseconds(4000 * day)));

TEST_F(ClockTest, TheSharedFolderIsLookedAtForMonths) {
    const auto folder = system_.home / "shared";
    std::filesystem::create_directory(folder);
    manager_.folderSync().setFolder(folder);
    pass(milliseconds(std::int64_t{1} << 32));
    EXPECT_EQ(system_.scheduler.pendingTimers(), 1U);
    writeContent(folder / "velmora-sync.json", *encodeHosts({SSHHost()}));
    pass(5s);
    EXPECT_EQ(manager_.hosts()->size(), 1U);
}

TEST_F(ClockTest, AHostThatFailsForMonthsIsStillTriedEveryMinute) {
    const auto host = connectingHost();
    expectDelays({5s, 10s, 20s, 40s});
    for (int failures = 0; failures < 2000; ++failures) {  // more than the exponent of a floating-point number holds
        const auto before = system_.launcher.count();
        expectDelays({60s});
        system_.launcher.process(before - 1).standardInput.reset();
    }
    drop();
    EXPECT_EQ(manager_.status(host.id).message, "Reconnecting in 60s… (Timeout, server not responding.)");
    pass(3s);
    EXPECT_EQ(system_.scheduler.pendingTimers(), 1U) << "the next attempt";
}

}  // namespace
}  // namespace velmora
