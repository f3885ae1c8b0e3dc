#include "update/UpdateError.h"

#include "base/Localized.h"

namespace velmora {

std::string UpdateError::description() const {
    switch (reason) {
        case Case::badFeed:
            return filled(localized("velmora::UpdateError", "Update check failed: %1"), {detail});
        case Case::badDownload:
            return filled(localized("velmora::UpdateError", "Download failed: %1"), {detail});
        case Case::signature:
            return filled(
                localized("velmora::UpdateError", "Download rejected: not signed by the expected developer.\n%1"),
                {detail});
        case Case::versionMismatch:
            return filled(localized("velmora::UpdateError", "Download rejected: bundle is v%1, manifest promised v%2."),
                          {detail, promisedVersion});
        case Case::notWritable:
            return filled(localized("velmora::UpdateError", "Can't replace %1 — no write permission."), {detail});
        case Case::checksumMismatch:
            return localized("velmora::UpdateError", "Download rejected: checksum doesn't match the manifest.");
        case Case::system:
            break;
    }
    return detail;
}

}  // namespace velmora
