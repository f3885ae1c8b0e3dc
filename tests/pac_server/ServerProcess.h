#pragma once

#include "base/Pipe.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace velmora {

/// The server in a process of its own, which may have so many descriptors. It ends with this object.
class ServerProcess final {
public:
    enum class Mode { listens, doesNotListen };

    explicit ServerProcess(int descriptors, Mode mode = Mode::listens) {
        Pipe input = std::move(makePipe().value());
        Pipe output = std::move(makePipe().value());
        const std::string limit = std::to_string(descriptors);
        const char* listening = mode == Mode::listens ? "on" : "off";
        process_ = ::fork();
        if (process_ == 0) {
            ::dup2(input.reading.get(), STDIN_FILENO);
            ::dup2(output.writing.get(), STDOUT_FILENO);
            ::execl(SERVE_PAC, SERVE_PAC, limit.c_str(), listening, nullptr);
            ::_exit(127);
        }
        commands_ = std::move(input.writing);
        answers_ = std::move(output.reading);
        output.writing.reset();
        port_ = static_cast<std::uint16_t>(readNumber());
    }
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;
    ~ServerProcess() {
        commands_.reset();
        ::waitpid(process_, nullptr, 0);
    }

    [[nodiscard]] std::uint16_t port() const { return port_; }

    long hoardDescriptors() { return ask('h'); }
    long releaseDescriptors() { return ask('r'); }
    bool canStartProgram() { return ask('s') == 1; }
    long processorMicroseconds() { return ask('p'); }
    long wakeUps() { return ask('w'); }

private:
    long ask(char command) {
        if (::write(commands_.get(), &command, 1) != 1) {
            throw std::runtime_error("the server is gone");
        }
        return readNumber();
    }

    long readNumber() {
        std::string line;
        for (char byte = 0; byte != '\n'; line += byte) {
            if (::read(answers_.get(), &byte, 1) != 1) {
                throw std::runtime_error("the server is gone");
            }
        }
        return std::atol(line.c_str());
    }

    pid_t process_ = -1;
    UniqueFd commands_;
    UniqueFd answers_;
    std::uint16_t port_ = 0;
};

}  // namespace velmora
