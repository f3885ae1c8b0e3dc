#include "update/UpdateError.h"

namespace velmora {

std::string UpdateError::description() const {
    switch (reason) {
        case Case::badFeed:
            return "Update check failed: " + detail;
        case Case::badDownload:
            return "Download failed: " + detail;
        case Case::signature:
            return "Download rejected: not signed by the expected developer.\n" + detail;
        case Case::versionMismatch:
            return "Download rejected: bundle is v" + detail + ", manifest promised v" + promisedVersion + ".";
        case Case::notWritable:
            return "Can't replace " + detail + " — no write permission.";
        case Case::checksumMismatch:
            return "Download rejected: checksum doesn't match the manifest.";
        case Case::system:
            break;
    }
    return detail;
}

}  // namespace velmora
