#pragma once

#include "base/Result.h"
#include "base/UniqueFd.h"
#include "platform/ProcessLauncher.h"

#include <sys/types.h>

#include <string>
#include <vector>

namespace velmora {

enum class WhenParentDies { keepRunning, terminate };

struct SpawnRequest {
    const std::string& program;                 ///< absolute path
    const std::vector<std::string>& arguments;  ///< without the program's own name
    const Environment& environment;
    int standardInput = -1;
    int standardOutput = -1;
    int standardError = -1;
    /// `terminate` only from the main thread: the system means the thread that started the process. Where the system
    /// knows no such thing it is the same as `keepRunning`.
    WhenParentDies whenParentDies = WhenParentDies::keepRunning;
};

struct SpawnedProcess {
    pid_t pid = -1;
    UniqueFd exitDescriptor;  ///< becomes readable when the process has ended; it is still to be waited for
};

/// Starts a program in a session of its own, with no descriptor but the three, default signal handling and nothing
/// blocked. Comes back once the program runs, or with the system's description of why it does not. Any thread.
Result<SpawnedProcess, Error> spawn(const SpawnRequest& request);

/// Arguments and environment as the system wants them. The request's own strings are used: it must stay.
class SpawnStrings final {
public:
    explicit SpawnStrings(const SpawnRequest& request);
    SpawnStrings(const SpawnStrings&) = delete;
    SpawnStrings& operator=(const SpawnStrings&) = delete;
    ~SpawnStrings() = default;

    /// False when a string holds a zero byte: it cannot be passed on.
    [[nodiscard]] bool arePassable() const { return passable_; }
    [[nodiscard]] char* const* arguments() const { return arguments_.data(); }
    [[nodiscard]] char* const* environment() const { return environment_.data(); }

private:
    void addArgument(const std::string& text);

    bool passable_ = true;
    std::vector<std::string> entries_;
    std::vector<char*> arguments_;
    std::vector<char*> environment_;
};

/// The exit status of a process that has ended, or the number of the signal that ended it. Waits for the process.
int reap(pid_t pid);

}  // namespace velmora
