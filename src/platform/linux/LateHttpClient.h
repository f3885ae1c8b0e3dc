#pragma once

#include "platform/HttpClient.h"
#include "platform/linux/LateModule.h"

namespace velmora {

/// A client in a library that is loaded with the first call. Without the library every call fails.
class LateHttpClient final : public HttpClient {
public:
    explicit LateHttpClient(const std::filesystem::path& module);

    Result<HttpAnswer, Error> get(const HttpRequest& request, const Cancellation& cancellation) override;
    Result<HttpAnswer, Error> download(const HttpRequest& request, const std::filesystem::path& newFile,
                                       const HttpProgress& progress, const Cancellation& cancellation) override;

private:
    LateModule module_;
};

}  // namespace velmora
