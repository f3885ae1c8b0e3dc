#include "update/FetchManifest.h"

#include "base/Text.h"
#include "update/Url.h"

namespace velmora {

namespace {

constexpr auto longestWait = std::chrono::seconds(20);
constexpr auto longestFetch = std::chrono::seconds(60);
constexpr std::uint64_t largestFeed = std::uint64_t{1} << 20;
constexpr int statusOk = 200;

}  // namespace

Result<UpdateManifest, UpdateError> fetchManifest(HttpClient& http, const std::string& feedURL,
                                                  const Cancellation& cancellation) {
    const auto url = parseUrl(trimWhitespaceAndNewlines(feedURL));
    if (!url) {
        return UpdateError::badFeed("bad feed URL");
    }
    const auto answer = http.get(
        {.url = *url, .idleLimit = longestWait, .totalLimit = longestFetch, .largestBody = largestFeed}, cancellation);
    if (!answer) {
        return UpdateError::system(answer.error().message);
    }
    if (answer->status.value_or(statusOk) != statusOk) {
        return UpdateError::badFeed("HTTP " + std::to_string(*answer->status));
    }
    auto manifest = decodeManifest(answer->body);
    if (!manifest) {
        return UpdateError::system(manifest.error().message);
    }
    return std::move(*manifest);
}

}  // namespace velmora
