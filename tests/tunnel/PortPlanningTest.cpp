#include "tunnel/PortPlanning.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

constexpr auto local = ForwardingType::local;
constexpr auto remote = ForwardingType::remote;
constexpr auto dynamic = ForwardingType::dynamic;

ForwardingRule rule(ForwardingType type, std::int64_t port, bool enabled = true) {
    ForwardingRule made;
    made.type = type;
    made.bindPort = port;
    made.enabled = enabled;
    return made;
}

SSHHost host(std::string name, std::vector<ForwardingRule> rules) {
    SSHHost made;
    made.name = std::move(name);
    made.forwardingRules = std::move(rules);
    return made;
}

using Conflicts = std::vector<PortConflict>;

TEST(SuggestedDynamicPort, Is21000WithoutHostsOrRules) {
    EXPECT_EQ(suggestedDynamicPort({}), 21000);
    EXPECT_EQ(suggestedDynamicPort({host("a", {})}), 21000);
}

TEST(SuggestedDynamicPort, IsTheLowestThatNoRuleNames) {
    EXPECT_EQ(suggestedDynamicPort({host("a", {rule(remote, 21000, false)}), host("b", {rule(local, 21002)})}), 21001);
    EXPECT_EQ(suggestedDynamicPort({host("a", {rule(local, 21000), rule(dynamic, 21001), rule(remote, 21002)})}),
              21003);
}

TEST(SuggestedDynamicPort, IgnoresPortsBelowOne) {
    EXPECT_EQ(suggestedDynamicPort({host("a", {rule(local, 0), rule(local, -21000)})}), 21000);
}

TEST(SuggestedDynamicPort, HasNoUpperBound) {
    std::vector<ForwardingRule> rules;
    for (std::int64_t port = 21000; port <= 65535; ++port) {
        rules.push_back(rule(dynamic, port));
    }
    EXPECT_EQ(suggestedDynamicPort({host("a", rules)}), 65536);
}

TEST(PortConflicts, RulesWithoutAPortTakeNoPart) {
    const auto edited = host("a", {rule(local, 0), rule(local, 0), rule(dynamic, -1), rule(dynamic, -1)});
    EXPECT_EQ(portConflicts(edited, {edited, host("b", {rule(local, 0), rule(local, -1)})}), Conflicts{});
}

TEST(PortConflicts, EachLaterRuleOfTheHostItselfIsReportedOnce) {
    auto edited = host("a", {rule(local, 8080), rule(local, 8080)});
    EXPECT_EQ(portConflicts(edited, {}), (Conflicts{{8080, "a"}}));
    edited.forwardingRules.push_back(rule(dynamic, 8080));
    EXPECT_EQ(portConflicts(edited, {}), (Conflicts{{8080, "a"}, {8080, "a"}}));
}

TEST(PortConflicts, DisabledAndRemoteRulesOfOthersDoNotConflict) {
    const auto edited = host("a", {rule(dynamic, 1080)});
    EXPECT_EQ(portConflicts(edited, {host("b", {rule(local, 1080, false)})}), Conflicts{});
    EXPECT_EQ(portConflicts(edited, {host("b", {rule(remote, 1080)})}), Conflicts{});
}

TEST(PortConflicts, DisabledAndRemoteRulesOfTheHostDoNotConflict) {
    const auto edited = host("a", {rule(remote, 1080), rule(local, 1080, false)});
    EXPECT_EQ(portConflicts(edited, {host("b", {rule(local, 1080)})}), Conflicts{});
}

TEST(PortConflicts, TheLastHostThatBindsThePortIsNamed) {
    const auto edited = host("mine", {rule(local, 9000)});
    EXPECT_EQ(portConflicts(edited, {host("A", {rule(local, 9000)}), host("B", {rule(dynamic, 9000)})}),
              (Conflicts{{9000, "B"}}));
}

TEST(PortConflicts, AnotherHostTakesPrecedenceOverTheHostItself) {
    const auto edited = host("mine", {rule(local, 9000), rule(local, 9000), rule(local, 1)});
    EXPECT_EQ(portConflicts(edited, {host("B", {rule(dynamic, 9000)})}), (Conflicts{{9000, "B"}, {9000, "B"}}));
}

TEST(PortConflicts, AnotherHostOfTheSameNameLooksLikeTheHostItself) {
    const auto edited = host("same", {rule(local, 9000)});
    EXPECT_EQ(portConflicts(edited, {host("same", {rule(local, 9000)})}), (Conflicts{{9000, "same"}}));
}

TEST(PortConflicts, TheStoredCopyOfTheEditedHostIsNotCompared) {
    const auto stored = host("a", {rule(local, 9000)});
    auto edited = stored;
    EXPECT_EQ(portConflicts(edited, {stored}), Conflicts{});
    edited.forwardingRules = {rule(local, 9001), rule(dynamic, 9000)};
    EXPECT_EQ(portConflicts(edited, {stored}), Conflicts{});
}

class UptimeText : public testing::TestWithParam<std::pair<std::int64_t, std::string>> {};

TEST_P(UptimeText, FollowsTheTable) {
    EXPECT_EQ(uptimeText(std::chrono::seconds(GetParam().first)), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Table, UptimeText,
                         testing::Values(std::pair{-86400, "< 1m"}, std::pair{0, "< 1m"}, std::pair{59, "< 1m"},
                                         std::pair{60, "1m"}, std::pair{2520, "42m"}, std::pair{3599, "59m"},
                                         std::pair{3600, "1h"}, std::pair{3659, "1h"}, std::pair{3660, "1h 1m"},
                                         std::pair{11100, "3h 5m"}, std::pair{86399, "23h 59m"}, std::pair{86400, "1d"},
                                         std::pair{89999, "1d"}, std::pair{90000, "1d 1h"}, std::pair{172800, "2d"},
                                         std::pair{187200, "2d 4h"}, std::pair{4233600, "49d"}));

}  // namespace
}  // namespace velmora
