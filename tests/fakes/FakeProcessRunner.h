#pragma once

#include "platform/ProcessRunner.h"

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

    Result<ProcessOutput, Error> run(const std::string& program, const std::vector<std::string>& arguments) override {
        runs.emplace_back(program, arguments);
        const auto answer = answers.find(program);
        if (answer == answers.end()) {
            return Error{program + ": No such file or directory"};
        }
        return answer->second;
    }
};

}  // namespace velmora
