#include "platform/posix/SpawnDetachedLauncher.h"

#include "platform/posix/Spawn.h"
#include "platform/posix/SystemProcessRunner.h"

#include <fcntl.h>

#include <cerrno>
#include <system_error>

namespace velmora {

Result<void, Error> SpawnDetachedLauncher::start(const std::string& program,
                                                 const std::vector<std::string>& arguments) {
    const UniqueFd nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
    if (!nothing) {
        return Error{std::generic_category().message(errno)};
    }
    const auto environment = currentEnvironment();
    const auto process = spawn({.program = program,
                                .arguments = arguments,
                                .environment = environment,
                                .standardInput = nothing.get(),
                                .standardOutput = nothing.get(),
                                .standardError = nothing.get()});
    if (!process) {
        return Error{program + ": " + process.error().message};
    }
    return {};
}

}  // namespace velmora
