#include "fakes/TemporaryDirectory.h"
#include "sync/CoreTunnelImporter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace velmora {
namespace {

using testing::HasSubstr;

bool isInvalid(const std::string& json) {
    const auto hosts = CoreTunnelImporter::decode(json);
    return !hosts && hosts.error() == ImportError::invalidFile;
}

std::string fileWithProfile(const std::string& profile) {
    return R"({"profiles":[)" + profile + "]}";
}

SSHHost decodeProfile(const std::string& profile) {
    const auto hosts = CoreTunnelImporter::decode(fileWithProfile(profile));
    EXPECT_TRUE(hosts) << profile;
    return hosts ? hosts->at(0) : SSHHost();
}

/// A profile at a real host name, with more keys.
std::string profileWith(const std::string& more) {
    return R"({"name":"web","address":"web.example")" + (more.empty() ? "" : "," + more) + "}";
}

std::string forwardingWith(const std::string& more) {
    return profileWith(R"("forwardings":[{"type":"local")" + (more.empty() ? "" : "," + more) + "}]");
}

ForwardingRule decodeForwarding(const std::string& forwarding) {
    const auto host = decodeProfile(profileWith(R"("forwardings":[)" + forwarding + "]"));
    return host.forwardingRules.empty() ? ForwardingRule() : host.forwardingRules[0];
}

// ---- optional keys: there, null, missing, of the wrong type ----

struct OptionalKey {
    std::string key;
    std::string goodValue;
    std::vector<std::string> wrongValues;
    std::function<std::string(const SSHHost&)> show;  ///< what the key becomes
    std::string whenGood;
    std::string whenAbsent;
    std::function<std::string(const std::string&)> profile = profileWith;  ///< puts the key where it belongs
};

std::ostream& operator<<(std::ostream& out, const OptionalKey& key) {
    return out << key.key;
}

std::string shown(bool value) {
    return value ? "true" : "false";
}

std::function<std::string(const SSHHost&)> ofRule(std::function<std::string(const ForwardingRule&)> show) {
    return [show = std::move(show)](const SSHHost& host) { return show(host.forwardingRules.at(0)); };
}

std::vector<OptionalKey> optionalKeys() {
    const std::vector<std::string> notString{"1", "true", "[]", "{}"};
    const std::vector<std::string> notInteger{R"("22")", "true", "22.5", "1e30", "9223372036854775808", "[]", "{}"};
    const std::vector<std::string> notBoolean{"0", "1", R"("true")", "[]", "{}"};
    const auto text = [](std::string ForwardingRule::*member) {
        return ofRule([member](const ForwardingRule& rule) { return rule.*member; });
    };
    const auto number = [](std::int64_t ForwardingRule::*member) {
        return ofRule([member](const ForwardingRule& rule) { return std::to_string(rule.*member); });
    };
    const auto intervalAndCount = [](const SSHHost& host) {
        return std::to_string(host.serverAliveInterval) + "x" + std::to_string(host.serverAliveCountMax);
    };
    const auto rules = [](const SSHHost& host) { return std::to_string(host.forwardingRules.size()); };
    return {
        {"port", "2222", notInteger, [](const SSHHost& host) { return std::to_string(host.port); }, "2222", "22"},
        {"user", R"("anna")", notString, [](const SSHHost& host) { return host.username; }, "anna", ""},
        {"autoConnect", "true", notBoolean, [](const SSHHost& host) { return shown(host.connectOnStartup); }, "true",
         "false"},
        {"forwardings",
         R"([{"type":"local"},{"type":"remote"}])",
         {"1", R"("x")", "{}", "[1]", "[null]", "[{}]", R"([{"type":null}])", R"([{"type":1}])"},
         rules,
         "2",
         "0"},
        {"options",
         R"({"ServerAliveInterval":"5","ServerAliveCountMax":"7"})",
         {"1", R"("x")", "[]", R"({"ServerAliveInterval":5})", R"({"Compression":true})", R"({"Other":null})"},
         intervalAndCount,
         "5x7",
         "60x3"},
        {"identityFile", R"("~/.ssh/id")", notString, [](const SSHHost& host) { return host.identityFile; },
         "~/.ssh/id", ""},
        {"bindAddress", R"("127.0.0.1")", notString, text(&ForwardingRule::bindAddress), "127.0.0.1", "",
         forwardingWith},
        {"bindPort", "8080", notInteger, number(&ForwardingRule::bindPort), "8080", "0", forwardingWith},
        {"targetAddress", R"("db")", notString, text(&ForwardingRule::targetAddress), "db", "", forwardingWith},
        {"targetHost", R"("db")", notString, text(&ForwardingRule::targetAddress), "db", "", forwardingWith},
        {"targetPort", "5432", notInteger, number(&ForwardingRule::targetPort), "5432", "0", forwardingWith},
        {"enabled", "false", notBoolean, ofRule([](const ForwardingRule& rule) { return shown(rule.enabled); }),
         "false", "true", forwardingWith},
    };
}

class CoreTunnelOptionalKey : public testing::TestWithParam<OptionalKey> {
protected:
    std::string profile(const std::string& value) const {
        return GetParam().profile("\"" + GetParam().key + "\":" + value);
    }
};

TEST_P(CoreTunnelOptionalKey, IsTakenWhenThere) {
    EXPECT_EQ(GetParam().show(decodeProfile(profile(GetParam().goodValue))), GetParam().whenGood);
}

TEST_P(CoreTunnelOptionalKey, HasItsDefaultWhenNullOrMissing) {
    EXPECT_EQ(GetParam().show(decodeProfile(profile("null"))), GetParam().whenAbsent);
    EXPECT_EQ(GetParam().show(decodeProfile(GetParam().profile(""))), GetParam().whenAbsent);
}

TEST_P(CoreTunnelOptionalKey, OfTheWrongTypeMakesTheWholeFileInvalid) {
    for (const auto& wrong : GetParam().wrongValues) {
        EXPECT_TRUE(isInvalid(R"({"profiles":[{"name":"good","address":"a"},)" + profile(wrong) + "]}")) << wrong;
    }
}

TEST_P(CoreTunnelOptionalKey, InAnotherCaseIsUnknown) {
    auto key = GetParam().key;
    key[0] = static_cast<char>(key[0] - 'a' + 'A');
    EXPECT_EQ(GetParam().show(decodeProfile(GetParam().profile("\"" + key + "\":[]"))), GetParam().whenAbsent);
}

INSTANTIATE_TEST_SUITE_P(Table, CoreTunnelOptionalKey, testing::ValuesIn(optionalKeys()),
                         [](const auto& test) { return test.param.key; });

// ---- required keys ----

TEST(CoreTunnelImporter, ARequiredKeyThatIsMissingNullOrOfTheWrongTypeMakesTheFileInvalid) {
    for (const auto* file :
         {"{}", R"({"Profiles":[]})", R"({"profiles":null})", R"({"profiles":{}})", R"({"profiles":"x"})",
          R"({"profiles":[1]})", R"({"profiles":[null]})", R"({"profiles":[[]]})"}) {
        EXPECT_TRUE(isInvalid(file)) << file;
    }
    for (const auto* profile :
         {"{}", R"({"name":"n"})", R"({"address":"a"})", R"({"name":null,"address":"a"})",
          R"({"name":"n","address":null})", R"({"name":1,"address":"a"})", R"({"name":"n","address":["a"]})",
          R"({"Name":"n","address":"a"})", R"({"name":"n","Address":"a"})"}) {
        EXPECT_TRUE(isInvalid(fileWithProfile(profile))) << profile;
    }
    for (const auto* forwarding : {"{}", R"({"type":null})", R"({"type":1})", R"({"Type":"local"})"}) {
        EXPECT_TRUE(isInvalid(fileWithProfile(profileWith(R"("forwardings":[)" + std::string(forwarding) + "]"))))
            << forwarding;
    }
}

TEST(CoreTunnelImporter, WhatIsNoJsonObjectInUtf8IsInvalid) {
    for (const auto* file : {"", "[]", "null", "1", "{", "{\"profiles\":[]} x", "{\"profiles\":[],\"\xFF\":1}"}) {
        EXPECT_TRUE(isInvalid(file)) << file;
    }
    const std::string deep = std::string(100, '[') + std::string(100, ']');
    EXPECT_TRUE(isInvalid(R"({"profiles":[],"x":)" + deep + "}")) << "nested too deeply, even where it is unknown";
}

TEST(CoreTunnelImporter, UnknownKeysAreIgnoredEverywhere) {
    const auto hosts = CoreTunnelImporter::decode(
        R"({"version":3,"profiles":[{"name":"n","address":"a.b","x":{},"forwardings":[{"type":"local","y":[1]}]}]})");
    ASSERT_TRUE(hosts);
    EXPECT_EQ(hosts->at(0).forwardingRules.size(), 1U);
}

TEST(CoreTunnelImporter, ABackupTruncatedAnywhereIsInvalid) {
    const auto whole = fileWithProfile(forwardingWith(R"("bindPort":8080)"));
    ASSERT_FALSE(isInvalid(whole));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_TRUE(isInvalid(whole.substr(0, length))) << length;
    }
}

