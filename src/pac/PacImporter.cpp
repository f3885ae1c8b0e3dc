#include "pac/PacImporter.h"

#include "base/AtomicFile.h"
#include "base/Localized.h"
#include "base/Regex.h"
#include "base/Text.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <set>
#include <unordered_set>
#include <utility>

namespace velmora::PacImporter {

namespace {

constexpr std::string_view inlineRule =
    R"re(shExpMatch\s*\(\s*host\s*,\s*"([^"]+)"\)[^"]*"SOCKS5\s+(?:localhost|127\.0\.0\.1):(\d+)")re";
constexpr std::string_view arrayRule = R"re((\w+)\.length[^"]*"SOCKS5\s+(?:localhost|127\.0\.0\.1):(\d+)")re";
constexpr std::string_view arrayDeclaration = R"re(var\s+(\w+)\s*=\s*\[([^\]]*)\])re";
constexpr std::string_view arrayItem = R"re("([^"]+)")re";

/// The expressions of this file are fixed; one that does not compile is a mistake of ours.
Regex fixedExpression(std::string_view pattern) {
    auto expression = Regex::compile(pattern);
    if (!expression) {
        std::fprintf(stderr, "PacImporter: %s\n", expression.error().message.c_str());
        std::abort();
    }
    return std::move(*expression);
}

/// Digits of other scripts and numbers beyond 64 bits are no port.
std::optional<std::int64_t> parsePort(const std::string& digits) {
    std::int64_t port = 0;
    const auto* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, port);
    if (error != std::errc{} || stop != end) {
        return std::nullopt;
    }
    return port;
}

std::string withoutCommentLines(std::string_view content) {
    std::string kept;
    kept.reserve(content.size());
    for (const auto line : split(content, '\n')) {
        if (!trimWhitespace(line).starts_with("//")) {
            kept.append(line).append(1, '\n');
        }
    }
    if (!kept.empty()) {
        kept.pop_back();
    }
    return kept;
}

std::string onOneLine(std::string_view content) {
    std::string line;
    line.reserve(content.size());
    for (std::size_t i = 0; i < content.size(); ++i) {
        if (content.substr(i).starts_with("\r\n")) {
            ++i;
        }
        line += content[i] == '\n' ? ' ' : content[i];
    }
    return line;
}

/// Returns the number of additions to this one rule.
std::size_t addPatterns(const std::vector<Entry>& entries, ForwardingRule& rule) {
    auto items = listItems(rule.pacPatterns);
    std::unordered_set<std::string_view> known(items.begin(), items.end());
    std::size_t additions = 0;
    // A pattern is written as it was found, and read back as a list like any other as soon as the next one follows.
    std::string_view latest;
    for (const auto& entry : entries) {
        if (entry.port != rule.bindPort || known.contains(entry.pattern)) {
            continue;
        }
        const auto earlier = listItems(latest);
        items.insert(items.end(), earlier.begin(), earlier.end());
        latest = entry.pattern;
        const auto added = listItems(latest);
        known.insert(added.begin(), added.end());
        ++additions;
    }
    if (additions > 0) {
        std::vector<std::string> patterns(items.begin(), items.end());
        patterns.emplace_back(latest);
        rule.pacPatterns = join(patterns, "\n");
    }
    return additions;
}

std::string portList(const std::vector<Entry>& entries) {
    std::set<std::int64_t> ports;
    for (const auto& entry : entries) {
        ports.insert(entry.port);
    }
    std::vector<std::string> texts;
    texts.reserve(ports.size());
    for (const auto port : ports) {
        texts.push_back(std::to_string(port));
    }
    return join(texts, ", ");
}

}  // namespace

std::string readScript(const std::filesystem::path& path) {
    // A file that cannot be read holds nothing to import; that is all the user is told.
    auto content = readFile(path, maximumFileSize);
    return content && isValidUtf8(*content) ? std::move(*content) : std::string();
}

std::vector<Entry> parse(std::string_view content) {
    const auto script = withoutCommentLines(content);
    auto found = parseArrayStyle(script);
    for (auto& entry : parseInlineStyle(script)) {
        found.push_back(std::move(entry));
    }
    std::vector<Entry> entries;
    std::set<std::pair<std::int64_t, std::string>> seen;
    for (auto& entry : found) {
        if (seen.emplace(entry.port, entry.pattern).second) {
            entries.push_back(std::move(entry));
        }
    }
    return entries;
}

std::vector<Entry> parseArrayStyle(std::string_view content) {
    const auto arrays = extractArrays(content);
    auto rule = fixedExpression(arrayRule);
    std::vector<Entry> entries;
    std::size_t size = 0;
    for (const auto& match : rule.findAll(content)) {
        const auto port = parsePort(match[2]);
        const auto array = arrays.find(match[1]);
        if (!port || array == arrays.end()) {
            continue;
        }
        for (const auto& item : array->second) {
            size += sizeof(Entry) + item.size();
            if (size > maximumArraySize) {
                return entries;
            }
            entries.push_back({item, *port});
        }
    }
    return entries;
}

std::vector<Entry> parseInlineStyle(std::string_view content) {
    auto rule = fixedExpression(inlineRule);
    std::vector<Entry> entries;
    for (auto& match : rule.findAll(onOneLine(content))) {
        if (const auto port = parsePort(match[2])) {
            entries.push_back({std::move(match[1]), *port});
        }
    }
    return entries;
}

ArrayTable extractArrays(std::string_view content) {
    auto declaration = fixedExpression(arrayDeclaration);
    auto item = fixedExpression(arrayItem);
    ArrayTable arrays;
    for (const auto& match : declaration.findAll(content)) {
        auto& items = arrays[match[1]];
        items.clear();
        for (auto& found : item.findAll(match[2])) {
            items.push_back(std::move(found[1]));
        }
    }
    return arrays;
}

std::size_t addPatterns(const std::vector<Entry>& entries, std::vector<SSHHost>& hosts) {
    std::size_t additions = 0;
    for (auto& host : hosts) {
        for (auto& rule : host.forwardingRules) {
            if (rule.type == ForwardingType::dynamic) {
                additions += addPatterns(entries, rule);
            }
        }
    }
    return additions;
}

Outcome outcome(const std::vector<Entry>& entries, std::size_t additions) {
    if (entries.empty()) {
        return {localized("velmora::PacImporter", "Nothing found"),
                localized("velmora::PacImporter",
                          "No shExpMatch patterns with SOCKS5 proxies were found in the selected file.")};
    }
    if (additions == 0) {
        return {
            localized("velmora::PacImporter", "No matching tunnels"),
            filled(localized("velmora::PacImporter",
                             "Found %1 patterns for ports: %2\n\nNone matched a Dynamic forwarding rule in Velmora."),
                   {std::to_string(entries.size()), portList(entries)})};
    }
    const auto count = static_cast<int>(additions);
    return {localized("velmora::PacImporter", "Import complete"),
            additions == 1 ? localized("velmora::PacImporter", "Added 1 pattern to matching Dynamic forwarding rules.")
                           : localizedCount("velmora::PacImporter",
                                            "Added %n patterns to matching Dynamic forwarding rules.", nullptr, count)};
}

}  // namespace velmora::PacImporter
