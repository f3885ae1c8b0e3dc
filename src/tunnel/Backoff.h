#pragma once

#include <chrono>
#include <cstdint>

namespace velmora {

/// How long to wait before a dropped tunnel is started again: 5 seconds, doubled with each earlier failure in a row, 60
/// seconds at the most.
[[nodiscard]] std::chrono::seconds reconnectDelay(std::int64_t earlierFailures);

}  // namespace velmora
