#include "platform/posix/ThreadWorker.h"

#include <utility>

namespace velmora {

ThreadWorker::~ThreadWorker() {
    cancellation_.request();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void ThreadWorker::run(Job job) {
    if (thread_.joinable()) {
        thread_.join();
    }
    thread_ = std::thread([this, job = std::move(job)] { job(cancellation_); });
}

}  // namespace velmora
