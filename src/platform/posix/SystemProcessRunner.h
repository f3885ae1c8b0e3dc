#pragma once

#include "platform/ProcessLauncher.h"
#include "platform/ProcessRunner.h"

namespace velmora {

/// Of each stream at most 4 MiB are kept, the rest is read and dropped; a process that the program leaves behind with
/// the pipes in its hands is not waited for.
class SystemProcessRunner final : public ProcessRunner {
public:
    Result<ProcessOutput, Error> run(const std::string& program, const std::vector<std::string>& arguments) override;
    Result<ProcessOutput, Error> runJoined(const std::string& program, const std::vector<std::string>& arguments,
                                           const std::filesystem::path& standardInput) override;
};

/// The environment that this program was started with.
[[nodiscard]] Environment currentEnvironment();

}  // namespace velmora
