#include "update/Installation.h"

#include "base/AtomicFile.h"
#include "base/DiskRoom.h"
#include "base/Localized.h"
#include "base/Sha256.h"
#include "base/Uuid.h"
#include "update/ArchiveListing.h"
#include "update/BundleInfo.h"
#include "update/Checksum.h"
#include "update/SwapScript.h"
#include "update/UnpackedTree.h"
#include "update/Url.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <system_error>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr auto longestWait = std::chrono::seconds(60);
constexpr std::uint64_t largestArchive = std::uint64_t{2} << 30;
constexpr int statusOk = 200;

UpdateError couldNotUnzip(const std::string& reason) {
    return UpdateError::badDownload("could not unzip (" + reason + ")");
}

/// What is downloaded before it has a place of its own.
class LooseFile final {
public:
    explicit LooseFile(fs::path path) : path_(std::move(path)) {}
    LooseFile(const LooseFile&) = delete;
    LooseFile& operator=(const LooseFile&) = delete;
    ~LooseFile() { ::unlink(path_.c_str()); }  // once it has moved, nothing is there

    [[nodiscard]] const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

std::uint64_t unpackedSize(const ArchiveListing& listing) {
    constexpr std::uint64_t blockSize = 4096;
    std::uint64_t bytes = 0;
    for (const auto& [path, entry] : listing) {
        bytes += entry.size + blockSize;
    }
    return bytes;
}

/// Moving to another disk is copying: a copy that ends half-way is what the script could not put right.
Result<void, Error> requireRoomToMove(const fs::path& from, const fs::path& to, std::uint64_t bytes) {
    struct stat source {};
    struct stat target {};
    if (::stat(from.c_str(), &source) == 0 && ::stat(to.c_str(), &target) == 0 && source.st_dev == target.st_dev) {
        return {};
    }
    return requireRoom(to, bytes);
}

}  // namespace

Installation::Installation(Tools tools, fs::path temporaryFolder, RunningBundle installed, Events events,
                           const Cancellation& cancellation)
    : tools_(tools),
      temporaryFolder_(std::move(temporaryFolder)),
      installed_(std::move(installed)),
      events_(std::move(events)),
      cancellation_(cancellation) {}

Result<void, UpdateError> Installation::run(const UpdateManifest& manifest) {
    auto area = download(manifest);
    if (!area) {
        return area.error();
    }
    events_.reached(Stage::verifying);
    if (auto verified = verifyChecksum(area->archive(), manifest); !verified) {
        return verified;
    }
    const auto bundle = unpack(*area);
    if (!bundle) {
        return bundle.error();
    }
    if (auto verified = verifySignature(*bundle); !verified) {
        return verified;
    }
    if (auto verified = verifyVersion(*bundle, manifest.version); !verified) {
        return verified;
    }
    events_.reached(Stage::installing);
    if (auto started = startSwap(*bundle); !started) {
        return started;
    }
    ::unlink(area->archive().c_str());  // nobody cleans up behind the script, and this is the large part
    area->handOver();
    return {};
}

Result<WorkArea, UpdateError> Installation::download(const UpdateManifest& manifest) {
    const auto url = parseUrl(manifest.url);
    if (!url) {
        return UpdateError::badDownload("bad download URL");
    }
    const LooseFile file(temporaryFolder_ / ("VelmoraUpdate-" + Uuid::random().toString() + ".download"));
    const auto answer = tools_.http.download({.url = *url, .idleLimit = longestWait, .largestBody = largestArchive},
                                             file.path(), events_.downloaded, cancellation_);
    if (!answer) {
        return UpdateError::system(answer.error().message);
    }
    if (answer->status.value_or(statusOk) != statusOk) {
        return UpdateError::badDownload("HTTP " + std::to_string(*answer->status));
    }
    auto area = WorkArea::create(temporaryFolder_);
    if (!area) {
        return UpdateError::system(area.error().message);
    }
    std::error_code error;
    fs::rename(file.path(), area->archive(), error);
    if (error) {
        return UpdateError::system(area->archive().string() + ": " + error.message());
    }
    return std::move(*area);
}

