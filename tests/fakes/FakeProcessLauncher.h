#pragma once

#include "platform/ProcessLauncher.h"

#include <poll.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmora {

/// Remembers what was to be started. A test speaks and ends for the processes.
class FakeProcessLauncher final : public ProcessLauncher {
public:
    struct Process {
        std::string program;
        std::vector<std::string> arguments;
        Environment environment;
        UniqueFd standardInput;
        ProcessEvents events;
        int terminations = 0;
        bool ended = false;

        /// Nobody can say anything more on its standard input.
        [[nodiscard]] bool isInputAtEnd() const {
            pollfd input{.fd = standardInput.get(), .events = POLLIN, .revents = 0};
            return ::poll(&input, 1, 0) == 1;
        }

        void exit(int status) {
            ended = true;
            events.exited(status);
        }
        void exitSaying(const std::string& text, int status) {
            events.standardError(text);
            exit(status);
        }
    };

    /// The next launches fail with this, until it is reset.
    std::optional<Error> failure;

    Result<std::unique_ptr<ChildProcess>, Error> launch(ProcessSpec spec, ProcessEvents events) override {
        if (failure) {
            return *failure;
        }
        launched_.push_back(std::make_shared<Process>(Process{std::move(spec.program), std::move(spec.arguments),
                                                              std::move(spec.environment),
                                                              std::move(spec.standardInput), std::move(events)}));
        return std::unique_ptr<ChildProcess>(std::make_unique<Handle>(launched_.back()));
    }

    [[nodiscard]] std::size_t count() const { return launched_.size(); }
    [[nodiscard]] Process& process(std::size_t index) { return *launched_.at(index); }
    [[nodiscard]] Process& last() { return *launched_.back(); }

private:
    class Handle final : public ChildProcess {
    public:
        explicit Handle(std::shared_ptr<Process> process) : process_(std::move(process)) {}
        void terminate() override { ++process_->terminations; }

    private:
        std::shared_ptr<Process> process_;
    };

    std::vector<std::shared_ptr<Process>> launched_;
};

}  // namespace velmora
