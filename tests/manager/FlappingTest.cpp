#include "fakes/FakeSystem.h"
#include "fakes/Waiting.h"
#include "manager/TunnelManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <random>

namespace velmora {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using testing::HasSubstr;
using testing::Not;
using State = ConnectionStatus::State;

constexpr std::size_t tunnels = 300;
constexpr auto step = 50ms;
const std::string launchFailure = "Resource temporarily unavailable";

/// Hundreds of tunnels whose ssh comes and goes at random, while somebody clicks and edits at random, for more than ten
/// minutes of a clock that only we move.
class Flapping : public testing::TestWithParam<unsigned> {
protected:
    struct Running {
        Uuid host;
        milliseconds end;  ///< on our clock
        bool isAsked = false;
    };

    void SetUp() override {
        std::vector<SSHHost> hosts(tunnels);
        for (std::size_t i = 0; i < tunnels; ++i) {
            make(hosts[i], i);
        }
        const auto abandoned = system_.runtime / ("velmora-askpass-" + Uuid::random().toString() + ".sh");
        writeContent(abandoned, "#!/bin/sh\n");
        manager_.emplace(system_.platform());
        // Its thread for such scripts has the folder open until it ends.
        ASSERT_TRUE(waitFor([&] { return !std::filesystem::exists(abandoned) && !isOpen(system_.runtime.path()); }));
        descriptorsBefore_ = descriptors();
        manager_->hosts().set(std::move(hosts));
        for (const auto& host : std::vector(manager_->hosts().get())) {
            manager_->connect(host);
        }
        noticeLaunches();
    }

    void make(SSHHost& host, std::size_t number) {
        host.name = "host " + std::to_string(number);
        host.hostname = std::to_string(number) + ".example";
        if (number % 5 == 0) {
            host.authMethod = AuthMethod::password;
            system_.credentials.items[{"com.velmora.app", host.id.toString()}] = "secret";
        }
    }

    std::size_t below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_); }
    bool oneIn(std::size_t chances) { return below(chances) == 0; }
    milliseconds between(milliseconds least, milliseconds most) {
        return milliseconds(std::uniform_int_distribution<long>(least.count(), most.count())(random_));
    }
    SSHHost anyHost() { return manager_->hosts()->at(below(manager_->hosts()->size())); }

    static bool isOpen(const std::filesystem::path& folder) {
        const std::filesystem::directory_iterator descriptors("/proc/self/fd");
        return std::any_of(begin(descriptors), end(descriptors), [&](const auto& entry) {
            std::error_code error;
            return std::filesystem::read_symlink(entry, error) == folder;
        });
    }
    static std::size_t entriesIn(const std::filesystem::path& folder) {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
    }
    static std::size_t descriptors() { return entriesIn("/proc/self/fd"); }
    std::size_t askpassFiles() const { return entriesIn(system_.runtime.path()); }

    /// Some give up at once, some work for a while, some for minutes.
    milliseconds lifetime() {
        if (!isFlapping_) {
            return 24h;
        }
        const auto kind = below(10);
        return kind < 4 ? between(0ms, 3500ms) : kind < 9 ? between(3s, 20s) : between(20s, 5min);
    }

    void noticeLaunches() {
        for (; noticed_ < system_.launcher.count(); ++noticed_) {
            const auto& destination = system_.launcher.process(noticed_).arguments.back();
            const auto& hosts = manager_->hosts().get();
            const auto host = std::find_if(hosts.begin(), hosts.end(),
                                           [&](const SSHHost& each) { return each.hostname == destination; });
            ASSERT_NE(host, hosts.end()) << "a host that is gone was connected";
            running_.emplace(noticed_, Running{host->id, clock_ + lifetime()});
            registered_[host->id] = noticed_;
        }
    }

    void endWhatIsDue() {
        for (auto entry = running_.begin(); entry != running_.end();) {
            auto& [index, running] = *entry;
            auto& process = system_.launcher.process(index);
            if (process.terminations > 0 && !running.isAsked) {
                running.isAsked = true;
                running.end = std::min(running.end, clock_ + (oneIn(10) ? between(0s, 6s) : between(0s, 200ms)));
            }
            if (running.end > clock_) {
                ++entry;
                continue;
            }
            const auto host = running.host;
            entry = running_.erase(entry);
            ++exits_;
            registered_.erase(host);  // whichever process it was that ended
            process.exitSaying(oneIn(3) ? "" : "Connection closed by remote host\n", 255);
            process.standardInput.reset();
            process.events = {};
            system_.scheduler.runPosted();
            noticeLaunches();
        }
    }

    void pass(milliseconds duration) {
        for (const auto end = clock_ + duration; clock_ < end; clock_ += step) {
            system_.scheduler.advance(step);
            noticeLaunches();
            endWhatIsDue();
        }
    }

    void disconnect(const SSHHost& host) {
        manager_->disconnect(host);
        registered_.erase(host.id);
    }

    void edit() {
        manager_->hosts().edit([&](std::vector<SSHHost>& hosts) {
            auto& host = hosts[below(hosts.size())];
            host.serverAliveInterval = static_cast<std::int64_t>(below(100));
            host.name += oneIn(10) ? "x" : "";
        });
    }

    void replaceAHost() {
        const auto host = anyHost();
        manager_->deleteHost(host.id);
        registered_.erase(host.id);
        SSHHost fresh;
        make(fresh, tunnels + replaced_++);
        manager_->hosts().edit([&](std::vector<SSHHost>& hosts) { hosts.push_back(fresh); });
        manager_->connect(fresh);
    }

    void toggle(const SSHHost& host) {
        if (manager_->isActive(host)) {
            registered_.erase(host.id);
        }
        manager_->toggle(host);
    }

    /// What a user may do, and what the system may do to the program.
    void act() {
        system_.launcher.failure.reset();
        switch (below(20)) {
            case 0:
                edit();
                break;
            case 1:
                replaceAHost();
                break;
            case 2:
            case 3:
                disconnect(anyHost());
                break;
            case 4:
            case 5:
                toggle(anyHost());
                break;
            case 6:
            case 7:
            case 8:
                manager_->connect(anyHost());
                break;
            case 9:
                if (oneIn(20)) {
                    registered_.clear();
                    manager_->setGlobalProxyJumpEnabled(!*manager_->globalProxyJumpEnabled());
                }
                break;
            case 10:
                system_.scheduler.shiftClock(std::chrono::seconds(below(2) * 172800) - 24h);
                break;
            case 11:
                system_.launcher.failure = oneIn(4) ? std::optional(Error{launchFailure}) : std::nullopt;
                break;
            default:
                break;
        }
        noticeLaunches();
    }

    void expectTablesToAgree() {
        for (const auto& host : manager_->hosts().get()) {
            const auto state = manager_->status(host.id).state;
            ASSERT_EQ(state == State::connecting || state == State::connected, registered_.contains(host.id))
                << host.name << " " << manager_->status(host.id).message;
            ASSERT_EQ(state == State::connected, manager_->connectedAt()->contains(host.id)) << host.name;
        }
    }

    void expectAll(const ConnectionStatus& status) {
        for (const auto& host : manager_->hosts().get()) {
            ASSERT_EQ(manager_->status(host.id), status) << host.name << " " << manager_->status(host.id).message;
        }
    }

    /// Processes that nobody asked to end. Those that an old process's late exit pushed out of the tables are of them.
    std::size_t unasked() const {
        return static_cast<std::size_t>(
            std::count_if(running_.begin(), running_.end(), [](const auto& entry) { return !entry.second.isAsked; }));
    }

    FakeSystem system_;
    std::optional<TunnelManager> manager_;
    std::mt19937 random_{GetParam()};
    bool isFlapping_ = true;
    milliseconds clock_{0};
    std::map<std::size_t, Running> running_;
    std::unordered_map<Uuid, std::size_t> registered_;
    std::size_t noticed_ = 0;
    std::size_t exits_ = 0;
    std::size_t replaced_ = 0;
    std::size_t descriptorsBefore_ = 0;
};

