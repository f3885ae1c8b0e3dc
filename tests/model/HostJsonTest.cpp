#include "model/HostJson.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

SSHHost decodeOne(const std::string& object) {
    auto hosts = decodeHosts("[" + object + "]");
    EXPECT_TRUE(hosts) << hosts.error().message;
    return hosts->at(0);
}

ForwardingRule decodeRule(const std::string& object) {
    return decodeOne(R"({"forwardingRules":[)" + object + "]}").forwardingRules.at(0);
}

std::string failureOf(const std::string& json) {
    const auto hosts = decodeHosts(json);
    return hosts ? "no failure" : hosts.error().message;
}

SSHHost fullHost() {
    SSHHost host;
    host.name = "Büro \"1\"\n\t\\/\x01";
    host.tags = "a, b";
    host.hostname = "server.example";
    host.port = 2222;
    host.username = "anna";
    host.noSessionRequest = false;
    host.connectOnStartup = false;
    host.useSSHConfigAlias = true;
    host.proxyJump = "jump";
    host.authMethod = AuthMethod::password;
    host.identityFile = "~/.ssh/id";
    host.serverAliveInterval = -1;
    host.serverAliveCountMax = 9223372036854775807;
    host.compression = true;
    host.connectTimeout = 5;
    host.strictHostKeyChecking = true;
    host.customOptions = "A=b\nC=d";
    for (const auto type : allForwardingTypes) {
        ForwardingRule rule;
        rule.type = type;
        rule.bindAddress = "127.0.0.1";
        rule.bindPort = 1080;
        rule.targetAddress = "db";
        rule.targetPort = 5432;
        rule.enabled = false;
        rule.pacPatterns = "*.a\n*.b";
        host.forwardingRules.push_back(rule);
    }
    return host;
}

TEST(HostJson, AnEmptyObjectIsAHostOfDefaults) {
    const auto host = decodeOne("{}");
    auto expected = SSHHost();
    EXPECT_NE(host.id, expected.id) << "each one is fresh";
    expected.id = host.id;
    EXPECT_EQ(host, expected);
    EXPECT_EQ(host.name, "Unnamed");
    EXPECT_EQ(host.port, 22);
    EXPECT_TRUE(host.forwardingRules.empty());
    EXPECT_TRUE(host.connectOnStartup);
    EXPECT_TRUE(host.noSessionRequest);
    EXPECT_FALSE(host.useSSHConfigAlias);
    EXPECT_EQ(host.serverAliveInterval, 60);
    EXPECT_EQ(host.serverAliveCountMax, 3);
    EXPECT_EQ(host.connectTimeout, 30);
    EXPECT_EQ(host.authMethod, AuthMethod::key);
    EXPECT_FALSE(host.compression);
    EXPECT_FALSE(host.strictHostKeyChecking);
}

TEST(HostJson, AnEmptyObjectIsARuleOfDefaults) {
    const auto rule = decodeRule("{}");
    EXPECT_TRUE(rule.enabled);
    EXPECT_EQ(rule.type, ForwardingType::local);
    EXPECT_EQ(rule.bindPort, 0);
    EXPECT_EQ(rule.targetPort, 0);
    EXPECT_TRUE(rule.sshArguments().empty());
    EXPECT_NE(rule.id, decodeRule("{}").id);
}

TEST(HostJson, NullIsLikeAMissingKey) {
    std::string allNull = "{";
    for (const auto* key :
         {"id", "name", "tags", "hostname", "port", "username", "forwardingRules", "noSessionRequest",
          "connectOnStartup", "useSSHConfigAlias", "proxyJump", "authMethod", "identityFile", "serverAliveInterval",
          "serverAliveCountMax", "compression", "connectTimeout", "strictHostKeyChecking", "customOptions"}) {
        allNull += (allNull.size() > 1 ? ",\"" : "\"") + std::string(key) + "\":null";
    }
    auto host = decodeOne(allNull + "}");
    auto expected = SSHHost();
    expected.id = host.id;
    EXPECT_EQ(host, expected);
    const auto rule = decodeRule(R"({"id":null,"type":null,"bindPort":null,"enabled":null,"pacPatterns":null})");
    EXPECT_TRUE(rule.enabled);
}

