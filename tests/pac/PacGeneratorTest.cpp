#include "base/Text.h"
#include "pac/Hosts.h"
#include "pac/PacGenerator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr auto scriptWithoutRules = "function FindProxyForURL(url, host) {\n    return \"DIRECT\";\n}";

/// What stands between the quotes of each condition, in the order of the script.
std::vector<std::string> patternsOf(const std::string& script) {
    constexpr std::string_view before = "    if (shExpMatch(host, \"";
    std::vector<std::string> patterns;
    for (const auto line : split(script, '\n')) {
        if (line.starts_with(before)) {
            const auto rest = line.substr(before.size());
            patterns.emplace_back(rest.substr(0, rest.find("\")) return \"")));
        }
    }
    return patterns;
}

std::vector<std::string> patternsFor(std::string patterns) {
    return patternsOf(PacGenerator::generate({hostWith("h", {dynamicRule(1080, std::move(patterns))})}, {}));
}

TEST(PacGenerator, NoHostsAndNoExceptionsGiveThreeLines) {
    EXPECT_EQ(PacGenerator::generate({}, {}), scriptWithoutRules);
    EXPECT_EQ(PacGenerator::generate({hostWith("without rules", {})}, {}), scriptWithoutRules);
}

TEST(PacGenerator, WritesEveryLineAsItIsPromised) {
    const auto script = PacGenerator::generate(
        {hostWith("Office", {dynamicRule(1080, "*.corp\n10.0.*")}), hostWith("Home", {dynamicRule(1081, "nas.home")})},
        {"localhost", "*.local"});
    EXPECT_EQ(script,
              "function FindProxyForURL(url, host) {\n"
              "    if (shExpMatch(host, \"localhost\")) return \"DIRECT\"; // exception\n"
              "    if (shExpMatch(host, \"*.local\")) return \"DIRECT\"; // exception\n"
              "    if (shExpMatch(host, \"nas.home\")) return \"SOCKS5 127.0.0.1:1081\"; // Home\n"
              "    if (shExpMatch(host, \"10.0.*\")) return \"SOCKS5 127.0.0.1:1080\"; // Office\n"
              "    if (shExpMatch(host, \"*.corp\")) return \"SOCKS5 127.0.0.1:1080\"; // Office\n"
              "    return \"DIRECT\";\n"
              "}");
}

TEST(PacGenerator, DisabledPortlessAndBlankRulesYieldNoLine) {
    auto disabled = dynamicRule(1080, "a.com");
    disabled.enabled = false;
    for (const auto& rule : {disabled, dynamicRule(0, "a.com"), dynamicRule(-1, "a.com"), dynamicRule(1080, ""),
                             dynamicRule(1080, " \t\n\r\n \xC2\xA0\xE2\x80\xA8\n")}) {
        EXPECT_EQ(PacGenerator::generate({hostWith("h", {rule})}, {}), scriptWithoutRules);
    }
}

TEST(PacGenerator, LocalAndRemoteRulesNeverYieldLines) {
    for (const auto type : {ForwardingType::local, ForwardingType::remote}) {
        auto rule = dynamicRule(1080, "a.com");
        rule.type = type;
        EXPECT_EQ(PacGenerator::generate({hostWith("h", {rule})}, {}), scriptWithoutRules);
    }
}

TEST(PacGenerator, OrdersExactNamesThenInnerThenLeadingWildcards) {
    EXPECT_THAT(patternsFor("*.corp\n10.0.*\na.b.example\n*"), ElementsAre("a.b.example", "10.0.*", "*.corp", "*"));
}

TEST(PacGenerator, MoreDotsComeFirstWhateverTheLength) {
    EXPECT_THAT(patternsFor("*.abcdef\n*.a.b"), ElementsAre("*.a.b", "*.abcdef"));
}

struct OrderCase {
    const char* what;
    const char* patterns;
    std::vector<std::string> order;
};

class PatternOrder : public testing::TestWithParam<OrderCase> {};

TEST_P(PatternOrder, IsThatOfTheTable) {
    EXPECT_EQ(patternsFor(GetParam().patterns), GetParam().order) << GetParam().what;
}

