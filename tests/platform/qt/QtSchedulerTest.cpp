#include "EventLoop.h"
#include "platform/qt/QtScheduler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace velmora {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

TEST(QtScheduler, RunsATaskOnceAndNeverEarly) {
    QtScheduler scheduler;
    for (const auto delay : {0ms, 1ms, 7ms, 20ms}) {
        int runs = 0;
        const auto start = Clock::now();
        Clock::time_point ran;
        const auto timer = scheduler.after(delay, [&] {
            ++runs;
            ran = Clock::now();
        });
        EXPECT_EQ(runs, 0);
        ASSERT_TRUE(runUntil([&] { return runs > 0; }));
        EXPECT_GE(ran - start, delay);
        runFor(5ms);
        EXPECT_EQ(runs, 1);
    }
}

TEST(QtScheduler, TakesANegativeDelayForNone) {
    QtScheduler scheduler;
    bool ran = false;
    const auto timer = scheduler.after(-5s, [&] { ran = true; });
    EXPECT_TRUE(runUntil([&] { return ran; }));
}

TEST(QtScheduler, DestroyingTheHandleCancels) {
    QtScheduler scheduler;
    bool ran = false;
    auto timer = scheduler.after(1ms, [&] { ran = true; });
    timer.reset();
    runFor(10ms);
    EXPECT_FALSE(ran);
}

TEST(QtScheduler, ATaskMayDestroyItsOwnHandle) {
    QtScheduler scheduler;
    int once = 0;
    int repeated = 0;
    Scheduler::TimerHandle single;
    Scheduler::TimerHandle repeating;
    single = scheduler.after(1ms, [&] {
        single.reset();
        ++once;
    });
    repeating = scheduler.every(1ms, [&] {
        if (++repeated == 3) {
            repeating.reset();
        }
    });
    ASSERT_TRUE(runUntil([&] { return once == 1 && repeated == 3; }));
    runFor(10ms);
    EXPECT_EQ(once, 1);
    EXPECT_EQ(repeated, 3);
}

TEST(QtScheduler, ATaskMayReplaceItsOwnHandle) {
    QtScheduler scheduler;
    bool second = false;
    Scheduler::TimerHandle timer;
    timer = scheduler.after(1ms, [&] { timer = scheduler.after(1ms, [&] { second = true; }); });
    EXPECT_TRUE(runUntil([&] { return second; }));
}

TEST(QtScheduler, RepeatsWithoutDrift) {
    QtScheduler scheduler;
    int runs = 0;
    const auto start = Clock::now();
    const auto timer = scheduler.every(4ms, [&] { ++runs; });
    ASSERT_TRUE(runUntil([&] { return runs >= 10; }));
    EXPECT_GE(Clock::now() - start, 40ms);
}

/// The times between the end of a task and the start of its next run.
class Pauses {
public:
    void runTask(std::chrono::milliseconds busy) {
        if (end_) {
            all_.push_back(Clock::now() - *end_);
        }
        std::this_thread::sleep_for(busy);
        end_ = Clock::now();
    }

    [[nodiscard]] std::size_t count() const { return all_.size(); }
    [[nodiscard]] Clock::duration shortest() const { return *std::min_element(all_.begin(), all_.end()); }

private:
    std::optional<Clock::time_point> end_;
    std::vector<Clock::duration> all_;
};

TEST(QtScheduler, ATaskLongerThanItsIntervalLeavesTheLoopAnInterval) {
    QtScheduler scheduler;
    Pauses pauses;
    const auto timer = scheduler.every(5ms, [&] { pauses.runTask(7ms); });
    ASSERT_TRUE(runUntil([&] { return pauses.count() >= 2; }));
    EXPECT_GE(pauses.shortest(), 5ms);
}

TEST(QtScheduler, AShortTaskIsPartOfItsInterval) {
    QtScheduler scheduler;
    Pauses pauses;
    const auto timer = scheduler.every(10ms, [&] { pauses.runTask(3ms); });
    EXPECT_TRUE(runUntil([&] { return pauses.count() > 0 && pauses.shortest() < 10ms; }));
}

TEST(QtScheduler, ALongTaskMayDestroyItsOwnHandle) {
    QtScheduler scheduler;
    int runs = 0;
    Scheduler::TimerHandle timer;
    timer = scheduler.every(1ms, [&] {
        ++runs;
        timer.reset();
        std::this_thread::sleep_for(2ms);
    });
    ASSERT_TRUE(runUntil([&] { return runs == 1; }));
    runFor(5ms);
    EXPECT_EQ(runs, 1);
}

TEST(QtScheduler, TakesDelaysOfMonths) {
    QtScheduler scheduler;
    bool ran = false;
    const std::vector<std::chrono::milliseconds> delays{24h * 24, 24h * 25, 24h * 49, 24h * 50, 24h * 1000};
    std::vector<Scheduler::TimerHandle> timers;
    for (const auto delay : delays) {
        timers.push_back(scheduler.after(delay, [&] { ran = true; }));
        timers.push_back(scheduler.every(delay, [&] { ran = true; }));
    }
    runFor(20ms);
    EXPECT_FALSE(ran);
}

TEST(QtScheduler, RunsPostedTasksInOrderOnTheMainThread) {
    QtScheduler scheduler;
    const auto mainThread = std::this_thread::get_id();
    std::vector<int> order;
    std::thread other([&] {
        for (int number = 0; number < 100; ++number) {
            scheduler.post([&order, mainThread, number] {
                EXPECT_EQ(std::this_thread::get_id(), mainThread);
                order.push_back(number);
            });
        }
    });
    other.join();
    EXPECT_TRUE(order.empty());
    ASSERT_TRUE(runUntil([&] { return order.size() == 100; }));
    for (int number = 0; number < 100; ++number) {
        EXPECT_EQ(order[static_cast<std::size_t>(number)], number);
    }
}

TEST(QtScheduler, APostedTaskDoesNotRunWithinTheCall) {
    QtScheduler scheduler;
    bool ran = false;
    scheduler.post([&] { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_TRUE(runUntil([&] { return ran; }));
}

TEST(QtScheduler, DropsWhatIsStillWaitingWhenItGoes) {
    bool ran = false;
    const auto held = std::make_shared<int>(1);
    {
        QtScheduler scheduler;
        scheduler.post([&ran, held] { ran = true; });
    }
    runFor(5ms);
    EXPECT_FALSE(ran);
    EXPECT_EQ(held.use_count(), 1);
}

TEST(QtScheduler, TellsTheTimeOfDay) {
    const QtScheduler scheduler;
    const auto difference = std::chrono::system_clock::now() - scheduler.now();
    EXPECT_GE(difference, 0s);
    EXPECT_LT(difference, 10s);
}

}  // namespace

}  // namespace velmora
