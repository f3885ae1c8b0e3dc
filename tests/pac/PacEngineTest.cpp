#include "base/Text.h"
#include "pac/Generated.h"
#include "pac/Hosts.h"
#include "pac/PacEngine.h"
#include "pac/PacGenerator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

namespace velmora {
namespace {

std::string socks(int port) {
    return "SOCKS5 127.0.0.1:" + std::to_string(port);
}

TEST(GeneratedScript, SendsEachHostWhereTheOrderOfTheRulesPromises) {
    auto disabled = dynamicRule(9, "*");
    disabled.enabled = false;
    const PacEngine engine(PacGenerator::generate(
        {hostWith("Office", {dynamicRule(1080, "*.corp\n10.0.*\n*.deep.corp\nwiki"), disabled}),
         hostWith("B\xC3\xBCro \"2\" // \\", {dynamicRule(1081, "db.corp\n*.corp\n10.0.5.*\nhost-?.lab")}),
         hostWith("Last", {dynamicRule(1082, "a.*.example\n*.b.example")})},
        {"direct.corp", "*.local.corp", "10.0.9.*"}));
    const std::vector<std::pair<std::string, std::string>> table{
        {"www.corp", socks(1080)},        // both have it, the first host wins
        {"db.corp", socks(1081)},         // an exact name comes before a wildcard
        {"x.deep.corp", socks(1080)},     // more dots come first
        {"direct.corp", "DIRECT"},        // an exception comes before everything
        {"x.local.corp", "DIRECT"},       //
        {"10.0.9.1", "DIRECT"},           //
        {"10.0.5.1", socks(1081)},        // more dots come first, though the host stands later
        {"10.0.4.1", socks(1080)},        //
        {"10.1.0.0", "DIRECT"},           // nobody's
        {"wiki", socks(1080)},            //
        {"wiki.example", "DIRECT"},       // a pattern matches whole names
        {"corp", "DIRECT"},               // and a dot wants a dot
        {"wwwXcorp", "DIRECT"},           //
        {"host-7.lab", socks(1081)},      // a question mark is one character
        {"host-77.lab", "DIRECT"},        //
        {"a.b.example", socks(1082)},     //
        {"a.x.example", socks(1082)},     //
        {"elsewhere.example", "DIRECT"},  //
    };
    for (const auto& [host, proxy] : table) {
        EXPECT_EQ(engine.proxyFor(host), proxy) << host;
    }
}

TEST(GeneratedScript, SendsEverythingDirectWithoutRules) {
    EXPECT_EQ(PacEngine(PacGenerator::generate({}, {})).proxyFor("a.example"), "DIRECT");
    EXPECT_EQ(PacEngine(PacGenerator::generate({}, {"*"})).proxyFor("a.example"), "DIRECT");
}

/// Another way to read a glob than the engine's.
bool globMatches(std::string_view glob, std::string_view text) {
    if (glob.empty()) {
        return text.empty();
    }
    if (glob.front() == '*') {
        return globMatches(glob.substr(1), text) || (!text.empty() && globMatches(glob, text.substr(1)));
    }
    return !text.empty() && (glob.front() == '?' || glob.front() == text.front()) &&
           globMatches(glob.substr(1), text.substr(1));
}

struct Routed {
    std::string pattern;
    std::string proxy;
};

/// The proxy that the documented order gives: exceptions, then the best match, the first of equals.
std::string expectedProxy(const std::vector<std::string>& exceptions, const std::vector<Routed>& routes,
                          const std::string& host) {
    if (std::ranges::any_of(exceptions, [&](const auto& exception) { return globMatches(exception, host); })) {
        return "DIRECT";
    }
    const auto key = [](const Routed& route) {
        const auto& pattern = route.pattern;
        const auto stars = std::ranges::count(pattern, '*');
        return std::tuple(stars == 0 ? 0 : (pattern.front() == '*' ? 2 : 1), -std::ranges::count(pattern, '.'),
                          stars - static_cast<std::ptrdiff_t>(pattern.size()));
    };
    const Routed* best = nullptr;
    for (const auto& route : routes) {
        if (globMatches(route.pattern, host) && (best == nullptr || key(route) < key(*best))) {
            best = &route;
        }
    }
    return best == nullptr ? "DIRECT" : best->proxy;
}

TEST(GeneratedScript, KeepsThePromiseForGeneratedHostsAndPatterns) {
    const std::vector<std::string> globPieces{"a", "b", "aa", ".", ".", "*", "?"};
    const std::vector<std::string> hostPieces{"a", "b", "aa", "."};
    Generated generated;
    for (int round = 0; round < 200; ++round) {
        std::vector<SSHHost> hosts;
        std::vector<Routed> routes;
        for (int i = 0; i < 4; ++i) {
            const auto port = 1080 + i;
            std::vector<std::string> patterns;
            for (int j = 0; j < 4; ++j) {
                if (auto pattern = generated.textOf(globPieces, 5); !pattern.empty()) {
                    routes.push_back({pattern, socks(port)});
                    patterns.push_back(std::move(pattern));
                }
            }
            hosts.push_back(hostWith("host", {dynamicRule(port, join(patterns, "\n"))}));
        }
        const std::vector<std::string> exceptions{"b" + generated.textOf(globPieces, 4)};
        const auto script = PacGenerator::generate(hosts, exceptions);
        const PacEngine engine(script);
        for (int i = 0; i < 20; ++i) {
            const auto host = "a" + generated.textOf(hostPieces, 4);
            ASSERT_EQ(engine.proxyFor(host), expectedProxy(exceptions, routes, host))
                << "seed " << generated.seed() << ", host " << host << " in\n"
                << script;
        }
    }
}

}  // namespace
}  // namespace velmora