// ---- conversion of a profile ----

TEST(CoreTunnelImporter, AProfileWithTheRequiredKeysOnlyHasTheDefaults) {
    const auto host = decodeProfile(R"({"name":"web","address":"web.example"})");
    SSHHost expected;
    expected.id = host.id;
    expected.name = "web";
    expected.hostname = "web.example";
    expected.connectOnStartup = false;
    EXPECT_EQ(host, expected);
    EXPECT_TRUE(host.noSessionRequest);
    EXPECT_EQ(host.authMethod, AuthMethod::key);
}

TEST(CoreTunnelImporter, AFullProfileBecomesAHost) {
    const auto host = decodeProfile(
        R"({"name":" Web ","address":"10.0.0.5","port":2222,"user":"anna","autoConnect":true,
            "identityFile":"~/.ssh/id","options":{"ServerAliveInterval":"15","ServerAliveCountMax":"4",
            "Compression":"yes","ProxyJump":"j"},
            "forwardings":[{"type":"remote","bindAddress":"0.0.0.0","bindPort":80,"targetAddress":"localhost",
            "targetPort":8080,"enabled":false},{"type":"dynamic","bindPort":1080}]})");
    ASSERT_EQ(host.forwardingRules.size(), 2U);
    SSHHost expected;
    expected.id = host.id;
    expected.name = " Web ";
    expected.hostname = "10.0.0.5";
    expected.port = 2222;
    expected.username = "anna";
    expected.connectOnStartup = true;
    expected.identityFile = "~/.ssh/id";
    expected.serverAliveInterval = 15;
    expected.serverAliveCountMax = 4;
    expected.forwardingRules = {{.id = host.forwardingRules[0].id,
                                 .type = ForwardingType::remote,
                                 .bindAddress = "0.0.0.0",
                                 .bindPort = 80,
                                 .targetAddress = "localhost",
                                 .targetPort = 8080,
                                 .enabled = false},
                                {.id = host.forwardingRules[1].id, .type = ForwardingType::dynamic, .bindPort = 1080}};
    EXPECT_EQ(host, expected) << "every other option is ignored";
}

