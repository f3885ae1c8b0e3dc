#pragma once

#include "platform/BackgroundWorker.h"

#include <deque>
#include <utility>

namespace velmora {

/// Keeps jobs until the test runs them, on the test's own thread.
class InlineWorker final : public BackgroundWorker {
public:
    void run(Job job) override { jobs_.push_back(std::move(job)); }

    [[nodiscard]] std::size_t waiting() const { return jobs_.size(); }

    void runAll() {
        while (!jobs_.empty()) {
            const auto job = std::move(jobs_.front());
            jobs_.pop_front();
            job(cancellation_);
        }
    }

private:
    Cancellation cancellation_;
    std::deque<Job> jobs_;
};

}  // namespace velmora
