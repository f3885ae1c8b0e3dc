#pragma once

#include "platform/BundleTools.h"
#include "platform/ProcessRunner.h"

#include <string>

namespace velmora {

/// ditto and codesign.
class MacBundleTools final : public BundleTools {
public:
    /// The requirement is written in the language of code signing.
    MacBundleTools(ProcessRunner& runner, std::string codeRequirement);

    ToolOutput expand(const std::filesystem::path& archive, const std::filesystem::path& folder) override;
    ToolOutput verifySignature(const std::filesystem::path& bundle) override;
    [[nodiscard]] std::string relaunchLines() const override;

private:
    ProcessRunner& runner_;
    std::string codeRequirement_;
};

}  // namespace velmora
