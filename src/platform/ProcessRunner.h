#pragma once

#include "base/Result.h"

#include <filesystem>
#include <string>
#include <vector>

namespace velmora {

/// What a finished program left behind.
struct ProcessOutput {
    int status = 0;  ///< exit status, or the number of the signal that ended it
    std::string standardOutput;
    std::string standardError;
};

/// Runs short programs to their end.
class ProcessRunner {
public:
    ProcessRunner() = default;
    ProcessRunner(const ProcessRunner&) = delete;
    ProcessRunner& operator=(const ProcessRunner&) = delete;
    virtual ~ProcessRunner() = default;

    /// Waits for the program, with the application's own environment. Fails when it cannot be started. Any thread.
    virtual Result<ProcessOutput, Error> run(const std::string& program, const std::vector<std::string>& arguments) = 0;

    /// The same with both streams in one pipe: all that the program says is in `standardOutput`, in the order it was
    /// said. Standard input comes from a file. Fails also when that cannot be opened. Any thread.
    virtual Result<ProcessOutput, Error> runJoined(const std::string& program,
                                                   const std::vector<std::string>& arguments,
                                                   const std::filesystem::path& standardInput) = 0;
};

}  // namespace velmora
