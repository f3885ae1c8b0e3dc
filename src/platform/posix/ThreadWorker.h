#pragma once

#include "platform/BackgroundWorker.h"

#include <thread>

namespace velmora {

/// A thread for each job: between jobs there is none.
class ThreadWorker final : public BackgroundWorker {
public:
    ThreadWorker() = default;
    ~ThreadWorker() override;

    void run(Job job) override;

private:
    Cancellation cancellation_;
    std::thread thread_;
};

}  // namespace velmora
