#pragma once

#include "base/Cancellation.h"

#include <functional>

namespace velmora {

/// Does long work away from the main thread.
class BackgroundWorker {
public:
    using Job = std::function<void(const Cancellation&)>;

    BackgroundWorker() = default;
    BackgroundWorker(const BackgroundWorker&) = delete;
    BackgroundWorker& operator=(const BackgroundWorker&) = delete;

    /// Asks the job that runs to stop, and waits for its end.
    virtual ~BackgroundWorker() = default;

    /// Starts a job; one that still runs is waited for first. Main thread.
    virtual void run(Job job) = 0;
};

}  // namespace velmora
