#pragma once

#include <functional>

namespace velmora {

/// Calls a function when something ends the process through exit() while this object lives: nothing of what stands on
/// the stack is destroyed then. A toolkit does so when it loses its display. One at a time. Main thread.
class ExitWatcher final {
public:
    explicit ExitWatcher(std::function<void()> exiting);
    ExitWatcher(const ExitWatcher&) = delete;
    ExitWatcher& operator=(const ExitWatcher&) = delete;
    ~ExitWatcher();

private:
    std::function<void()> exiting_;
};

}  // namespace velmora
