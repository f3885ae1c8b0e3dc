#include "tunnel/Backoff.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace velmora {
namespace {

TEST(Backoff, DoublesFromFiveSecondsToAMinute) {
    std::vector<std::int64_t> delays;
    for (std::int64_t failures = 0; failures < 7; ++failures) {
        delays.push_back(reconnectDelay(failures).count());
    }
    EXPECT_EQ(delays, (std::vector<std::int64_t>{5, 10, 20, 40, 60, 60, 60}));
}

TEST(Backoff, NeverOverflows) {
    EXPECT_EQ(reconnectDelay(100000).count(), 60);
    EXPECT_EQ(reconnectDelay(std::numeric_limits<std::int64_t>::max()).count(), 60);
}

}  // namespace
}  // namespace velmora
