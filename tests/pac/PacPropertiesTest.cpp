// What holds between the pieces, for any input.
#include "base/Text.h"
#include "pac/Generated.h"
#include "pac/Hosts.h"
#include "pac/PacGenerator.h"
#include "pac/PacImporter.h"
#include "pac/ProxyExceptions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <unordered_set>
#include <vector>

namespace velmora {
namespace {

constexpr int cases = 5000;

using Pieces = std::vector<std::string>;

/// Of what patterns and names are made, and what might confuse a reader of scripts; neither quotes nor newlines.
const Pieces harmlessPieces{"a",         "B",
                            ".",         "*",
                            "?",         "-",
                            "0",         "example",
                            "//",        "/*",
                            "*/",        "\\",
                            ", ",        "shExpMatch",
                            "(host, ",   "))",
                            " return ",  "DIRECT",
                            ":",         "SOCKS5 ",
                            "'",         ".length",
                            "var x = [", "]",
                            "\xC3\xA9",  "e\xCC\x81",
                            "#",         "\xF0\x9F\x92\xA1",
                            "exception", "127.0.0.1:1080",
                            "\xC2\xA0",  "\xE4\xB8\x80"};

/// A few hosts, each rule on a port of its own.
std::vector<SSHHost> someHosts(Generated& generated, const Pieces& pieces) {
    std::vector<SSHHost> hosts;
    std::int64_t port = 1000;
    for (auto left = generated.below(4); left > 0; --left) {
        std::vector<ForwardingRule> rules;
        for (auto leftRules = generated.below(4); leftRules > 0; --leftRules) {
            std::string patterns;
            for (auto leftLines = generated.below(6); leftLines > 0; --leftLines) {
                patterns += generated.textOf(pieces, 5) + generated.oneOf(Pieces{"\n", "\r\n", "\n\n"});
            }
            rules.push_back(dynamicRule(++port, patterns));
        }
        hosts.push_back(hostWith(generated.textOf(pieces, 4), rules));
    }
    return hosts;
}

/// Different, trimmed, not empty.
std::vector<std::string> someExceptions(Generated& generated) {
    std::vector<std::string> exceptions;
    std::unordered_set<std::string> seen;
    for (auto left = generated.below(6); left > 0; --left) {
        auto exception = std::string(trimWhitespace(generated.textOf(harmlessPieces, 5)));
        if (!exception.empty() && seen.insert(exception).second) {
            exceptions.push_back(std::move(exception));
        }
    }
    return exceptions;
}

TEST(PacProperties, NormalizingTwiceGivesTheSameAsOnce) {
    // White space only around the entries: what stands before a path or after a user keeps it, and would then lose it.
    const Pieces pieces{"a",         "B",
                        "host",      ".",
                        "*",         "?",
                        "#",         "/",
                        "//",        "://",
                        ":",         ":80",
                        "@",         "1",
                        "9a",        "::1",
                        "[",         "\xC3\x9C",
                        "\xC4\xB0",  "\xCE\xA3",
                        "e\xCC\x81", "\xCC\x81",
                        "\xD9\xA3",  "\xC2\xBD",
                        "\xD8\x80",  "\xE2\x85\xA7",
                        "HTTP://"};
    const Pieces separators{"\n", "\r\n", " \n\t", "\r", "\xE2\x80\xA8", "\n\n", "\xC2\xA0\n"};
    Generated generated;
    for (int i = 0; i < 4 * cases; ++i) {
        std::string text;
        for (auto left = generated.below(6); left > 0; --left) {
            text += generated.textOf(pieces, 6) + generated.oneOf(separators);
        }
        const auto once = normalizeExceptions(text);
        ASSERT_EQ(normalizeExceptions(once), once) << "seed " << generated.seed() << ", text " << text;
    }
}

TEST(PacProperties, ExceptionsComeBackFromTheScript) {
    Generated generated;
    for (int i = 0; i < cases; ++i) {
        const auto exceptions = someExceptions(generated);
        const auto script = PacGenerator::generate(someHosts(generated, harmlessPieces), exceptions);
        ASSERT_EQ(directPatterns(script), exceptions) << "seed " << generated.seed() << ", script\n" << script;
    }
}

TEST(PacProperties, ExceptionsThatAreAddedComeBackToo) {
    Generated generated;
    for (int i = 0; i < cases; ++i) {
        const auto text = join(someExceptions(generated), "\n");
        const auto entry = generated.textOf(harmlessPieces, 4);
        const auto added = addProxyException(text, entry);
        auto expected = parseExceptions(text);
        if (added) {
            expected.push_back(normalizeExceptionPattern(entry));
            ASSERT_EQ(addProxyException(*added, entry).has_value(), expected.back() != trimWhitespace(expected.back()))
                << "seed " << generated.seed() << ", entry " << entry;
            expected.back() = trimWhitespace(expected.back());
        }
        std::erase(expected, "");
        ASSERT_EQ(parseExceptions(added.value_or(text)), expected)
            << "seed " << generated.seed() << ", entry " << entry;
    }
}

TEST(PacProperties, ImportingOurOwnScriptAddsNothing) {
    Generated generated;
    for (int i = 0; i < cases; ++i) {
        auto hosts = someHosts(generated, harmlessPieces);
        const auto before = hosts;
        const auto script = PacGenerator::generate(hosts, someExceptions(generated));
        ASSERT_EQ(PacImporter::addPatterns(PacImporter::parse(script), hosts), 0U)
            << "seed " << generated.seed() << ", script\n"
            << script;
        ASSERT_EQ(hosts, before);
    }
}

TEST(PacProperties, ImportingOurOwnScriptFindsEveryPattern) {
    Generated generated;
    for (int i = 0; i < cases; ++i) {
        const auto hosts = someHosts(generated, Pieces{"a", "b", ".", "*", "?", "\xC3\xA9"});
        auto emptied = hosts;
        std::size_t patterns = 0;
        for (auto& host : emptied) {
            for (auto& rule : host.forwardingRules) {
                const auto items = listItems(rule.pacPatterns);
                patterns += std::unordered_set<std::string_view>(items.begin(), items.end()).size();
                rule.pacPatterns.clear();
            }
        }
        const auto script = PacGenerator::generate(hosts, {});
        ASSERT_EQ(PacImporter::addPatterns(PacImporter::parse(script), emptied), patterns)
            << "seed " << generated.seed() << ", script\n"
            << script;
    }
}

struct Route {
    std::string pattern;
    std::size_t position;
};

TEST(PacProperties, TheSortIsStable) {
    const Pieces pieces{"a", "b", ".", "*", "?", "\xC3\xA9", "e\xCC\x81", ".\xCC\x81"};
    const auto key = [](const Route& route) {
        const auto all = characters(route.pattern);
        const auto stars = std::ranges::count(all, "*");
        return std::tuple(stars == 0 ? 0 : (all.front() == "*" ? 2 : 1), -std::ranges::count(all, "."),
                          stars - static_cast<std::ptrdiff_t>(all.size()));
    };
    Generated generated;
    for (int i = 0; i < cases; ++i) {
        // Each pattern on a port of its own, so that the script tells which of two equal ones it is.
        std::vector<Route> routes;
        std::vector<SSHHost> hosts;
        for (std::size_t position = 1; position <= 12; ++position) {
            const auto pattern = generated.oneOf(pieces) + generated.textOf(pieces, 3);
            routes.push_back({pattern, position});
            hosts.push_back(hostWith("h", {dynamicRule(static_cast<std::int64_t>(position), pattern)}));
        }
        std::ranges::stable_sort(routes, {}, key);
        std::string expected = "function FindProxyForURL(url, host) {\n";
        for (const auto& route : routes) {
            expected += "    if (shExpMatch(host, \"" + route.pattern +
                        "\")) return \"SOCKS5 127.0.0.1:" + std::to_string(route.position) + "\"; // h\n";
        }
        ASSERT_EQ(PacGenerator::generate(hosts, {}), expected + "    return \"DIRECT\";\n}")
            << "seed " << generated.seed();
    }
}

}  // namespace
}  // namespace velmora