TEST(CoreTunnelImporter, EveryHostAndRuleGetsAFreshId) {
    const auto file = fileWithProfile(forwardingWith(""));
    const auto first = CoreTunnelImporter::decode(file);
    const auto second = CoreTunnelImporter::decode(file);
    ASSERT_TRUE(first && second);
    EXPECT_NE(first->at(0).id, second->at(0).id);
    EXPECT_NE(first->at(0).forwardingRules[0].id, second->at(0).forwardingRules[0].id);
}

TEST(CoreTunnelImporter, AnAddressThatIsAnAliasLeavesPortAndUserToTheSshConfiguration) {
    const auto host = decodeProfile(R"({"name":"n","address":"prod-db","port":2222,"user":"anna"})");
    EXPECT_TRUE(host.useSSHConfigAlias);
    EXPECT_EQ(host.hostname, "prod-db");
    EXPECT_EQ(host.port, 22);
    EXPECT_EQ(host.username, "");
}

struct AddressCase {
    std::string address;
    bool isAlias;
};

class CoreTunnelAddress : public testing::TestWithParam<AddressCase> {};

TEST_P(CoreTunnelAddress, IsAnAliasUnlessItHasADotAColonOrStartsWithANumber) {
    const auto& [address, isAlias] = GetParam();
    const auto host = decodeProfile(R"({"name":"n","address":")" + address + R"(","port":2222,"user":"anna"})");
    EXPECT_EQ(host.useSSHConfigAlias, isAlias);
    EXPECT_EQ(host.hostname, address);
    EXPECT_EQ(host.port, isAlias ? 22 : 2222);
    EXPECT_EQ(host.username, isAlias ? "" : "anna");
}

