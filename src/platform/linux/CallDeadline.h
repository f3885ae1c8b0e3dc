#pragma once

#include "platform/linux/GObjectPtr.h"

#include <gio/gio.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace velmora {

/// Bounds synchronous GIO calls in time: they are given `cancellable()`, which a watching thread cancels when the time
/// is up. The watch ends with the object, which waits for no call.
class CallDeadline final {
public:
    explicit CallDeadline(std::chrono::milliseconds allowed);
    CallDeadline(const CallDeadline&) = delete;
    CallDeadline& operator=(const CallDeadline&) = delete;
    ~CallDeadline() = default;

    [[nodiscard]] GCancellable* cancellable() const { return cancellable_.get(); }
    [[nodiscard]] bool isPast() const { return g_cancellable_is_cancelled(cancellable_.get()) != FALSE; }

private:
    GObjectPtr<GCancellable> cancellable_{g_cancellable_new()};
    std::mutex mutex_;
    std::condition_variable_any ended_;
    std::jthread watch_;  // last: it uses what stands above, and ends before it
};

}  // namespace velmora
