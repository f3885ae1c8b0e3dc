#pragma once

#include "base/Cancellation.h"
#include "base/Result.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace velmora {

struct HttpRequest {
    std::string url;
    std::chrono::milliseconds idleLimit{0};   ///< the longest wait for the next bytes
    std::chrono::milliseconds totalLimit{0};  ///< the longest time for everything; 0 for none
    std::uint64_t largestBody = 0;            ///< bytes; a longer body is a failure
};

struct HttpAnswer {
    std::optional<int> status;  ///< none when the URL is not of HTTP
    std::string body;           ///< of `get` only, and only where the status is 200 or none
};

/// How far a download is, in bytes.
using HttpProgress = std::function<void(std::uint64_t received, std::optional<std::uint64_t> total)>;

/// Fetches what stands behind a URL. Nothing is cached and nobody is logged in. Redirects are followed, never from
/// https to http. A body that ends early is a failure, like everything else that prevents an answer; an answer with
/// another status than 200 is not. Errors are sentences for the user.
///
/// The calls wait for the answer: not for the main thread. A cancelled call fails soon.
class HttpClient {
public:
    HttpClient() = default;
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;
    virtual ~HttpClient() = default;

    virtual Result<HttpAnswer, Error> get(const HttpRequest& request, const Cancellation& cancellation) = 0;

    /// Writes the body to a new file of mode 0600 as it comes. The disk must have room for it. A file is left behind
    /// only by an answer with status 200 or none. Progress is told a few times a second, on the calling thread.
    virtual Result<HttpAnswer, Error> download(const HttpRequest& request, const std::filesystem::path& newFile,
                                               const HttpProgress& progress, const Cancellation& cancellation) = 0;
};

}  // namespace velmora
