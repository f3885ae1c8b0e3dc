#include "pac/PacGenerator.h"

#include "base/Text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace velmora::PacGenerator {

namespace {

constexpr std::string_view head = "function FindProxyForURL(url, host) {\n";
constexpr std::string_view beforePattern = "    if (shExpMatch(host, \"";
constexpr std::string_view afterPattern = "\")) return \"";
constexpr std::string_view proxy = "SOCKS5 127.0.0.1:";
constexpr std::string_view afterProxy = "\"; // ";
constexpr std::string_view exceptionTail = "\")) return \"DIRECT\"; // exception\n";
constexpr std::string_view tail = "    return \"DIRECT\";\n}";

/// What stands after the pattern on each line of one rule. The proxy is always this machine, whatever address the
/// rule binds to.
std::string lineEnd(const SSHHost& host, const ForwardingRule& rule) {
    const auto port = std::to_string(rule.bindPort);
    std::string end;
    end.reserve(afterPattern.size() + proxy.size() + port.size() + afterProxy.size() + host.name.size() + 1);
    end.append(afterPattern).append(proxy).append(port).append(afterProxy).append(host.name).append(1, '\n');
    return end;
}

/// Where a pattern stands among the others, least first, in one number: two bits for the class of its wildcard, 31 for
/// the dots and 31 for the characters that are no wildcard, more of either ranking lower.
using Rank = std::uint64_t;

Rank pack(Rank wildcardClass, Rank dots, Rank literals) {
    constexpr int width = 31;
    constexpr Rank most = (Rank{1} << width) - 1;
    return wildcardClass << (2 * width) | (most - dots) << width | (most - literals);
}

template <typename Characters, typename Character>
Rank specificity(const Characters& pattern, Character wildcard, Character dot) {
    Rank wildcards = 0;
    Rank dots = 0;
    for (const auto& character : pattern) {
        wildcards += character == wildcard ? 1 : 0;
        dots += character == dot ? 1 : 0;
    }
    const Rank wildcardClass = wildcards == 0 ? 0 : pattern.front() == wildcard ? 2 : 1;
    return pack(wildcardClass, dots, pattern.size() - wildcards);
}

/// Of a pattern that is not empty.
Rank specificity(std::string_view pattern) {
    if (isAscii(pattern)) {
        return specificity(pattern, '*', '.');
    }
    // A dot under an accent is no dot.
    return specificity(characters(pattern), std::string_view("*"), std::string_view("."));
}

struct Line {
    std::string_view pattern;
    std::size_t rule = 0;             ///< index of what stands after the pattern
    std::size_t* position = nullptr;  ///< of the lines of its rank
};

/// All lines in the order of the hosts, and where each rank's lines begin once all that come before them are counted.
/// There are far fewer ranks than lines, for there are only so many lengths; so each line can be written straight to
/// its place, and nothing needs to be moved to be sorted.
struct Lines {
    std::deque<Line> all;
    std::vector<std::string> lineEnds;
    std::unordered_map<Rank, std::size_t> positions;
};

/// The positions still hold the length of each rank's lines.
Lines collect(const std::vector<SSHHost>& hosts) {
    Lines collected;
    for (const auto& host : hosts) {
        for (const auto& rule : host.forwardingRules) {
            if (rule.type != ForwardingType::dynamic || !rule.enabled || rule.bindPort <= 0) {
                continue;
            }
            const auto& end = collected.lineEnds.emplace_back(lineEnd(host, rule));
            for (const auto pattern : listItems(rule.pacPatterns)) {
                auto& length = collected.positions[specificity(pattern)];
                length += beforePattern.size() + pattern.size() + end.size();
                collected.all.push_back({pattern, collected.lineEnds.size() - 1, &length});
            }
        }
    }
    return collected;
}

/// A text of known length, written at any place.
void put(std::string& script, std::size_t& position, std::string_view piece) {
    piece.copy(script.data() + position, piece.size());
    position += piece.size();
}

}  // namespace

std::string generate(const std::vector<SSHHost>& hosts, const std::vector<std::string>& exceptions) {
    auto collected = collect(hosts);
    auto end = head.size();
    for (const auto& exception : exceptions) {
        end += beforePattern.size() + exception.size() + exceptionTail.size();
    }
    for (auto& [rank, position] : std::map(collected.positions.begin(), collected.positions.end())) {
        end += std::exchange(collected.positions[rank], end);
    }

    std::string script(end + tail.size(), '\0');
    std::size_t begin = 0;
    put(script, begin, head);
    for (const auto& exception : exceptions) {
        put(script, begin, beforePattern);
        put(script, begin, exception);
        put(script, begin, exceptionTail);
    }
    for (const auto& line : collected.all) {
        put(script, *line.position, beforePattern);
        put(script, *line.position, line.pattern);
        put(script, *line.position, collected.lineEnds[line.rule]);
    }
    put(script, end, tail);
    return script;
}

}  // namespace velmora::PacGenerator
