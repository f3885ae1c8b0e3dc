#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace velmora {

/// Waits for something that another thread or process is about to do; false when it does not happen in time.
inline bool waitFor(const std::function<bool()>& condition,
                    std::chrono::milliseconds patience = std::chrono::seconds(20)) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

}  // namespace velmora
