#pragma once

#include "base/UniqueFd.h"

#include <string_view>

namespace velmora {

// What stream sockets can do in one call on one system and in several on another. No call waits or raises a signal.

/// The next connection of a listening socket that does not wait: one that does not wait either and that is closed in
/// started programs. None with the reason in errno.
[[nodiscard]] UniqueFd acceptConnection(int listener);

/// Sends the last bytes of a connection whose send side is shut next, so that the system may let them travel with the
/// end of the stream. How many it took, or -1 with the reason in errno.
[[nodiscard]] long sendBeforeShutdown(int socket, std::string_view bytes);

}  // namespace velmora
