#pragma once

#include "base/Cancellation.h"
#include "base/Result.h"
#include "platform/HttpClient.h"
#include "update/UpdateError.h"
#include "update/UpdateManifest.h"

#include <string>

namespace velmora {

/// Fetches and reads the feed. White space and line breaks around the address do not matter. Waits for the network: not
/// for the main thread.
Result<UpdateManifest, UpdateError> fetchManifest(HttpClient& http, const std::string& feedURL,
                                                  const Cancellation& cancellation);

}  // namespace velmora
