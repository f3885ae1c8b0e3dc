#pragma once

#include <string>
#include <utility>

namespace velmora {

/// Why a check or an installation failed.
struct UpdateError {
    enum class Case {
        badFeed,           ///< the feed could not be had
        badDownload,       ///< the archive could not be had, or does not hold what it should
        signature,         ///< the new bundle is not signed by the expected developer
        versionMismatch,   ///< the new bundle is not the version that the feed promised
        notWritable,       ///< the installed bundle cannot be replaced
        checksumMismatch,  ///< the archive is not the one that the feed means
        system,            ///< the network, the feed's text or the file system, in their own words
    };

    Case reason = Case::system;
    std::string detail;           ///< message, verifier's output, bundle's version, or path
    std::string promisedVersion;  ///< of `versionMismatch`

    static UpdateError badFeed(std::string message) { return {Case::badFeed, std::move(message), {}}; }
    static UpdateError badDownload(std::string message) { return {Case::badDownload, std::move(message), {}}; }
    static UpdateError signature(std::string verifierOutput) {
        return {Case::signature, std::move(verifierOutput), {}};
    }
    static UpdateError versionMismatch(std::string bundleVersion, std::string promisedVersion) {
        return {Case::versionMismatch, std::move(bundleVersion), std::move(promisedVersion)};
    }
    static UpdateError notWritable(std::string path) { return {Case::notWritable, std::move(path), {}}; }
    static UpdateError checksumMismatch() { return {Case::checksumMismatch, {}, {}}; }
    static UpdateError system(std::string description) { return {Case::system, std::move(description), {}}; }

    bool operator==(const UpdateError&) const = default;

    /// The text for the user.
    [[nodiscard]] std::string description() const;
};

}  // namespace velmora
