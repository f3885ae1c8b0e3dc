#pragma once

#include <filesystem>
#include <string>

namespace velmora {

/// What a tool program ended with.
struct ToolOutput {
    int status = 0;    ///< 0 for success
    std::string text;  ///< all that it said, as UTF-8

    [[nodiscard]] bool succeeded() const { return status == 0; }
};

/// What a system does with application bundles. The calls wait for programs: not for the main thread.
class BundleTools {
public:
    BundleTools() = default;
    BundleTools(const BundleTools&) = delete;
    BundleTools& operator=(const BundleTools&) = delete;
    virtual ~BundleTools() = default;

    /// Expands a zip archive into an existing folder.
    virtual ToolOutput expand(const std::filesystem::path& archive, const std::filesystem::path& folder) = 0;

    /// Succeeds when the bundle is complete, unchanged and signed by the expected developer.
    virtual ToolOutput verifySignature(const std::filesystem::path& bundle) = 0;

    /// The last lines of the swap script: they start the bundle "$2". No line feed at the end.
    [[nodiscard]] virtual std::string relaunchLines() const = 0;
};

}  // namespace velmora
