#pragma once

#include "base/Cancellation.h"
#include "base/Result.h"
#include "platform/BundleTools.h"
#include "platform/DetachedLauncher.h"
#include "platform/HttpClient.h"
#include "update/RunningBundle.h"
#include "update/UpdateError.h"
#include "update/UpdateManifest.h"
#include "update/WorkArea.h"

#include <filesystem>
#include <functional>

namespace velmora {

/// Fetches an offered update, proves it, and starts the script that puts it in the place of the running bundle as soon
/// as this process has ended. Waits for the network and for programs: not for the main thread.
///
/// Until the script has started, every failure leaves the installed bundle as it was and no file behind.
class Installation final {
public:
    enum class Stage { verifying, installing };

    struct Tools {
        HttpClient& http;
        BundleTools& bundles;
        DetachedLauncher& launcher;
    };

    struct Events {
        HttpProgress downloaded;
        std::function<void(Stage)> reached;
    };

    /// `temporaryFolder` is on a disk with room for the archive and what is in it.
    Installation(Tools tools, std::filesystem::path temporaryFolder, RunningBundle installed, Events events,
                 const Cancellation& cancellation);

    /// On success the process should end: the script waits for that.
    Result<void, UpdateError> run(const UpdateManifest& manifest);

private:
    Result<WorkArea, UpdateError> download(const UpdateManifest& manifest);
    Result<void, UpdateError> verifyChecksum(const std::filesystem::path& archive, const UpdateManifest& manifest);
    Result<std::filesystem::path, UpdateError> unpack(const WorkArea& area);
    Result<void, UpdateError> verifySignature(const std::filesystem::path& bundle);
    static Result<void, UpdateError> verifyVersion(const std::filesystem::path& bundle, const std::string& expected);
    Result<void, UpdateError> startSwap(const std::filesystem::path& newBundle);

    Tools tools_;
    std::filesystem::path temporaryFolder_;
    RunningBundle installed_;
    Events events_;
    const Cancellation& cancellation_;
};

}  // namespace velmora
