#include "pac/ProxyExceptions.h"

#include "base/Regex.h"
#include "base/Text.h"

#include <algorithm>
#include <cstddef>
#include <unordered_set>

namespace velmora {

namespace {

/// Everything before the first character that is one of these; the whole text without one.
std::string_view before(std::string_view text, std::string_view delimiters) {
    for (const auto character : characters(text)) {
        if (character.size() == 1 && delimiters.find(character) != std::string_view::npos) {
            return text.substr(0, static_cast<std::size_t>(character.data() - text.data()));
        }
    }
    return text;
}

std::string_view withoutScheme(std::string_view text) {
    constexpr std::string_view separator = "://";
    if (const auto scheme = text.find(separator); scheme != std::string_view::npos) {
        return text.substr(scheme + separator.size());
    }
    return text.starts_with("//") ? text.substr(2) : text;
}

std::string_view withoutUser(std::string_view text) {
    auto rest = text;
    for (const auto character : characters(text)) {
        if (character == "@") {
            rest = text.substr(static_cast<std::size_t>(character.data() - text.data()) + 1);
        }
    }
    return rest;
}

/// A colon is a port's only when nothing but numbers follows the first one, so that an IPv6 address stays whole.
std::string_view withoutPort(std::string_view text) {
    const auto host = before(text, ":");
    if (host.size() == text.size()) {
        return text;
    }
    const auto port = characters(text.substr(host.size() + 1));
    return !port.empty() && std::all_of(port.begin(), port.end(), isNumeric) ? host : text;
}

}  // namespace

std::vector<std::string> parseExceptions(std::string_view text) {
    const auto items = listItems(text);
    return {items.begin(), items.end()};
}

std::string normalizeExceptionPattern(std::string_view entry) {
    const auto address = withoutScheme(trimWhitespaceAndNewlines(entry));
    return lowercased(withoutPort(withoutUser(before(address, "/?#"))));
}

std::string normalizeExceptions(std::string_view text) {
    std::vector<std::string> kept;
    std::unordered_set<std::string> seen;
    for (const auto item : listItems(text)) {
        auto pattern = normalizeExceptionPattern(item);
        if (!pattern.empty() && seen.insert(pattern).second) {
            kept.push_back(std::move(pattern));
        }
    }
    return join(kept, "\n");
}

std::optional<std::string> addProxyException(std::string_view text, std::string_view entry) {
    auto pattern = normalizeExceptionPattern(entry);
    auto patterns = parseExceptions(text);
    if (pattern.empty() || std::find(patterns.begin(), patterns.end(), pattern) != patterns.end()) {
        return std::nullopt;
    }
    patterns.push_back(std::move(pattern));
    return join(patterns, "\n");
}

std::vector<std::string> directPatterns(std::string_view pac) {
    std::vector<std::string> patterns;
    auto rule = Regex::compile(R"re(shExpMatch\(\s*host\s*,\s*"([^"]+)"\s*\)\s*\)\s*return\s*"DIRECT")re");
    if (!rule) {
        return patterns;
    }
    std::unordered_set<std::string> seen;
    for (const auto line : lines(pac)) {
        const auto trimmed = trimWhitespace(line);
        if (trimmed.starts_with("//")) {
            continue;
        }
        for (auto& match : rule->findAll(trimmed)) {
            if (seen.insert(match[1]).second) {
                patterns.push_back(std::move(match[1]));
            }
        }
    }
    return patterns;
}

}  // namespace velmora
