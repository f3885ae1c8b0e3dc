#include "platform/posix/ToolProgram.h"

#include <QString>

namespace velmora {

ToolOutput runTool(ProcessRunner& runner, const std::string& program, const std::vector<std::string>& arguments,
                   const std::filesystem::path& standardInput) {
    constexpr int couldNotStart = 127;
    auto output = runner.runJoined(program, arguments, standardInput);
    if (!output) {
        return {.status = couldNotStart, .text = output.error().message};
    }
    return {.status = output->status, .text = QString::fromStdString(output->standardOutput).toStdString()};
}

}  // namespace velmora
