#include "update/UpdateError.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(UpdateError, SaysWhatHappened) {
    const struct {
        UpdateError error;
        const char* text;
    } cases[] = {
        {UpdateError::badFeed("HTTP 404"), "Update check failed: HTTP 404"},
        {UpdateError::badDownload("no .app inside the archive"), "Download failed: no .app inside the archive"},
        {UpdateError::signature("no seal\n"), "Download rejected: not signed by the expected developer.\nno seal\n"},
        {UpdateError::versionMismatch("1.2", "1.2.0"), "Download rejected: bundle is v1.2, manifest promised v1.2.0."},
        {UpdateError::notWritable("/opt/Velmora.app"), "Can't replace /opt/Velmora.app — no write permission."},
        {UpdateError::checksumMismatch(), "Download rejected: checksum doesn't match the manifest."},
        {UpdateError::system("Connection refused"), "Connection refused"},
    };
    for (const auto& [error, text] : cases) {
        EXPECT_EQ(error.description(), text);
    }
}

}  // namespace
}  // namespace velmora
