#include "tunnel/Backoff.h"

#include <algorithm>
#include <cmath>

namespace velmora {

namespace {

constexpr double firstDelaySeconds = 5;
constexpr double longestDelaySeconds = 60;

}  // namespace

std::chrono::seconds reconnectDelay(std::int64_t earlierFailures) {
    // In floating point, so that any number of failures stays a number.
    const double delay = firstDelaySeconds * std::exp2(static_cast<double>(earlierFailures));
    return std::chrono::seconds(static_cast<std::int64_t>(std::min(delay, longestDelaySeconds)));
}

}  // namespace velmora
