#include "platform/linux/LateHttpClient.h"

namespace velmora {

LateHttpClient::LateHttpClient(const std::filesystem::path& module) : module_(module, "velmoraMakeHttpClient") {}

// A client for each call: it costs nothing, and nothing is shared by the threads that call.

Result<HttpAnswer, Error> LateHttpClient::get(const HttpRequest& request, const Cancellation& cancellation) {
    const auto client = module_.make<HttpClient>();
    return client ? (*client)->get(request, cancellation) : client.error();
}

Result<HttpAnswer, Error> LateHttpClient::download(const HttpRequest& request, const std::filesystem::path& newFile,
                                                   const HttpProgress& progress, const Cancellation& cancellation) {
    const auto client = module_.make<HttpClient>();
    return client ? (*client)->download(request, newFile, progress, cancellation) : client.error();
}

}  // namespace velmora