TEST(HostJson, PatternsOnOneLineWithCommasBecomeLines) {
    EXPECT_EQ(decodeRule(R"({"pacPatterns":"a.com, b.com,,c.com"})").pacPatterns, "a.com\nb.com\nc.com");
    EXPECT_EQ(decodeRule(R"({"pacPatterns":",\t,"})").pacPatterns, "");
    EXPECT_EQ(decodeRule(R"({"pacPatterns":"a,\rb"})").pacPatterns, "a\n\rb") << "only white space is trimmed";
}

TEST(HostJson, PatternsWithALineFeedOrWithoutACommaAreKept) {
    EXPECT_EQ(decodeRule(R"({"pacPatterns":"a.com\nb.com,c.com"})").pacPatterns, "a.com\nb.com,c.com");
    EXPECT_EQ(decodeRule(R"({"pacPatterns":"  *.corp "})").pacPatterns, "  *.corp ");
}

TEST(HostJson, AnAuthMethodThatIsNoRawValueFailsTheHost) {
    EXPECT_EQ(failureOf(R"([{"authMethod":"key"}])"), "[0].authMethod is not one of the known values");
    EXPECT_EQ(decodeOne(R"({"authMethod":"SSH Key"})").authMethod, AuthMethod::key);
    EXPECT_EQ(decodeOne(R"({"authMethod":"Password"})").authMethod, AuthMethod::password);
}

TEST(HostJson, EncodingThenDecodingGivesAnEqualHost) {
    const std::vector<SSHHost> hosts{fullHost(), SSHHost()};
    const auto json = encodeHosts(hosts);
    ASSERT_TRUE(json);
    const auto back = decodeHosts(*json);
    ASSERT_TRUE(back) << back.error().message;
    EXPECT_EQ(*back, hosts);
}

TEST(HostJson, WritesEveryKeyInTheOrderOfTheFieldsCompactly) {
    SSHHost host;
    host.id = *Uuid::parse("00000000-0000-0000-0000-00000000000A");
    ForwardingRule rule;
    rule.id = *Uuid::parse("00000000-0000-0000-0000-00000000000B");
    rule.pacPatterns = "a\nb";
    host.forwardingRules.push_back(rule);
    EXPECT_EQ(*encodeHosts({host}),
              R"([{"id":"00000000-0000-0000-0000-00000000000A","name":"Unnamed","tags":"","hostname":"","port":22,)"
              R"("username":"","forwardingRules":[{"id":"00000000-0000-0000-0000-00000000000B","type":"Local",)"
              R"("bindAddress":"","bindPort":0,"targetAddress":"","targetPort":0,"enabled":true,)"
              R"("pacPatterns":"a\nb"}],"noSessionRequest":true,"connectOnStartup":true,"useSSHConfigAlias":false,)"
              R"("proxyJump":"","authMethod":"SSH Key","identityFile":"","serverAliveInterval":60,)"
              R"("serverAliveCountMax":3,"compression":false,"connectTimeout":30,"strictHostKeyChecking":false,)"
              R"("customOptions":""}])");
    EXPECT_EQ(*encodeHosts({}), "[]");
}

TEST(HostJson, EveryControlCharacterIsWrittenInItsShortestForm) {
    SSHHost host;
    for (char c = 0; c < 0x20; ++c) {
        host.customOptions += c;
    }
    const auto json = *encodeHosts({host});
    EXPECT_THAT(json, HasSubstr(R"(:"\u0000\u0001\u0002\u0003\u0004\u0005\u0006\u0007\b\t\n\u000b\f\r\u000e\u000f)"
                                R"(\u0010\u0011\u0012\u0013\u0014\u0015\u0016\u0017\u0018\u0019\u001a\u001b\u001c)"
                                R"(\u001d\u001e\u001f")"));
    EXPECT_EQ(decodeHosts(json)->at(0), host);
}

TEST(HostJson, TextThatIsNotUtf8IsNotWritten) {
    SSHHost host;
    host.name = "\xFF";
    EXPECT_FALSE(encodeHosts({host}));
}

TEST(HostJson, UnknownKeysAreIgnoredAndKeysMayComeInAnyOrder) {
    const auto host = decodeOne(R"({"port":2,"future":{"a":[1]},"name":"x","tags":"t"})");
    EXPECT_EQ(host.port, 2);
    EXPECT_EQ(host.name, "x");
    EXPECT_EQ(host.tags, "t");
}

