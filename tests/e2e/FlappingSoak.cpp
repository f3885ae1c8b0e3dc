// Hundreds of tunnels to a stand-in for ssh that ends at random, with the real processes, clocks and files, for as long
// as it is told to. Watches what the supervising process holds, and fails when that grows or when anything is left at
// the end.
//
//   velmora_soak [seconds of flapping] [tunnels]
#include "e2e/TunnelStand.h"
#include "fixtures/Processes.h"
#include "platform/posix/FileLimit.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace velmora {
namespace {

using namespace std::chrono_literals;
using State = ConnectionStatus::State;

/// What the supervising process holds at a moment.
struct Sample {
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    long residentKilobytes = 0;
    std::set<pid_t> zombies;
};

std::size_t entriesIn(const std::filesystem::path& directory) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(directory), {}));
}

/// Our children that have ended and that nobody has waited for.
std::set<pid_t> zombies() {
    std::set<pid_t> found;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream children(task.path() / "children");
        for (pid_t pid = 0; children >> pid;) {
            const auto stat = contentOf("/proc/" + std::to_string(pid) + "/stat");
            if (stat.find(") Z ") != std::string::npos) {
                found.insert(pid);
            }
        }
    }
    return found;
}

Sample sample() {
    return {entriesIn("/proc/self/fd"), entriesIn("/proc/self/task"), residentKilobytes(), zombies()};
}

class Soak final {
public:
    Soak(std::chrono::seconds duration, std::size_t tunnels)
        : duration_(duration), tunnels_(tunnels), stand_(FAKESSH, {{"FAKESSH_FLAP", badTimes().string()}}) {}

    /// The number of things that were wrong.
    int run() {
        const auto before = warmUp();
        writeContent(badTimes(), "");
        for (std::size_t i = 0; i < tunnels_; ++i) {
            addHost();
        }
        flap();
        std::filesystem::remove(badTimes());
        comeToRest();
        const auto after = endAll();
        compareWindows();
        compareEnds(before, after);
        std::printf("%s\n", failures_ == 0 ? "passed" : "FAILED");
        return failures_;
    }

private:
    std::filesystem::path badTimes() const { return directory_ / "bad-times"; }

    void check(bool holds, const std::string& what) {
        if (!holds) {
            std::printf("WRONG: %s\n", what.c_str());
            ++failures_;
        }
    }

    SSHHost addHost() {
        SSHHost host;
        host.name = "host " + std::to_string(added_++);
        host.hostname = "server.example";
        if (added_ % 5 == 0) {
            host.authMethod = AuthMethod::password;
            stand_.passwords().items[{"com.velmora.app", host.id.toString()}] = "secret";
        }
        logs_.insert(stand_.manager().logURL(host));
        stand_.connect(host);
        return host;
    }

    /// What is paid once is paid before the first sample.
    Sample warmUp() {
        const auto host = addHost();
        stand_.run(200ms);
        stand_.manager().disconnect(host);
        check(stand_.waitUntil([] { return descendantsOf(::getpid()).empty(); }), "the first process ends");
        stand_.manager().deleteHost(host.id);
        stand_.run(200ms);
        return sample();
    }

    void flap() {
        QTimer sampling;
        QObject::connect(&sampling, &QTimer::timeout, &sampling, [this] { takeSample(); });
        sampling.start(std::clamp<int>(static_cast<int>(duration_.count()) * 5, 100, 2000));
        QTimer acting;
        QObject::connect(&acting, &QTimer::timeout, &acting, [this] { act(); });
        acting.start(100);
        QElapsedTimer sinceBeat;
        sinceBeat.start();
        QTimer heart;
        QElapsedTimer sinceStart;
        sinceStart.start();
        QObject::connect(&heart, &QTimer::timeout, &heart, [&] {
            longestBeat_ = std::max(longestBeat_, {sinceBeat.restart(), sinceStart.elapsed()});
        });
        heart.start(20);
        stand_.run(duration_);
    }

    void takeSample() {
        QElapsedTimer taking;
        taking.start();
        auto now = sample();
        longestSample_ = std::max(longestSample_, taking.elapsed());
        for (const auto pid : now.zombies) {
            check(samples_.empty() || !samples_.back().zombies.contains(pid), "a process is not waited for");
        }
        samples_.push_back(std::move(now));
    }

    /// A user who stops and starts, edits and replaces hosts.
    void act() {
        stand_.passwords().calls.clear();
        auto& manager = stand_.manager();
        const auto host = manager.hosts()->at(random_() % manager.hosts()->size());
        switch (random_() % 8) {
            case 0:
                manager.deleteHost(host.id);
                addHost();
                break;
            case 1:
                manager.disconnect(host);
                stopped_.emplace_back(std::chrono::steady_clock::now(), host.id);
                break;
            case 2:
                manager.hosts().edit([&](std::vector<SSHHost>& hosts) {
                    hosts[random_() % hosts.size()].serverAliveInterval = static_cast<std::int64_t>(random_() % 100);
                });
                break;
            default:
                if (manager.status(host.id).state == State::error) {
                    manager.connect(host);
                }
                break;
        }
        restartWhatWasStopped();
    }

    /// Not at once: the exit of the old process would be taken for that of the new one.
    void restartWhatWasStopped() {
        const auto longAgo = std::chrono::steady_clock::now() - 3s;
        while (!stopped_.empty() && stopped_.front().first < longAgo) {
            if (const auto* host = stand_.manager().findHost(stopped_.front().second)) {
                stand_.manager().connect(SSHHost(*host));
            }
            stopped_.pop_front();
        }
    }

