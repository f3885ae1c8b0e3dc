#include "platform/macos/MacBundleTools.h"

#include "platform/posix/ToolProgram.h"

#include <utility>

namespace velmora {

MacBundleTools::MacBundleTools(ProcessRunner& runner, std::string codeRequirement)
    : runner_(runner), codeRequirement_(std::move(codeRequirement)) {}

ToolOutput MacBundleTools::expand(const std::filesystem::path& archive, const std::filesystem::path& folder) {
    return runTool(runner_, "/usr/bin/ditto", {"-x", "-k", archive.string(), folder.string()});
}

ToolOutput MacBundleTools::verifySignature(const std::filesystem::path& bundle) {
    return runTool(runner_, "/usr/bin/codesign", {"--verify", "--strict", "-R=" + codeRequirement_, bundle.string()});
}

std::string MacBundleTools::relaunchLines() const {
    return "/usr/bin/xattr -dr com.apple.quarantine \"$2\" 2>/dev/null\n"
           "/usr/bin/open \"$2\"";
}

}  // namespace velmora
