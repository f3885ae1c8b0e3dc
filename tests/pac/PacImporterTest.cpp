#include "fakes/TemporaryDirectory.h"
#include "pac/Hosts.h"
#include "pac/PacImporter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <string>
#include <vector>

namespace velmora {
namespace {

using PacImporter::addPatterns;
using PacImporter::Entry;
using PacImporter::Outcome;
using PacImporter::outcome;
using PacImporter::parse;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

constexpr auto oneRule = "if (shExpMatch(host, \"*.corp\")) return \"SOCKS5 127.0.0.1:1080\";";
constexpr auto oneLoop =
    "var list = [\"a.com\", \"b.com\"];\n"
    "for (var i = 0; i < list.length; i++) if (shExpMatch(host, list[i])) return \"SOCKS5 127.0.0.1:1080\";\n";

TEST(PacImporter, FindsAConditionThatReturnsAProxy) {
    EXPECT_THAT(parse(oneRule), ElementsAre(Entry{"*.corp", 1080}));
}

TEST(PacImporter, FindsALoopOverAnArray) {
    EXPECT_THAT(parse(oneLoop), ElementsAre(Entry{"a.com", 1080}, Entry{"b.com", 1080}));
}

TEST(PacImporter, FindsNothingInOtherScripts) {
    for (const auto* script : {"", "function FindProxyForURL(url, host) { return \"DIRECT\"; }", "not a script at all",
                               "if (shExpMatch(host, \"a\")) return \"SOCKS 127.0.0.1:1080\";",
                               "if (shExpMatch(host, \"a\")) return \"PROXY 127.0.0.1:1080\";",
                               "if (shExpMatch(host, \"a\")) return \"SOCKS5 10.0.0.1:1080\";",
                               "if (shExpMatch(host, \"a\")) return \"SOCKS5 127.0.0.1\";",
                               "if (shExpMatch(host, \"a\")) return \"SOCKS5 127.0.0.1:1080; DIRECT\";",
                               "if (shExpMatch(host, \"a\")) return \"SOCKS5127.0.0.1:1080\";",
                               "if (shExpMatch(host, 'a')) return 'SOCKS5 127.0.0.1:1080';",
                               "if (shExpMatch(url, \"a\")) return \"SOCKS5 127.0.0.1:1080\";",
                               "if (shExpMatch(host, \"\")) return \"SOCKS5 127.0.0.1:1080\";",
                               "if (shexpmatch(host, \"a\")) return \"socks5 127.0.0.1:1080\";"}) {
        EXPECT_THAT(parse(script), IsEmpty()) << script;
    }
}

TEST(PacImporter, TakesLocalhostAndBlanksWhereverTheyMayStand) {
    EXPECT_THAT(parse("shExpMatch ( host , \"a\") ) {\n\n\treturn \"SOCKS5 \t localhost:9\"; }"),
                ElementsAre(Entry{"a", 9}));
}

TEST(PacImporter, DropsRepeatsWithinAndAcrossBothStyles) {
    EXPECT_THAT(parse(std::string(oneRule) + oneRule), ElementsAre(Entry{"*.corp", 1080}));
    EXPECT_THAT(parse(std::string("if (shExpMatch(host, \"b.com\")) return \"SOCKS5 localhost:1080\";\n") + oneLoop),
                ElementsAre(Entry{"a.com", 1080}, Entry{"b.com", 1080}));
}

TEST(PacImporter, KeepsOnePatternForEachOfItsPorts) {
    EXPECT_THAT(parse("if (shExpMatch(host, \"a\")) return \"SOCKS5 localhost:1\";"
                      "if (shExpMatch(host, \"a\")) return \"SOCKS5 localhost:2\";"),
                ElementsAre(Entry{"a", 1}, Entry{"a", 2}));
}

TEST(PacImporter, ListsLoopsBeforeConditions) {
    EXPECT_THAT(parse(std::string(oneRule) + "\n" + oneLoop),
                ElementsAre(Entry{"a.com", 1080}, Entry{"b.com", 1080}, Entry{"*.corp", 1080}));
}

TEST(PacImporter, SkipsLinesThatAreCommentedOut) {
    EXPECT_THAT(parse(std::string("// ") + oneRule), IsEmpty());
    EXPECT_THAT(parse(std::string("\t \xC2\xA0// ") + oneRule + "\r\n"), IsEmpty());
    EXPECT_THAT(parse("//" + std::string(oneLoop)), IsEmpty());
}

TEST(PacImporter, ReadsRulesInsideABlockComment) {
    EXPECT_THAT(parse(std::string("/*\n") + oneRule + "\n*/"), ElementsAre(Entry{"*.corp", 1080}));
}

TEST(PacImporter, EndsCommentLinesAtLineFeedsOnly) {
    EXPECT_THAT(parse(std::string("// one line to us\r") + oneRule), IsEmpty());
    EXPECT_THAT(parse(std::string("x // ") + oneRule), ElementsAre(Entry{"*.corp", 1080}));
}

TEST(PacImporter, FindsARuleOverTwoLines) {
    for (const auto* lineEnd : {"\n", "\r\n", "\n\n    ", "\n// a comment\n"}) {
        EXPECT_THAT(parse(std::string("if (shExpMatch(host, \"a\"))") + lineEnd + "return \"SOCKS5 127.0.0.1:1080\";"),
                    ElementsAre(Entry{"a", 1080}))
            << lineEnd;
    }
    EXPECT_THAT(parse("if (shExpMatch(host, \"a\"))\n  return \"SOCKS5\r\nlocalhost:1080\";"),
                ElementsAre(Entry{"a", 1080}));
}

TEST(PacImporter, TakesTheLastOfSeveralConditions) {
    EXPECT_THAT(parse("if (shExpMatch(host, \"a\") || shExpMatch(host, \"b\")) return \"SOCKS5 127.0.0.1:1\";"),
                ElementsAre(Entry{"b", 1}));
}

TEST(PacImporter, SkipsPortsThatAreNoNumberOfOurs) {
    EXPECT_THAT(parse("if (shExpMatch(host, \"a\")) return \"SOCKS5 localhost:99999999999999999999\";"
                      "if (shExpMatch(host, \"b\")) return \"SOCKS5 localhost:\xD9\xA1\";"
                      "if (shExpMatch(host, \"c\")) return \"SOCKS5 localhost:01080\";"
                      "if (shExpMatch(host, \"d\")) return \"SOCKS5 localhost:9223372036854775807\";"),
                ElementsAre(Entry{"c", 1080}, Entry{"d", 9223372036854775807}));
    EXPECT_THAT(parse("var x = [\"a\"]; x.length \"SOCKS5 localhost:99999999999999999999\""), IsEmpty());
}

TEST(PacImporter, ReadsTheItemsInDoubleQuotesOfEachArray) {
    EXPECT_THAT(PacImporter::extractArrays("var a = [\"x\", 'y', 3, z, \"w\",\n\"v\"]; var\tb=[ ]; let c = [\"q\"];"),
                UnorderedElementsAre(Pair("a", ElementsAre("x", "w", "v")), Pair("b", IsEmpty())));
}

TEST(PacImporter, LetsTheLastDeclarationOfAnArrayHold) {
    EXPECT_THAT(PacImporter::extractArrays("var a = [\"x\"]; var a = [\"y\", \"z\"];"),
                ElementsAre(Pair("a", ElementsAre("y", "z"))));
}

TEST(PacImporter, SkipsLoopsOverUnknownArrays) {
    EXPECT_THAT(PacImporter::parseArrayStyle("var a = [\"x\"];"
                                             "b.length return \"SOCKS5 localhost:1\";"
                                             "a.length return \"SOCKS5 localhost:2\";"),
                ElementsAre(Entry{"x", 2}));
}

TEST(PacImporter, KeepsTheTwoStylesApart) {
    EXPECT_THAT(PacImporter::parseInlineStyle(oneLoop), IsEmpty());
    EXPECT_THAT(PacImporter::parseArrayStyle(oneRule), IsEmpty());
}

TEST(AddPatterns, AppendsToTheRuleOnThePort) {
    std::vector<SSHHost> hosts{hostWith("h", {dynamicRule(1080, " a \r\n\n b"), dynamicRule(1081, "c\r\n")})};
    EXPECT_EQ(addPatterns({{"x", 1080}, {"y", 1080}, {"z", 9}}, hosts), 2U);
    EXPECT_EQ(hosts[0].forwardingRules[0].pacPatterns, "a\nb\nx\ny");
    EXPECT_EQ(hosts[0].forwardingRules[1].pacPatterns, "c\r\n") << "a rule without an addition stays as it is";
}

TEST(AddPatterns, StartsAnEmptyList) {
    std::vector<SSHHost> hosts{hostWith("h", {dynamicRule(1080, "")})};
    EXPECT_EQ(addPatterns({{"x", 1080}}, hosts), 1U);
    EXPECT_EQ(hosts[0].forwardingRules[0].pacPatterns, "x");
}

TEST(AddPatterns, GivesAPatternToEveryHostOnThePort) {
    std::vector<SSHHost> hosts{hostWith("one", {dynamicRule(1080, "a")}),
                               hostWith("two", {dynamicRule(1080, "x"), dynamicRule(1080, "")})};
    EXPECT_EQ(addPatterns({{"x", 1080}}, hosts), 2U);
    EXPECT_EQ(hosts[0].forwardingRules[0].pacPatterns, "a\nx");
    EXPECT_EQ(hosts[1].forwardingRules[0].pacPatterns, "x");
    EXPECT_EQ(hosts[1].forwardingRules[1].pacPatterns, "x");
}

TEST(AddPatterns, AddsToDisabledRulesToo) {
    auto rule = dynamicRule(1080, "");
    rule.enabled = false;
    std::vector<SSHHost> hosts{hostWith("h", {rule})};
    EXPECT_EQ(addPatterns({{"x", 1080}}, hosts), 1U);
}

TEST(AddPatterns, LeavesLocalAndRemoteRulesAlone) {
    for (const auto type : {ForwardingType::local, ForwardingType::remote}) {
        auto rule = dynamicRule(1080, "");
        rule.type = type;
        std::vector<SSHHost> hosts{hostWith("h", {rule})};
        const auto before = hosts;
        EXPECT_EQ(addPatterns({{"x", 1080}}, hosts), 0U);
        EXPECT_EQ(hosts, before);
    }
}

TEST(AddPatterns, DoesNotAddWhatIsThereAmongSpaces) {
    std::vector<SSHHost> hosts{hostWith("h", {dynamicRule(1080, "  x \t\n")})};
    EXPECT_EQ(addPatterns({{"x", 1080}}, hosts), 0U);
    EXPECT_EQ(hosts[0].forwardingRules[0].pacPatterns, "  x \t\n");
}

TEST(AddPatterns, TellsUpperFromLowerCase) {
    std::vector<SSHHost> hosts{hostWith("h", {dynamicRule(1080, "X")})};
    EXPECT_EQ(addPatterns({{"x", 1080}}, hosts), 1U);
    EXPECT_EQ(hosts[0].forwardingRules[0].pacPatterns, "X\nx");
}

TEST(AddPatterns, WritesPatternsAsFoundAndReadsThemAsAList) {
    std::vector<SSHHost> hosts{hostWith("h", {dynamicRule(1080, "a")})};
    EXPECT_EQ(addPatterns({{" x ", 1080}, {"x", 1080}, {"y\nz", 1080}, {"z", 1080}}, hosts), 2U);
    EXPECT_EQ(hosts[0].forwardingRules[0].pacPatterns, "a\nx\ny\nz");
    EXPECT_EQ(addPatterns({{" x ", 1080}}, hosts), 1U) << "a list item never begins with a space";
    EXPECT_EQ(hosts[0].forwardingRules[0].pacPatterns, "a\nx\ny\nz\n x ");
}

TEST(AddPatterns, ImportingAFileTwiceAddsNothingTheSecondTime) {
    std::vector<SSHHost> hosts{hostWith("h", {dynamicRule(1080, "")})};
    const auto entries = parse(std::string(oneRule) + "\n" + oneLoop);
    EXPECT_EQ(addPatterns(entries, hosts), 3U);
    const auto after = hosts;
    const auto second = addPatterns(entries, hosts);
    EXPECT_EQ(second, 0U);
    EXPECT_EQ(hosts, after);
    EXPECT_EQ(outcome(entries, second).message, "No matching tunnels");
}

TEST(ImportOutcome, NothingFound) {
    EXPECT_EQ(outcome({}, 0), (Outcome{"Nothing found",
                                       "No shExpMatch patterns with SOCKS5 proxies were found in the selected file."}));
}

TEST(ImportOutcome, NoMatchingTunnelsListsThePortsInOrder) {
    EXPECT_EQ(
        outcome({{"a", 10800}, {"b", 1080}, {"c", 10800}, {"d", 9}}, 0),
        (Outcome{"No matching tunnels",
                 "Found 4 patterns for ports: 9, 1080, 10800\n\nNone matched a Dynamic forwarding rule in Velmora."}));
}

TEST(ImportOutcome, NoMatchingTunnelsSaysPatternsEvenForOne) {
    EXPECT_EQ(outcome({{"a", 1080}}, 0).informativeText,
              "Found 1 patterns for ports: 1080\n\nNone matched a Dynamic forwarding rule in Velmora.");
}

TEST(ImportOutcome, CompleteChoosesBetweenSingularAndPlural) {
    EXPECT_EQ(outcome({{"a", 1}}, 1),
              (Outcome{"Import complete", "Added 1 pattern to matching Dynamic forwarding rules."}));
    EXPECT_EQ(outcome({{"a", 1}}, 2),
              (Outcome{"Import complete", "Added 2 patterns to matching Dynamic forwarding rules."}));
}

class ScriptFile : public testing::Test {
protected:
    TemporaryDirectory folder;
    std::filesystem::path path = folder / "proxy.pac";
};

TEST_F(ScriptFile, IsReadWhole) {
    writeContent(path, "caf\xC3\xA9\r\n");
    EXPECT_EQ(PacImporter::readScript(path), "caf\xC3\xA9\r\n");
}

TEST_F(ScriptFile, IsEmptyWhenItCannotBeRead) {
    EXPECT_EQ(PacImporter::readScript(path), "");
    EXPECT_EQ(PacImporter::readScript(folder.path()), "");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(PacImporter::readScript(path), "");
}

TEST_F(ScriptFile, IsEmptyInAnotherEncoding) {
    writeContent(path, std::string(oneRule) + "\xE9");
    EXPECT_EQ(PacImporter::readScript(path), "");
    EXPECT_EQ(outcome(parse(PacImporter::readScript(path)), 0).message, "Nothing found");
}

TEST_F(ScriptFile, IsNotReadAbove16Mebibytes) {
    auto content = std::string(PacImporter::maximumFileSize, ' ');
    writeContent(path, content);
    EXPECT_EQ(PacImporter::readScript(path).size(), 16777216U);
    writeContent(path, content + " ");
    EXPECT_EQ(PacImporter::readScript(path), "");
}

TEST(AddPatterns, AddsManyPatternsToALongList) {
    std::vector<Entry> entries;
    std::string stored;
    for (int i = 0; i < 100000; ++i) {
        entries.push_back({std::to_string(i) + ".example", 1080});
        stored += std::to_string(i) + ".corp\n";
    }
    std::vector<SSHHost> hosts{hostWith("h", {dynamicRule(1080, stored)})};
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(addPatterns(entries, hosts), 100000U);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(PacImporter, LoopsOverALongArrayTakeBoundedMemory) {
    std::string script = "var a = [\"" + std::string(100'000, '*') + "\"];\n";
    for (int port = 1; port <= 1000; ++port) {
        script += "a.length \"SOCKS5 localhost:" + std::to_string(port) + "\"\n";
    }
    std::size_t size = 0;
    const auto entries = PacImporter::parseArrayStyle(script);
    for (const auto& entry : entries) {
        size += sizeof(Entry) + entry.pattern.size();
    }
    EXPECT_LE(size, PacImporter::maximumArraySize);
    EXPECT_GT(size, PacImporter::maximumArraySize / 2);
    ASSERT_FALSE(entries.empty());
    EXPECT_EQ(entries.front().port, 1);
}

class HostileScript : public testing::TestWithParam<const char*> {};

TEST_P(HostileScript, NeverHangsTheProgram) {
    std::string script;
    while (script.size() < 2'000'000) {
        script += GetParam();
    }
    const auto start = std::chrono::steady_clock::now();
    (void)parse(script);
    // Each search ends after three seconds; without that these take minutes to days.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}

INSTANTIATE_TEST_SUITE_P(Pieces, HostileScript,
                         testing::Values("a", "var a=[", "a.length ", "shExpMatch(host,\"a\")", "shExpMatch(", "\"",
                                         "\r"));

}  // namespace
}  // namespace velmora
