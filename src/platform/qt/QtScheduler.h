#pragma once

#include "platform/Scheduler.h"

#include <QObject>

namespace velmora {

/// Time and tasks on Qt's event loop. Made on the main thread; outlives every thread that posts to it.
class QtScheduler final : public Scheduler {
public:
    QtScheduler() = default;

    [[nodiscard]] std::chrono::system_clock::time_point now() const override;
    [[nodiscard]] TimerHandle after(std::chrono::milliseconds delay, Task task) override;
    [[nodiscard]] TimerHandle every(std::chrono::milliseconds interval, Task task) override;
    void post(Task task) override;

private:
    QObject mainThread_;  ///< receives what is posted; what still waits goes with it
};

}  // namespace velmora
