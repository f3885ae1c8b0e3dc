#include "platform/qt/QtScheduler.h"

#include <QMetaObject>
#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <memory>
#include <utility>

namespace velmora {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// QTimer counts in an int of milliseconds; a longer way is gone in legs.
constexpr milliseconds longestLeg = std::chrono::hours(24 * 20);

/// Waits for moments of the monotonic clock.
class QtTimer final : public Scheduler::Timer {
public:
    QtTimer(milliseconds delay, Scheduler::Task task)
        : deadline_(steady_clock::now() + std::max(delay, milliseconds(0))),
          task_(std::make_shared<Scheduler::Task>(std::move(task))) {
        timer_.setSingleShot(true);
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { fire(); });
        arm();
    }

    void repeatEvery(milliseconds interval) { interval_ = std::max(interval, milliseconds(1)); }

private:
    void arm() {
        const auto left = std::chrono::ceil<milliseconds>(deadline_ - steady_clock::now());
        timer_.start(std::clamp(left, milliseconds(0), longestLeg));
    }

    void fire() {
        const auto now = steady_clock::now();
        if (now < deadline_) {
            arm();
            return;
        }
        const auto task = task_;  // the task may destroy this timer
        if (interval_ == milliseconds(0)) {
            (*task)();
            return;
        }
        deadline_ += interval_;
        arm();
        const QPointer<QTimer> alive(&timer_);
        (*task)();
        if (alive) {
            leaveTimeForOthers();
        }
    }

    /// A timer that is due again when its task has just ended would keep the event loop from everything else.
    void leaveTimeForOthers() {
        const auto now = steady_clock::now();
        if (deadline_ <= now) {
            deadline_ = now + interval_;
            arm();
        }
    }

    QTimer timer_;
    steady_clock::time_point deadline_;
    milliseconds interval_{0};
    std::shared_ptr<Scheduler::Task> task_;
};

}  // namespace

std::chrono::system_clock::time_point QtScheduler::now() const {
    return std::chrono::system_clock::now();
}

Scheduler::TimerHandle QtScheduler::after(milliseconds delay, Task task) {
    return std::make_unique<QtTimer>(delay, std::move(task));
}

Scheduler::TimerHandle QtScheduler::every(milliseconds interval, Task task) {
    auto timer = std::make_unique<QtTimer>(interval, std::move(task));
    timer->repeatEvery(interval);
    return timer;
}

void QtScheduler::post(Task task) {
    QMetaObject::invokeMethod(&mainThread_, std::move(task), Qt::QueuedConnection);
}

}  // namespace velmora