    [[nodiscard]] std::size_t countOf(State state) {
        const auto& hosts = stand_.manager().hosts().get();
        return static_cast<std::size_t>(std::count_if(hosts.begin(), hosts.end(), [&](const SSHHost& host) {
            return stand_.manager().status(host.id).state == state;
        }));
    }

    void comeToRest() {
        stand_.run(1s);  // what was stopped a moment ago ends
        for (const auto& host : std::vector(stand_.manager().hosts().get())) {
            if (stand_.manager().status(host.id) == ConnectionStatus::disconnected()) {
                stand_.manager().connect(host);
            }
        }
        // The last to flap, the longest delay, and the time that counts as connected.
        stand_.run(9s);
        check(stand_.waitUntil([this] { return countOf(State::connected) == tunnels_; }, 75s),
              "all come back by themselves: " + std::to_string(countOf(State::connected)) + " have");
        check(descendantsOf(::getpid()).size() == tunnels_,
              "one process a tunnel: " + std::to_string(descendantsOf(::getpid()).size()));
    }

    Sample endAll() {
        for (const auto& host : std::vector(stand_.manager().hosts().get())) {
            stand_.manager().disconnect(host);
        }
        check(countOf(State::disconnected) == tunnels_, "all are disconnected");
        check(stand_.waitUntil([] { return descendantsOf(::getpid()).empty(); }, 10s), "all processes end");
        stand_.run(1s);
        check(countOf(State::disconnected) == tunnels_, "all stay disconnected");
        check(stand_.manager().connectedAt()->empty(), "no connection times are left");
        check(stand_.askpassFiles().empty(), "no password scripts are left");
        return sample();
    }

    [[nodiscard]] Sample peakOf(std::size_t tenth) const {
        Sample peak;
        const auto length = samples_.size() / 10;
        for (auto i = tenth * length; i < (tenth + 1) * length; ++i) {
            peak.descriptors = std::max(peak.descriptors, samples_[i].descriptors);
            peak.threads = std::max(peak.threads, samples_[i].threads);
            peak.residentKilobytes = std::max(peak.residentKilobytes, samples_[i].residentKilobytes);
        }
        return peak;
    }

    /// The second tenth of the time against the last.
    void compareWindows() {
        const auto early = peakOf(1);
        const auto late = peakOf(9);
        Sample most;
        for (const auto& each : samples_) {
            most.descriptors = std::max(most.descriptors, each.descriptors);
        }
        std::printf(
            "descriptors: %zu early, %zu late, %zu at most\nthreads: %zu early, %zu late\n"
            "resident: %ld KB early, %ld KB late\n"
            "longest turn of the main thread: %lld ms, %lld s after the start; looking at ourselves: %lld ms at most\n",
            early.descriptors, late.descriptors, most.descriptors, early.threads, late.threads, early.residentKilobytes,
            late.residentKilobytes, static_cast<long long>(longestBeat_.first),
            static_cast<long long>(longestBeat_.second / 1000), static_cast<long long>(longestSample_));
        check(late.descriptors <= early.descriptors + tunnels_ / 5, "descriptors grow");
        check(late.threads <= early.threads, "threads grow");
        check(late.residentKilobytes <= early.residentKilobytes + 1024, "memory grows");
        check(longestBeat_.first < 1000, "the main thread is held up");
    }

    void compareEnds(const Sample& before, const Sample& after) {
        std::size_t starts = 0;
        std::size_t exits = 0;
        for (const auto& log : logs_) {
            std::istringstream text(contentOf(log));
            for (std::string line; std::getline(text, line);) {
                starts += line.find("] ssh ") != std::string::npos ? 1U : 0U;
                exits += line.starts_with("[exit ") ? 1U : 0U;
            }
        }
        std::printf(
            "starts: %zu, exits: %zu\nat rest: %zu descriptors before, %zu after; %ld KB before, %ld KB after\n",
            starts, exits, before.descriptors, after.descriptors, before.residentKilobytes, after.residentKilobytes);
        check(starts == exits, "every start has its exit");
        check(exits > tunnels_, "it does flap");
        check(after.descriptors == before.descriptors, "descriptors are left");
        check(after.threads == before.threads, "threads are left");
        check(after.zombies.empty(), "processes are not waited for");
    }

    const std::chrono::seconds duration_;
    const std::size_t tunnels_;
    TemporaryDirectory directory_;
    TunnelStand stand_;
    std::mt19937 random_{std::random_device{}()};
    std::set<std::filesystem::path> logs_;
    std::vector<Sample> samples_;
    std::deque<std::pair<std::chrono::steady_clock::time_point, Uuid>> stopped_;
    std::size_t added_ = 0;
    std::pair<qint64, qint64> longestBeat_;  // how long, and when: ms
    qint64 longestSample_ = 0;               // ms
    int failures_ = 0;
};

}  // namespace
}  // namespace velmora

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    velmora::raiseFileLimit();
    const std::chrono::seconds duration(argc > 1 ? std::atoi(argv[1]) : 12);
    const std::size_t tunnels = argc > 2 ? std::stoul(argv[2]) : 300;
    return velmora::Soak(duration, tunnels).run() == 0 ? 0 : 1;
}
