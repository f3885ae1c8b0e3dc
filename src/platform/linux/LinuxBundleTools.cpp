#include "platform/linux/LinuxBundleTools.h"

#include "base/AtomicFile.h"
#include "base/Uuid.h"
#include "platform/linux/BundleSeal.h"
#include "platform/posix/ToolProgram.h"

#include <sys/stat.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t largestList = std::size_t{16} << 20;
constexpr std::size_t largestSignature = std::size_t{64} << 10;

ToolOutput rejected(std::string reason) {
    return {.status = 1, .text = std::move(reason)};
}

/// A private folder that goes with everything in it.
class ScratchFolder final {
public:
    explicit ScratchFolder(const fs::path& above) : path_(above / ("velmora-verify-" + Uuid::random().toString())) {
        created_ = ::mkdir(path_.c_str(), 0700) == 0;
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }

    [[nodiscard]] const fs::path& path() const { return path_; }
    [[nodiscard]] bool isCreated() const { return created_; }

private:
    fs::path path_;
    bool created_ = false;
};

}  // namespace

LinuxBundleTools::LinuxBundleTools(ProcessRunner& runner, Trust trust, fs::path temporaryFolder)
    : runner_(runner), trust_(std::move(trust)), temporaryFolder_(std::move(temporaryFolder)) {}

ToolOutput LinuxBundleTools::expand(const fs::path& archive, const fs::path& folder) {
    return runTool(runner_, "/usr/bin/bsdtar", {"-x", "-f", archive.string(), "-C", folder.string()});
}

ToolOutput LinuxBundleTools::verifySignature(const fs::path& bundle) {
    if (trust_.publicKey.empty()) {
        return rejected("this build trusts no key");
    }
    const auto list = readFile(bundle / sealListPath, largestList);
    if (!list) {
        return rejected(list.error().message);
    }
    const auto items = decodeSealList(*list);
    if (!items) {
        return rejected(items.error().message);
    }
    auto verified = verifyList(bundle, *list);
    if (!verified.succeeded()) {
        return verified;
    }
    if (const auto compared = compareWithSeal(bundle, *items); !compared) {
        return rejected(compared.error().message);
    }
    return verified;
}

ToolOutput LinuxBundleTools::verifyList(const fs::path& bundle, const std::string& list) {
    const auto signature = readFile(bundle / sealSignaturePath, largestSignature);
    if (!signature) {
        return rejected(signature.error().message);
    }
    // The verifier reads the very bytes that the bundle is compared with.
    const ScratchFolder scratch(temporaryFolder_);
    if (!scratch.isCreated()) {
        return rejected(scratch.path().string() + ": " + std::generic_category().message(errno));
    }
    const auto signers = scratch.path() / "allowed_signers";
    const auto listCopy = scratch.path() / "files.sha256";
    const auto signatureCopy = scratch.path() / "files.sha256.sig";
    const std::string allowed = trust_.signer + " namespaces=\"velmora-bundle\" " + trust_.publicKey + "\n";
    for (const auto& [path, content] :
         {std::pair(signers, &allowed), std::pair(listCopy, &list), std::pair(signatureCopy, &*signature)}) {
        if (const auto written = writeFileAtomically(path, *content); !written) {
            return rejected(written.error().message);
        }
    }
    return runTool(runner_, "/usr/bin/ssh-keygen",
                   {"-Y", "verify", "-f", signers.string(), "-I", trust_.signer, "-n", "velmora-bundle", "-s",
                    signatureCopy.string()},
                   listCopy);
}

std::string LinuxBundleTools::relaunchLines() const {
    return "exec \"$2/Contents/MacOS/velmora\"";
}

}  // namespace velmora
