#include "model/ForwardingRule.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

using Arguments = std::vector<std::string>;

struct Case {
    std::string name;
    ForwardingRule rule;
    Arguments expected;
};

ForwardingRule rule(ForwardingType type, std::string bindAddress, std::int64_t bindPort, std::string targetAddress = {},
                    std::int64_t targetPort = 0, bool enabled = true) {
    ForwardingRule made;
    made.type = type;
    made.bindAddress = std::move(bindAddress);
    made.bindPort = bindPort;
    made.targetAddress = std::move(targetAddress);
    made.targetPort = targetPort;
    made.enabled = enabled;
    return made;
}

class RuleArguments : public testing::TestWithParam<Case> {};

TEST_P(RuleArguments, AreNothingOrAFlagAndItsSpecification) {
    EXPECT_EQ(GetParam().rule.sshArguments(), GetParam().expected);
}

constexpr auto local = ForwardingType::local;
constexpr auto remote = ForwardingType::remote;
constexpr auto dynamic = ForwardingType::dynamic;

INSTANTIATE_TEST_SUITE_P(
    Table, RuleArguments,
    testing::Values(
        Case{"DynamicWithAddress", rule(dynamic, "127.0.0.1", 1080), {"-D", "127.0.0.1:1080"}},
        Case{"DynamicWithoutAddress", rule(dynamic, "", 1080), {"-D", "1080"}},
        Case{"DynamicIgnoresTheTarget", rule(dynamic, "", 1080, "x", 1), {"-D", "1080"}},
        Case{"LocalWithoutAddress", rule(local, "", 8080, "db.internal", 5432), {"-L", "8080:db.internal:5432"}},
        Case{"LocalWithAddress", rule(local, "0.0.0.0", 8080, "db", 1), {"-L", "0.0.0.0:8080:db:1"}},
        Case{"RemoteIsPassedOn", rule(remote, "", 9000, "localhost", 80), {"-R", "9000:localhost:80"}},
        Case{"AddressesAreNotBracketed", rule(local, "::1", 1, "fe80::1", 2), {"-L", "::1:1:fe80::1:2"}},
        Case{"PortsAreNotChecked", rule(local, "", 70000, "a", 99999), {"-L", "70000:a:99999"}},
        Case{"RemoteWithoutTargetPort", rule(remote, "", 9000, "localhost", 0), {}},
        Case{"LocalWithNegativeTargetPort", rule(local, "", 9000, "localhost", -1), {}},
        Case{"LocalWithoutTargetAddress", rule(local, "", 9000, "", 80), {}},
        Case{"DisabledLocal", rule(local, "", 9000, "a", 80, false), {}},
        Case{"DisabledDynamic", rule(dynamic, "", 9000, "", 0, false), {}},
        Case{"DynamicWithoutPort", rule(dynamic, "", 0), {}},
        Case{"DynamicWithNegativePort", rule(dynamic, "", -5), {}}, Case{"Default", ForwardingRule(), {}}),
    [](const auto& each) { return each.param.name; });

TEST(ForwardingType, RawValuesAreTheTextsOnTheScreenInOrder) {
    std::vector<std::string_view> texts;
    for (const auto type : allForwardingTypes) {
        texts.push_back(rawValue(type));
        EXPECT_EQ(forwardingTypeFrom(rawValue(type)), type);
    }
    EXPECT_EQ(texts, (std::vector<std::string_view>{"Local", "Remote", "Dynamic"}));
    EXPECT_FALSE(forwardingTypeFrom("local"));
}

}  // namespace
}  // namespace velmora
