#pragma once

#include "base/Result.h"

#include <string>
#include <vector>

namespace velmora {

/// Starts programs that outlive this one.
class DetachedLauncher {
public:
    DetachedLauncher() = default;
    DetachedLauncher(const DetachedLauncher&) = delete;
    DetachedLauncher& operator=(const DetachedLauncher&) = delete;
    virtual ~DetachedLauncher() = default;

    /// Starts a program in a session of its own, with the application's environment and no terminal, and waits for
    /// nothing. The error is the system's own description. Any thread.
    virtual Result<void, Error> start(const std::string& program, const std::vector<std::string>& arguments) = 0;
};

}  // namespace velmora