INSTANTIATE_TEST_SUITE_P(
    Table, PatternOrder,
    testing::Values(OrderCase{"longer first among equal dots", "a.b\nabc.d\nab.c", {"abc.d", "ab.c", "a.b"}},
                    OrderCase{"a wildcard at the end is inner", "*\na*", {"a*", "*"}},
                    OrderCase{"a leading wildcard counts even with an inner one", "*a*b\nab*", {"ab*", "*a*b"}},
                    OrderCase{"the class comes before the dots", "*.a.b.c\nx*\ny", {"y", "x*", "*.a.b.c"}},
                    OrderCase{"wildcards are no literal characters", "a****\nab*", {"ab*", "a****"}},
                    OrderCase{
                        "a question mark is a literal character", "a?\nabc\n*?b\n*bcd", {"abc", "a?", "*bcd", "*?b"}},
                    OrderCase{"dots are literal characters too", "ab\n...", {"...", "ab"}},
                    OrderCase{"equal keys keep their order", "b.a\na.b\nc.c\na.a", {"b.a", "a.b", "c.c", "a.a"}},
                    OrderCase{"repeats stay", "a\nb\na", {"a", "b", "a"}},
                    OrderCase{"characters count, not bytes",
                              "\xC3\xA9\xC3\xA9\xC3\xA9.x\nabcd.x",
                              {"abcd.x", "\xC3\xA9\xC3\xA9\xC3\xA9.x"}},
                    OrderCase{"an accent is no character of its own", "e\xCC\x81.x\nab.x", {"ab.x", "e\xCC\x81.x"}},
                    OrderCase{"an accented dot is no dot", "aaaa.\xCC\x81\nb.c", {"b.c", "aaaa.\xCC\x81"}},
                    OrderCase{"an accented star is no wildcard", "a*\n*\xCC\x81", {"*\xCC\x81", "a*"}}));

TEST(PacGenerator, EqualKeysFromDifferentHostsKeepTheOrderOfTheHosts) {
    const auto script = PacGenerator::generate({hostWith("first", {dynamicRule(2, "*.b"), dynamicRule(9, "*.c")}),
                                                hostWith("second", {dynamicRule(1, "*.a"), dynamicRule(1, "*.b")})},
                                               {});
    EXPECT_THAT(patternsOf(script), ElementsAre("*.b", "*.c", "*.a", "*.b"));
    EXPECT_LT(script.find("// first"), script.find("// second"));
}

TEST(PacGenerator, TrimsPatternLinesAndKeepsCommas) {
    EXPECT_THAT(patternsFor("  a.com, b.com \t\n"), ElementsAre("a.com, b.com"));
    EXPECT_THAT(patternsFor("\xE3\x80\x80x.com\xC2\xA0"), ElementsAre("x.com"));
}

TEST(PacGenerator, SplitsPatternsAtEveryNewline) {
    EXPECT_THAT(patternsFor("a\nb\r\nc\rd\xE2\x80\xA8"
                            "e\xE2\x80\xA9"
                            "f\xC2\x85g\vh\fi"),
                ElementsAre("a", "b", "c", "d", "e", "f", "g", "h", "i"));
}

TEST(PacGenerator, KeepsTheCaseOfPatterns) {
    EXPECT_THAT(patternsFor("*.Corp\n*.corp"), ElementsAre("*.Corp", "*.corp"));
}

TEST(PacGenerator, WritesExceptionsWithoutAnyProxyLine) {
    EXPECT_EQ(PacGenerator::generate({}, {"a.com"}),
              "function FindProxyForURL(url, host) {\n"
              "    if (shExpMatch(host, \"a.com\")) return \"DIRECT\"; // exception\n"
              "    return \"DIRECT\";\n}");
}

TEST(PacGenerator, WritesExceptionsAsTheyComeAheadOfEveryProxyLine) {
    const auto script =
        PacGenerator::generate({hostWith("h", {dynamicRule(1080, "exact.name.example")})}, {"*", " B ", "a", "*"});
    EXPECT_THAT(patternsOf(script), ElementsAre("*", " B ", "a", "*", "exact.name.example"));
}

TEST(PacGenerator, AlwaysNamesTheLoopbackAddress) {
    auto rule = dynamicRule(70000, "a.com");
    rule.bindAddress = "0.0.0.0";
    const auto script = PacGenerator::generate({hostWith("h", {rule})}, {});
    EXPECT_THAT(script, HasSubstr("return \"SOCKS5 127.0.0.1:70000\"; // h\n"));
    EXPECT_THAT(script, Not(HasSubstr("0.0.0.0")));
}

TEST(PacGenerator, EscapesNothing) {
    const auto script = PacGenerator::generate({hostWith("a\nb\\", {dynamicRule(1080, "x\"y\\")})}, {"e\"\\"});
    EXPECT_THAT(script, HasSubstr("    if (shExpMatch(host, \"e\"\\\")) return \"DIRECT\"; // exception\n"));
    EXPECT_THAT(script,
                HasSubstr("    if (shExpMatch(host, \"x\"y\\\")) return \"SOCKS5 127.0.0.1:1080\"; // a\nb\\\n"));
}

TEST(PacGenerator, WritesAnEmptyHostNameAfterTheSlashes) {
    EXPECT_THAT(PacGenerator::generate({hostWith("", {dynamicRule(1080, "a")})}, {}),
                HasSubstr("1080\"; // \n    return"));
}

}  // namespace
}  // namespace velmora
