#include "PacClient.h"
#include "ServerProcess.h"
#include "pac/PacServer.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace velmora {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view request = "GET /proxy.pac HTTP/1.1\r\nHost: a\r\n\r\n";

/// Raises what this process may open as far as the system lets it, and says how much that is.
std::size_t raiseDescriptorLimit() {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, 20'000);
    ::setrlimit(RLIMIT_NOFILE, &limit);
    return limit.rlim_cur;
}

TEST(PacServerLoadTest, ServesBesideFiveThousandIdleConnections) {
    const std::size_t count = std::min<std::size_t>(5000, raiseDescriptorLimit() / 3 - 100);
    PacServer server(0);
    server.start();
    std::deque<PacClient> idle;
    while (idle.size() < count) {
        idle.emplace_back(server.listeningPort());
    }
    EXPECT_EQ(fetch(server.listeningPort()).body, PacServer::fallbackScript);
    server.setContent("later");
    for (std::size_t i = 0; i < count; i += 50) {
        EXPECT_FALSE(idle[i].hearsWithin(0ms));
        ASSERT_TRUE(idle[i].send(request));
        EXPECT_EQ(idle[i].receiveAll().body, "later");
    }
}

TEST(PacServerLoadTest, StopsQuicklyWithConnectionsOpen) {
    std::optional<PacServer> server(std::in_place, std::uint16_t{0});
    server->setContent(std::string(std::size_t{32} << 20, 'x'));
    server->start();
    std::deque<PacClient> clients;
    for (int i = 0; i < 100; ++i) {
        clients.emplace_back(server->listeningPort());
        if (i % 2 == 0) {
            ASSERT_TRUE(clients.back().send(request));
            ASSERT_TRUE(clients.back().hearsWithin(20s));  // the beginning of an answer that it does not read
        }
    }
    const auto start = std::chrono::steady_clock::now();
    server.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);
    for (auto& client : clients) {
        EXPECT_TRUE(client.hearsWithin(1s));
    }
}

TEST(PacServerLoadTest, SilentClientsLeaveDescriptorsForOthers) {
    raiseDescriptorLimit();
    ServerProcess server(256);
    std::deque<PacClient> silent;
    while (silent.size() < 500) {
        silent.emplace_back(server.port());
    }
    EXPECT_EQ(fetch(server.port()).body, PacServer::fallbackScript);
    EXPECT_TRUE(server.canStartProgram());
    EXPECT_GT(server.hoardDescriptors(), 256 * 2 / 3 - 20) << "two thirds, but for what the program itself needs";
    server.releaseDescriptors();

    // The first were given up for the later ones, which are still there and are served.
    EXPECT_TRUE(silent[350].hearsWithin(20s));
    EXPECT_FALSE(silent[450].hearsWithin(0ms));
    ASSERT_TRUE(silent[450].send(request));
    EXPECT_EQ(silent[450].receiveAll().body, PacServer::fallbackScript);
}

TEST(PacServerLoadTest, RunningOutOfDescriptorsClosesTheLongestIdleConnection) {
    ServerProcess server(64);
    std::deque<PacClient> silent;
    const auto addSilent = [&](int count) {
        for (int i = 0; i < count; ++i) {
            silent.emplace_back(server.port());
        }
    };
    addSilent(8);
    ASSERT_EQ(fetch(server.port()).body, PacServer::fallbackScript);  // they are known
    ASSERT_GT(server.hoardDescriptors(), 20);
    addSilent(4);
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(fetch(server.port()).body, PacServer::fallbackScript);
    }
    // The first were given up for the later ones, which are still there and are served.
    EXPECT_TRUE(silent.front().hearsWithin(20s));
    EXPECT_FALSE(silent.back().hearsWithin(0ms));
    ASSERT_TRUE(silent.back().send(request));
    EXPECT_EQ(silent.back().receiveAll().body, PacServer::fallbackScript);
}

TEST(PacServerLoadTest, RunningOutOfDescriptorsWithNothingToCloseNeitherSpinsNorStops) {
    ServerProcess server(64);
    ASSERT_GT(server.hoardDescriptors(), 20);
    PacClient first(server.port());
    PacClient second(server.port());
    ASSERT_TRUE(first.send(request));
    ASSERT_TRUE(second.send(request));
    const long before = server.processorMicroseconds();
    EXPECT_FALSE(second.hearsWithin(1s));
    EXPECT_LT(server.processorMicroseconds() - before, 200'000);

    server.releaseDescriptors();
    EXPECT_EQ(first.receiveAll().body, PacServer::fallbackScript);
    EXPECT_EQ(second.receiveAll().body, PacServer::fallbackScript);
    EXPECT_EQ(fetch(server.port()).body, PacServer::fallbackScript);
}

TEST(PacServerLoadTest, SleepsWhileNothingHappens) {
    ServerProcess server(256);
    std::deque<PacClient> silent;
    for (int i = 0; i < 50; ++i) {
        silent.emplace_back(server.port());
        ASSERT_EQ(fetch(server.port()).body, PacServer::fallbackScript);
    }
    // What the clients have closed is closed here too, soon; then nothing is left to do.
    EXPECT_FALSE(silent.back().hearsWithin(1s));
    ServerProcess control(256, ServerProcess::Mode::doesNotListen);  // sanitizers have threads of their own
    const long before = server.wakeUps();
    const long controlBefore = control.wakeUps();
    EXPECT_FALSE(silent.back().hearsWithin(1s));
    EXPECT_LE(server.wakeUps() - before, control.wakeUps() - controlBefore + 1);
}

TEST(PacServerLoadTest, NeverTearsAnAnswerWhileTheContentChanges) {
    std::vector<std::string> scripts;
    for (const std::size_t size : {0, 1, 100, 5'000, 70'000, 400'000}) {
        scripts.emplace_back(size, static_cast<char>('a' + scripts.size()));
    }
    const std::set<std::string> known(scripts.begin(), scripts.end());
    PacServer server(0);
    server.setContent(scripts.front());
    server.start();

    std::atomic<bool> done = false;
    std::thread writer([&] {
        for (std::size_t i = 0; !done; ++i) {
            server.setCustom(i % 2 == 0);
            server.setContent(scripts[i % scripts.size()]);
        }
    });
    std::atomic<int> whole = 0;
    std::vector<std::thread> readers;
    for (int i = 0; i < 8; ++i) {
        readers.emplace_back([&] {
            for (int n = 0; n < 100; ++n) {
                const auto answer = fetch(server.listeningPort());
                if (answer.error == 0 && known.contains(answer.body) &&
                    answer.header == headerFor(answer.body.size())) {
                    ++whole;
                }
            }
        });
    }
    for (int n = 0; n < 2000; ++n) {
        EXPECT_TRUE(known.contains(server.content()));
        (void)server.isCustom();
    }
    for (auto& reader : readers) {
        reader.join();
    }
    done = true;
    writer.join();
    EXPECT_EQ(whole, 800);
}

}  // namespace
}  // namespace velmora
