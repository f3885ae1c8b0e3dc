#pragma once

#include "platform/ProcessRunner.h"

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace velmora {

/// Answers for the programs that a test names; no other program is there.
class FakeProcessRunner final : public ProcessRunner {
public:
    std::map<std::string, ProcessOutput> answers;
    std::vector<std::pair<std::string, std::vector<std::string>>> runs;
    std::vector<std::filesystem::path> inputs;  ///< of the joined runs

    Result<ProcessOutput, Error> run(const std::string& program, const std::vector<std::string>& arguments) override {
        runs.emplace_back(program, arguments);
        const auto answer = answers.find(program);
        if (answer == answers.end()) {
            return Error{program + ": No such file or directory"};
        }
        return answer->second;
    }

    Result<ProcessOutput, Error> runJoined(const std::string& program, const std::vector<std::string>& arguments,
                                           const std::filesystem::path& standardInput) override {
        inputs.push_back(standardInput);
        return run(program, arguments);
    }
};

}  // namespace velmora
