#pragma once

#include <atomic>

namespace velmora {

/// Asks work on another thread to stop. Long work looks from time to time. Any thread.
class Cancellation final {
public:
    void request() { requested_ = true; }
    [[nodiscard]] bool isRequested() const { return requested_; }

private:
    std::atomic<bool> requested_ = false;
};

}  // namespace velmora
