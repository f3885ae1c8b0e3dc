#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace velmora {

/// Time and the main thread, as the rest of the program sees them.
class Scheduler {
public:
    using Task = std::function<void()>;

    /// A task that is still to come. Destroying the handle cancels it, also from within the task itself.
    class Timer {
    public:
        Timer() = default;
        Timer(const Timer&) = delete;
        Timer& operator=(const Timer&) = delete;
        virtual ~Timer() = default;
    };
    using TimerHandle = std::unique_ptr<Timer>;

    Scheduler() = default;
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;
    virtual ~Scheduler() = default;

    /// The time of day. Main thread.
    [[nodiscard]] virtual std::chrono::system_clock::time_point now() const = 0;

    /// Runs a task once on the main thread after a delay on the monotonic clock, never early. Main thread.
    [[nodiscard]] virtual TimerHandle after(std::chrono::milliseconds delay, Task task) = 0;

    /// Runs a task on the main thread again and again, without drift. A task that takes longer than the interval makes
    /// the next run wait for a whole interval after its end, so that others get their turn. Main thread.
    [[nodiscard]] virtual TimerHandle every(std::chrono::milliseconds interval, Task task) = 0;

    /// Runs a task on the main thread soon, after those posted before it. Any thread. What is still waiting when the
    /// program ends is dropped.
    virtual void post(Task task) = 0;
};

}  // namespace velmora
