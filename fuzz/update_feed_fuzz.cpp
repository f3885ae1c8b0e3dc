#include "Fuzz.h"
#include "base/Text.h"
#include "update/Checksum.h"
#include "update/UpdateManifest.h"
#include "update/Url.h"
#include "update/VersionOrder.h"

// The update feed, and what is made of its texts.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace velmora;

    const auto manifest = decodeManifest(textOf(data, size));
    if (!manifest) {
        require(isValidUtf8(manifest.error().message) && !manifest.error().message.empty(), "a reason can be shown");
        return 0;
    }
    const auto& version = manifest->version;
    const auto other = manifest->build.value_or("1.15.0");
    require(isValidUtf8(version) && isValidUtf8(manifest->url), "texts are texts");
    require(!isNewerVersion(version, version), "no version is newer than itself");
    require(!(isNewerVersion(version, other) && isNewerVersion(other, version)), "one of two is newer at most");
    require(isNewerVersion(version + ".0", version), "a version goes on");
    if (const auto url = parseUrl(manifest->url)) {
        require(isAscii(*url), "an address is encoded");
        require(parseUrl(*url) == url, "an address in its form is in its form");
    }
    if (manifest->sha256) {
        require(isSameChecksum(*manifest->sha256, *manifest->sha256), "a checksum is the same as itself");
    }
    return 0;
}