INSTANTIATE_TEST_SUITE_P(Table, CoreTunnelAddress,
                         testing::Values(AddressCase{"prod-db", true}, AddressCase{"10", false},
                                         AddressCase{"192.168.1.5", false}, AddressCase{"web.example", false},
                                         AddressCase{"::1", false}, AddressCase{"fe80:0", false},
                                         AddressCase{"a.", false}, AddressCase{"1web", false},
                                         AddressCase{"web1", true}, AddressCase{"-1", true}, AddressCase{" 1", true},
                                         AddressCase{"\xC3\xA9t\xC3\xA9", true},  // a letter beyond ASCII
                                         AddressCase{"\xD9\xA3x", false},         // Arabic digit three
                                         AddressCase{"\xC2\xBDx", false},         // one half
                                         AddressCase{"\xE4\xB8\x89", false},      // Chinese three
                                         AddressCase{"", false}));

struct OptionCase {
    std::string text;
    std::int64_t interval;  ///< the default is 60
};

class CoreTunnelKeepAlive : public testing::TestWithParam<OptionCase> {};

TEST_P(CoreTunnelKeepAlive, IsAWholeDecimalNumberOrTheDefault) {
    const auto& [text, interval] = GetParam();
    const auto host = decodeProfile(profileWith(R"("options":{"ServerAliveInterval":")" + text + R"("})"));
    EXPECT_EQ(host.serverAliveInterval, interval);
    EXPECT_EQ(host.serverAliveCountMax, 3);
    const auto count = decodeProfile(profileWith(R"("options":{"ServerAliveCountMax":")" + text + R"("})"));
    EXPECT_EQ(count.serverAliveCountMax, interval == 60 ? 3 : interval);
    EXPECT_EQ(count.serverAliveInterval, 60);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CoreTunnelKeepAlive,
    testing::Values(OptionCase{"15", 15}, OptionCase{"+15", 15}, OptionCase{"-15", -15}, OptionCase{"0", 0},
                    OptionCase{"007", 7}, OptionCase{"9223372036854775807", INT64_MAX},
                    OptionCase{"-9223372036854775808", INT64_MIN}, OptionCase{"9223372036854775808", 60},
                    OptionCase{"-9223372036854775809", 60}, OptionCase{"99999999999999999999", 60},
                    OptionCase{"abc", 60}, OptionCase{"", 60}, OptionCase{"+", 60}, OptionCase{"-", 60},
                    OptionCase{"+-5", 60}, OptionCase{"-+5", 60}, OptionCase{"++5", 60}, OptionCase{"5s", 60},
                    OptionCase{" 5", 60}, OptionCase{"5 ", 60}, OptionCase{"5.0", 60}, OptionCase{"0x5", 60},
                    OptionCase{"\xEF\xBC\x95", 60}));  // full-width five

TEST(CoreTunnelImporter, OptionNamesAreCaseSensitive) {
    EXPECT_EQ(decodeProfile(profileWith(R"("options":{"serveraliveinterval":"5"})")).serverAliveInterval, 60);
}

