#pragma once

#include "base/Result.h"
#include "base/UniqueFd.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

using Environment = std::map<std::string, std::string>;

struct ProcessSpec {
    std::string program;                 ///< absolute path
    std::vector<std::string> arguments;  ///< without the program's own name
    Environment environment;             ///< all of it: nothing is inherited
    UniqueFd standardInput;              ///< the reading end of a pipe
};

/// What happens to a running process. Called on the I/O thread, one at a time.
struct ProcessEvents {
    /// Bytes as they arrive; valid during the call only.
    std::function<void(std::string_view bytes)> standardError;

    /// The process has ended: called once and last, after its last bytes. The exit status, or the number of the signal
    /// that ended it.
    std::function<void(int status)> exited;
};

/// A started process. Destroying the handle leaves the process running and its events coming. Does not outlive its
/// launcher.
class ChildProcess {
public:
    ChildProcess() = default;
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    virtual ~ChildProcess() = default;

    /// Asks the process to end (SIGTERM) and waits for nothing. Does nothing once it has ended. Main thread.
    virtual void terminate() = 0;
};

/// Starts processes and watches them to their end.
class ProcessLauncher {
public:
    ProcessLauncher() = default;
    ProcessLauncher(const ProcessLauncher&) = delete;
    ProcessLauncher& operator=(const ProcessLauncher&) = delete;

    /// Every process that still runs is asked to end; no event comes any more.
    virtual ~ProcessLauncher() = default;

    /// Starts a process: standard input as given, standard output a pipe that nobody reads, standard error a pipe that
    /// feeds the events. The error is the system's own description. Main thread.
    virtual Result<std::unique_ptr<ChildProcess>, Error> launch(ProcessSpec spec, ProcessEvents events) = 0;
};

}  // namespace velmora
