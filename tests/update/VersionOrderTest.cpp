#include "update/VersionOrder.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

struct Case {
    const char* version;
    const char* than;
    bool newer;
};

class VersionOrder : public testing::TestWithParam<Case> {};

TEST_P(VersionOrder, ComparesRunsOfDigitsAsNumbers) {
    const auto& [version, than, newer] = GetParam();
    EXPECT_EQ(isNewerVersion(version, than), newer) << version << " and " << than;
    if (newer) {
        EXPECT_FALSE(isNewerVersion(than, version)) << than << " and " << version;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, VersionOrder,
    testing::Values(Case{"2.0", "1.9.3", true}, Case{"1.10", "1.9", true}, Case{"1.9.3", "1.9.3", false},
                    Case{"1.2.0", "1.2", true}, Case{"1.2", "1.2.0", false}, Case{"0.0.1", "0", true},
                    Case{"1", "0", true}, Case{"1.02", "1.2", false}, Case{"1.2", "1.02", false},
                    Case{"1.010", "1.9", true}, Case{"18446744073709551617", "18446744073709551616", true},
                    Case{"10000000000000000000000", "9999999999999999999999", true}, Case{"1.0b2", "1.0b1", true},
                    Case{"1.0b", "1.0a", true}, Case{"1.0-rc10", "1.0-rc9", true}, Case{"v2", "v1", true},
                    Case{"", "", false}, Case{"0", "", true}, Case{"", "0", false}, Case{"1.a", "1.1", true},
                    Case{"1.é", "1.z", true}));

}  // namespace
}  // namespace velmora