TEST(HostJson, OfARepeatedKeyTheLastCounts) {
    EXPECT_EQ(decodeOne(R"({"name":"a","name":"b"})").name, "b");
    EXPECT_EQ(decodeOne(R"({"port":"bad","port":23})").port, 23);
    EXPECT_NE(failureOf(R"([{"port":23,"port":"bad"}])"), "no failure");
}

struct NumberCase {
    std::string text;
    std::optional<std::int64_t> expected;
};

class Integers : public testing::TestWithParam<NumberCase> {};

TEST_P(Integers, AreNumbersWithoutAFractionThatFit) {
    const auto hosts = decodeHosts(R"([{"port":)" + GetParam().text + "}]");
    ASSERT_EQ(static_cast<bool>(hosts), GetParam().expected.has_value());
    if (hosts) {
        EXPECT_EQ(hosts->at(0).port, GetParam().expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, Integers,
                         testing::Values(NumberCase{"22", 22}, NumberCase{"22.0", 22}, NumberCase{"2.2e1", 22},
                                         NumberCase{"-0", 0}, NumberCase{"-5", -5},
                                         NumberCase{"9223372036854775807", INT64_MAX},
                                         NumberCase{"-9223372036854775808", INT64_MIN}, NumberCase{"22.5", {}},
                                         NumberCase{"1e400", {}}, NumberCase{"9223372036854775808", {}},
                                         NumberCase{"-9223372036854775809", {}}, NumberCase{"1e19", {}},
                                         NumberCase{"\"22\"", {}}, NumberCase{"true", {}}, NumberCase{"[22]", {}}));

class WrongTypes : public testing::TestWithParam<std::pair<std::string, std::string>> {};

TEST_P(WrongTypes, FailTheWholeListAndNameThePlace) {
    EXPECT_EQ(failureOf(GetParam().first), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(
    Table, WrongTypes,
    testing::Values(std::pair{"{}", "the list is not an array"}, std::pair{"[{},3]", "[1] is not an object"},
                    std::pair{R"([{"name":1}])", "[0].name is not a string"},
                    std::pair{R"([{"id":"x"}])", "[0].id is not an identifier"},
                    std::pair{R"([{"id":7}])", "[0].id is not an identifier"},
                    std::pair{R"([{"compression":1}])", "[0].compression is not a boolean"},
                    std::pair{R"([{"port":"22"}])", "[0].port is not an integer of 64 bits"},
                    std::pair{R"([{"forwardingRules":{}}])", "[0].forwardingRules is not an array"},
                    std::pair{R"([{"forwardingRules":[null]}])", "[0].forwardingRules[0] is not an object"},
                    std::pair{R"([{},{"forwardingRules":[{},{"type":"local"}]}])",
                              "[1].forwardingRules[1].type is not one of the known values"}));

TEST(HostJson, WhatIsNotJsonFails) {
    for (const auto* text : {"", "[", "[{]", "[{}] x", "nope", "\xEF\xBB\xBF[]", "[{'a':1}]", "[{\"name\":\"\xFF\"}]",
                             "[{\"name\":\"\\ud800\"}]", "[{\"name\":\"a\nb\"}]", "[{},]"}) {
        EXPECT_THAT(failureOf(text), StartsWith("not JSON: ")) << text;
    }
}

TEST(HostJson, DeepNestingFails) {
    const auto nested = [](std::size_t levels) {
        return R"([{"x":)" + std::string(levels, '[') + std::string(levels, ']') + "}]";
    };
    EXPECT_TRUE(decodeHosts(nested(62)));
    EXPECT_THAT(failureOf(nested(63)), HasSubstr("too deep"));
    EXPECT_THAT(failureOf(std::string(10'000'000, '[')), HasSubstr("too deep"));
}

TEST(HostJson, AZeroByteInATextSurvives) {
    const auto host = decodeOne(R"({"name":"a\u0000b"})");
    EXPECT_EQ(host.name, std::string("a\0b", 3));
    EXPECT_THAT(*encodeHosts({host}), HasSubstr(R"("name":"a\u0000b")"));
}

TEST(HostJson, TruncatedAnywhereItFails) {
    const auto json = *encodeHosts({fullHost()});
    for (std::size_t size = 0; size < json.size(); ++size) {
        ASSERT_FALSE(decodeHosts(std::string_view(json).substr(0, size))) << size;
    }
}

}  // namespace
}  // namespace velmora
