#pragma once

#include "base/Pipe.h"
#include "platform/posix/Spawn.h"
#include "platform/posix/SystemProcessRunner.h"

#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace velmora::test {

/// server.py on a loopback port, for as long as this lives.
class TestServer final {
public:
    struct Certificate {
        std::filesystem::path certificate;
        std::filesystem::path key;
    };

    explicit TestServer(const std::filesystem::path& folder)
        : TestServer("http", std::vector<std::string>{SERVER_SCRIPT, folder.string()}) {}
    TestServer(const std::filesystem::path& folder, const Certificate& identity)
        : TestServer("https", std::vector<std::string>{SERVER_SCRIPT, folder.string(), identity.certificate.string(),
                                                       identity.key.string()}) {}
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;
    ~TestServer() {
        ::kill(process_.pid, SIGKILL);
        reap(process_.pid);
    }

    [[nodiscard]] std::string url(const std::string& path) const {
        return scheme_ + "://127.0.0.1:" + port_ + "/" + path;
    }
    [[nodiscard]] pid_t pid() const { return process_.pid; }

private:
    TestServer(const char* scheme, const std::vector<std::string>& arguments) : scheme_(scheme) {
        auto output = makePipe();
        const auto environment = currentEnvironment();
        auto started = spawn({.program = "/usr/bin/python3",
                              .arguments = arguments,
                              .environment = environment,
                              .standardInput = STDIN_FILENO,
                              .standardOutput = output->writing.get(),
                              .standardError = STDERR_FILENO});
        if (!started) {
            throw std::runtime_error(started.error().message);
        }
        process_ = std::move(*started);
        output->writing.reset();
        char digit = 0;
        while (::read(output->reading.get(), &digit, 1) == 1 && digit != '\n') {
            port_ += digit;
        }
    }

    std::string scheme_;
    std::string port_;
    SpawnedProcess process_;
};

}  // namespace velmora::test