TEST_P(Flapping, LeavesTheStatusesRightAndNothingBehind) {
    for (int second = 0; second < 900; ++second) {
        act();
        pass(500ms);
        act();
        pass(500ms);
        ASSERT_NO_FATAL_FAILURE(expectTablesToAgree());
    }
    EXPECT_GT(exits_, 5000U);

    isFlapping_ = false;
    system_.launcher.failure.reset();
    for (auto& [index, running] : running_) {
        running.end = running.isAsked ? running.end : milliseconds(24h);
    }
    pass(70s);  // the longest delay and a connect
    ASSERT_NO_FATAL_FAILURE(expectTablesToAgree());
    EXPECT_EQ(system_.scheduler.pendingTimers(), 0U);
    for (const auto& host : manager_->hosts().get()) {
        EXPECT_THAT(manager_->status(host.id).message, Not(HasSubstr("Reconnecting")));
    }

    for (const auto& host : std::vector(manager_->hosts().get())) {
        manager_->connect(host);
    }
    pass(4s);
    expectAll(ConnectionStatus::connected());
    EXPECT_EQ(manager_->connectedAt()->size(), tunnels);
    EXPECT_EQ(registered_.size(), tunnels);
    const auto orphans = unasked() - tunnels;

    for (const auto& host : std::vector(manager_->hosts().get())) {
        disconnect(host);
    }
    pass(70s);
    expectAll(ConnectionStatus::disconnected());
    EXPECT_TRUE(manager_->connectedAt()->empty());
    EXPECT_EQ(askpassFiles(), 0U);
    EXPECT_EQ(system_.scheduler.pendingTimers(), 0U);
    EXPECT_EQ(running_.size(), orphans) << "everything that was known has ended";
    for (const auto& [index, running] : running_) {
        system_.launcher.process(index).standardInput.reset();
    }
    EXPECT_EQ(descriptors(), descriptorsBefore_);
}

TEST_P(Flapping, AtQuitEverythingThatIsKnownIsAskedToEndAndNothingComesBack) {
    for (int second = 0; second < 120; ++second) {
        act();
        pass(1s);
    }
    manager_->terminateAllProcesses();
    const auto launched = system_.launcher.count();
    for (const auto& [host, index] : registered_) {
        EXPECT_GT(system_.launcher.process(index).terminations, 0);
    }
    EXPECT_EQ(askpassFiles(), 0U);
    manager_.reset();
    system_.scheduler.advance(1h);
    EXPECT_EQ(system_.launcher.count(), launched);
    EXPECT_EQ(system_.scheduler.pendingTimers(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, Flapping, testing::Values(1U, 7U, 20260314U));

}  // namespace
}  // namespace velmora
