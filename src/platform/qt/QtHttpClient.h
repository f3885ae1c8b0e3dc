#pragma once

#include "platform/HttpClient.h"

namespace velmora {

/// HTTP by Qt Network. Every call brings its own connections and event loop and takes them along at its end, so that an
/// idle program keeps none. Any thread but the main one; there must be a QCoreApplication.
class QtHttpClient final : public HttpClient {
public:
    Result<HttpAnswer, Error> get(const HttpRequest& request, const Cancellation& cancellation) override;
    Result<HttpAnswer, Error> download(const HttpRequest& request, const std::filesystem::path& newFile,
                                       const HttpProgress& progress, const Cancellation& cancellation) override;
};

}  // namespace velmora
