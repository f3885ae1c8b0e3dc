#pragma once

#include "platform/BundleTools.h"
#include "platform/ProcessRunner.h"

#include <filesystem>
#include <string>

namespace velmora {

/// bsdtar, and a seal that ssh-keygen checks.
///
/// A sealed bundle holds in Contents/_CodeSignature a list of the SHA-256 of every other file, sorted by path
/// (files.sha256), and an OpenSSH signature over that list (files.sha256.sig).
class LinuxBundleTools final : public BundleTools {
public:
    struct Trust {
        std::string signer;     ///< the identity that the signature must be of
        std::string publicKey;  ///< OpenSSH, one line; empty trusts nobody
    };

    /// What the verifier reads is written to a private folder of its own below `temporaryFolder` for as long as it
    /// runs.
    LinuxBundleTools(ProcessRunner& runner, Trust trust, std::filesystem::path temporaryFolder);

    ToolOutput expand(const std::filesystem::path& archive, const std::filesystem::path& folder) override;
    ToolOutput verifySignature(const std::filesystem::path& bundle) override;
    [[nodiscard]] std::string relaunchLines() const override;

private:
    ToolOutput verifyList(const std::filesystem::path& bundle, const std::string& list);

    ProcessRunner& runner_;
    Trust trust_;
    std::filesystem::path temporaryFolder_;
};

}  // namespace velmora
