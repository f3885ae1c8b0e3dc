#include "fakes/Waiting.h"
#include "platform/posix/ThreadWorker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace velmora {
namespace {

TEST(ThreadWorker, RunsAJobOnAnotherThread) {
    std::atomic<bool> elsewhere = false;
    {
        ThreadWorker worker;
        worker.run([&, here = std::this_thread::get_id()](const Cancellation&) {
            elsewhere = std::this_thread::get_id() != here;
        });
    }
    EXPECT_TRUE(elsewhere);
}

TEST(ThreadWorker, RunsOneJobAfterTheOther) {
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    {
        ThreadWorker worker;
        for (int i = 0; i < 3; ++i) {
            worker.run([&](const Cancellation&) {
                most = std::max(most.load(), ++running);
                std::this_thread::yield();
                --running;
            });
        }
    }
    EXPECT_EQ(most, 1);
}

TEST(ThreadWorker, ItsEndAsksTheJobToStopAndWaitsForIt) {
    std::atomic<bool> stopped = false;
    {
        ThreadWorker worker;
        worker.run(
            [&](const Cancellation& cancellation) { stopped = waitFor([&] { return cancellation.isRequested(); }); });
    }
    EXPECT_TRUE(stopped);
}

}  // namespace
}  // namespace velmora
