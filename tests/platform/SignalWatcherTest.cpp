#include "fakes/Waiting.h"
#include "platform/posix/SignalWatcher.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <csignal>

namespace velmora {
namespace {

class CountingScheduler final : public Scheduler {
public:
    [[nodiscard]] std::chrono::system_clock::time_point now() const override { return {}; }
    [[nodiscard]] TimerHandle after(std::chrono::milliseconds, Task) override { return {}; }
    [[nodiscard]] TimerHandle every(std::chrono::milliseconds, Task) override { return {}; }
    void post(Task task) override { task(); }
};

TEST(SignalWatcher, EachEndingSignalAsksToQuit) {
    IoThread io;
    CountingScheduler scheduler;
    std::atomic<int> quits = 0;
    const SignalWatcher watcher(io, scheduler, [&] { ++quits; });
    int expected = 0;
    for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGTERM}) {
        ::raise(number);
        ++expected;
        EXPECT_TRUE(waitFor([&] { return quits == expected; })) << number;
    }
}

TEST(SignalWatcher, AProgramStartedWithTheSignalsBlockedStillEnds) {
    sigset_t ending;
    sigset_t before;
    ::sigemptyset(&ending);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        ::sigaddset(&ending, number);
    }
    ::pthread_sigmask(SIG_BLOCK, &ending, &before);
    {
        IoThread io;  // starts with what is blocked here
        CountingScheduler scheduler;
        std::atomic<int> quits = 0;
        const SignalWatcher watcher(io, scheduler, [&] { ++quits; });
        int expected = 0;
        for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
            ::kill(::getpid(), number);
            ++expected;
            ASSERT_TRUE(waitFor([&] { return quits == expected; })) << number;
        }
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace
}  // namespace velmora