Result<void, UpdateError> Installation::verifyChecksum(const fs::path& archive, const UpdateManifest& manifest) {
    if (!manifest.sha256 || manifest.sha256->empty()) {
        return {};  // meant so: the signature proves the bundle also without it
    }
    const auto digest = sha256OfFile(archive, cancellation_);
    if (!digest) {
        return UpdateError::system(digest.error().message);
    }
    if (!isSameChecksum(*digest, *manifest.sha256)) {
        return UpdateError::checksumMismatch();
    }
    return {};
}

Result<fs::path, UpdateError> Installation::unpack(const WorkArea& area) {
    std::error_code error;
    const auto size = fs::file_size(area.archive(), error);
    const auto listing = listArchive(area.archive(), ArchiveLimits::forArchiveOf(error ? 0 : size), cancellation_);
    if (!listing) {
        return couldNotUnzip(listing.error().message);
    }
    const auto unpackedBytes = unpackedSize(*listing);
    for (const auto& room : {requireRoom(temporaryFolder_, unpackedBytes),
                             requireRoomToMove(area.archive(), installed_.path.parent_path(), unpackedBytes)}) {
        if (!room) {
            return couldNotUnzip(room.error().message);
        }
    }
    if (::mkdir(area.unpacked().c_str(), S_IRWXU) != 0) {
        return UpdateError::system(area.unpacked().string() + ": " + std::generic_category().message(errno));
    }
    if (const auto expanded = tools_.bundles.expand(area.archive(), area.unpacked()); !expanded.succeeded()) {
        return couldNotUnzip(expanded.text);
    }
    if (const auto secured = secureUnpackedTree(area.unpacked(), *listing); !secured) {
        return couldNotUnzip(secured.error().message);
    }
    auto bundle = findBundle(area.unpacked());
    if (!bundle) {
        return UpdateError::badDownload("no .app inside the archive");
    }
    return std::move(*bundle);
}

Result<void, UpdateError> Installation::verifySignature(const fs::path& bundle) {
    const auto verified = tools_.bundles.verifySignature(bundle);
    if (!verified.succeeded()) {
        return UpdateError::signature(verified.text);
    }
    return {};
}

Result<void, UpdateError> Installation::verifyVersion(const fs::path& bundle, const std::string& expected) {
    const auto info = readBundleInfo(bundle);
    if (!info) {
        return UpdateError::badDownload("unreadable Info.plist in the downloaded bundle");
    }
    if (!info->shortVersion) {
        return UpdateError::badDownload("no version in the downloaded bundle");
    }
    if (*info->shortVersion != expected) {
        return UpdateError::versionMismatch(*info->shortVersion, expected);
    }
    return {};
}

Result<void, UpdateError> Installation::startSwap(const fs::path& newBundle) {
    const auto above = installed_.path.parent_path();
    if (!installed_.isBundle || ::faccessat(AT_FDCWD, above.c_str(), W_OK | X_OK, AT_EACCESS) != 0) {
        return UpdateError::notWritable(installed_.path.string());
    }
    const auto script = newBundle.parent_path() / "install.sh";
    if (const auto written = writeFileAtomically(script, swapScript(::getpid(), tools_.bundles.relaunchLines()));
        !written) {
        return UpdateError::system(written.error().message);
    }
    if (cancellation_.isRequested()) {
        return UpdateError::system(localized("velmora::UpdateError", "The installation was cancelled."));
    }
    const auto started =
        tools_.launcher.start("/bin/sh", {script.string(), newBundle.string(), installed_.path.string()});
    if (!started) {
        return UpdateError::system(started.error().message);
    }
    return {};
}

}  // namespace velmora
