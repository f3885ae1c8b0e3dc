#include "platform/posix/SystemProcessRunner.h"

#include "base/Pipe.h"
#include "platform/posix/Spawn.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

extern "C" char** environ;  // NOLINT(readability-redundant-declaration): not every system declares it

namespace velmora {

namespace {

constexpr std::size_t mostKept = std::size_t{4} * 1024 * 1024;

Error describe(const std::string& program, const std::string& reason) {
    return {program + ": " + reason};
}

/// Collects one stream. False when there will be no more.
bool readSome(int fd, std::string& kept) {
    std::array<char, 65536> buffer{};
    const auto count = ::read(fd, buffer.data(), buffer.size());
    if (count > 0) {
        kept.append(buffer.data(),
                    std::min(static_cast<std::size_t>(count), mostKept - std::min(mostKept, kept.size())));
        return true;
    }
    return count < 0 && errno == EINTR;
}

/// What is in the pipe now; its other end may be in other hands.
void readRest(int fd, std::string& kept) {
    int available = 0;
    while (::ioctl(fd, FIONREAD, &available) == 0 && available > 0 && kept.size() < mostKept && readSome(fd, kept)) {
    }
}

void collectUntilExit(int output, int error, int exitDescriptor, ProcessOutput& result) {
    std::array<pollfd, 3> waiting{{{output, POLLIN, 0}, {error, POLLIN, 0}, {exitDescriptor, POLLIN, 0}}};
    while (waiting[2].revents == 0) {
        if (::poll(waiting.data(), waiting.size(), -1) < 0) {
            continue;
        }
        if (waiting[0].revents != 0 && !readSome(output, result.standardOutput)) {
            waiting[0].fd = -1;
        }
        if (waiting[1].revents != 0 && !readSome(error, result.standardError)) {
            waiting[1].fd = -1;
        }
    }
    readRest(output, result.standardOutput);
    readRest(error, result.standardError);
}

enum class Streams { separate, joined };

Result<ProcessOutput, Error> runToItsEnd(const std::string& program, const std::vector<std::string>& arguments,
                                         const UniqueFd& input, Streams streams) {
    if (::access(program.c_str(), X_OK) != 0) {
        return describe(program, std::generic_category().message(errno));
    }
    auto output = makePipe();
    auto error = makePipe();
    if (!output || !error) {
        return describe(program, std::generic_category().message(EMFILE));
    }
    const auto environment = currentEnvironment();
    const auto& errorTarget = streams == Streams::joined ? output->writing : error->writing;
    const auto process = spawn({.program = program,
                                .arguments = arguments,
                                .environment = environment,
                                .standardInput = input.get(),
                                .standardOutput = output->writing.get(),
                                .standardError = errorTarget.get()});
    if (!process) {
        return describe(program, process.error().message);
    }
    output->writing.reset();
    error->writing.reset();
    ProcessOutput result;
    collectUntilExit(output->reading.get(), error->reading.get(), process->exitDescriptor.get(), result);
    result.status = reap(process->pid);
    return result;
}

}  // namespace

Result<ProcessOutput, Error> SystemProcessRunner::run(const std::string& program,
                                                      const std::vector<std::string>& arguments) {
    const UniqueFd nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    if (!nothing) {
        return describe(program, std::generic_category().message(errno));
    }
    return runToItsEnd(program, arguments, nothing, Streams::separate);
}

Result<ProcessOutput, Error> SystemProcessRunner::runJoined(const std::string& program,
                                                            const std::vector<std::string>& arguments,
                                                            const std::filesystem::path& standardInput) {
    const UniqueFd input(::open(standardInput.c_str(), O_RDONLY | O_CLOEXEC));
    if (!input) {
        return describe(standardInput.string(), std::generic_category().message(errno));
    }
    return runToItsEnd(program, arguments, input, Streams::joined);
}

Environment currentEnvironment() {
    Environment environment;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text(*entry);
        if (const auto equals = text.find('='); equals != std::string_view::npos) {
            environment.emplace(text.substr(0, equals), text.substr(equals + 1));
        }
    }
    return environment;
}

}  // namespace velmora