// ---- conversion of a forwarding ----

struct TypeCase {
    std::string text;
    ForwardingType type;
};

class CoreTunnelForwardingType : public testing::TestWithParam<TypeCase> {};

TEST_P(CoreTunnelForwardingType, IsReadInAnyCapitalisationAndElseIsDynamic) {
    EXPECT_EQ(decodeForwarding(R"({"type":")" + GetParam().text + R"("})").type, GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CoreTunnelForwardingType,
    testing::Values(TypeCase{"local", ForwardingType::local}, TypeCase{"LOCAL", ForwardingType::local},
                    TypeCase{"Local", ForwardingType::local}, TypeCase{"lOcAl", ForwardingType::local},
                    TypeCase{"remote", ForwardingType::remote}, TypeCase{"REMOTE", ForwardingType::remote},
                    TypeCase{"dynamic", ForwardingType::dynamic}, TypeCase{"Dynamic", ForwardingType::dynamic},
                    TypeCase{"", ForwardingType::dynamic}, TypeCase{"socks", ForwardingType::dynamic},
                    TypeCase{" local", ForwardingType::dynamic}, TypeCase{"local remote", ForwardingType::dynamic},
                    TypeCase{"locals", ForwardingType::dynamic}, TypeCase{"loca", ForwardingType::dynamic}));

TEST(CoreTunnelImporter, TheTargetHostCountsOnlyWithoutATargetAddress) {
    EXPECT_EQ(decodeForwarding(R"({"type":"local","targetHost":"db"})").targetAddress, "db");
    EXPECT_EQ(decodeForwarding(R"({"type":"local","targetAddress":null,"targetHost":"db"})").targetAddress, "db");
    EXPECT_EQ(decodeForwarding(R"({"type":"local","targetHost":"db","targetAddress":"web"})").targetAddress, "web");
    EXPECT_EQ(decodeForwarding(R"({"type":"local","targetHost":"db","targetAddress":""})").targetAddress, "")
        << "an empty one is one";
}

TEST(CoreTunnelImporter, AForwardingWithoutEnabledIsEnabledAndADisabledOneIsKept) {
    EXPECT_TRUE(decodeForwarding(R"({"type":"local"})").enabled);
    EXPECT_FALSE(decodeForwarding(R"({"type":"local","enabled":false})").enabled);
}

TEST(CoreTunnelImporter, ForwardingsKeepTheirOrder) {
    const auto host = decodeProfile(
        profileWith(R"("forwardings":[{"type":"local","bindPort":3},{"type":"local","bindPort":1,"enabled":false},
                       {"type":"local","bindPort":2}])"));
    ASSERT_EQ(host.forwardingRules.size(), 3U);
    EXPECT_EQ(host.forwardingRules[0].bindPort, 3);
    EXPECT_EQ(host.forwardingRules[1].bindPort, 1);
    EXPECT_EQ(host.forwardingRules[2].bindPort, 2);
}

// ---- files ----

TEST(CoreTunnelImporter, AFileIsReadWholeAndItsFailuresAreToldApart) {
    const TemporaryDirectory directory;
    writeContent(directory / "good.coretunnel", fileWithProfile(profileWith("")));
    const auto hosts = CoreTunnelImporter::importHosts(directory / "good.coretunnel");
    ASSERT_TRUE(hosts);
    EXPECT_EQ(hosts->at(0).name, "web");

    writeContent(directory / "bad.coretunnel", "[]");
    const auto bad = CoreTunnelImporter::importHosts(directory / "bad.coretunnel");
    ASSERT_FALSE(bad);
    EXPECT_EQ(bad.error().message, "Could not read the .coretunnel file.");

    const auto missing = CoreTunnelImporter::importHosts(directory / "none.coretunnel");
    ASSERT_FALSE(missing);
    EXPECT_THAT(missing.error().message, HasSubstr("none.coretunnel: No such file"));
    EXPECT_FALSE(CoreTunnelImporter::importHosts(directory.path()));
}

}  // namespace
}  // namespace velmora
