#include "Fuzz.h"
#include "base/Text.h"
#include "pac/PacGenerator.h"
#include "pac/ProxyExceptions.h"

#include <algorithm>
#include <string>
#include <unordered_set>

// What a user types or pastes as exceptions, and the exceptions in a script that was edited by hand. The first line is
// one entry.

namespace {

using namespace velmora;

void checkEntry(std::string_view entry) {
    const auto pattern = normalizeExceptionPattern(entry);
    require(pattern.size() <= 3 * entry.size(), "a pattern is part of what was typed");
    require(lowercased(pattern) == pattern, "a pattern is in lower case");
    require(normalizeExceptionPattern("http://user@" + pattern + "/path") == pattern ||
                pattern.find_first_of("/?#@:") != std::string::npos ||
                characterCount("@" + pattern + "/") != characterCount(pattern) + 2,
            "a host in an address is the host");
}

void checkList(std::string_view text) {
    const auto stored = normalizeExceptions(text);
    const auto patterns = split(stored, '\n');
    std::unordered_set<std::string_view> seen;
    for (const auto pattern : patterns) {
        require(stored.empty() || !pattern.empty(), "no line is empty");
        require(seen.insert(pattern).second, "no line comes twice");
    }
    require(patterns.size() <= std::max<std::size_t>(1, parseExceptions(text).size()), "a line gives one at most");
}

void checkAddition(std::string_view text, std::string_view entry) {
    const auto before = parseExceptions(text);
    const auto pattern = normalizeExceptionPattern(entry);
    const auto added = addProxyException(text, entry);
    if (!added) {
        require(pattern.empty() || std::ranges::find(before, pattern) != before.end(), "only what is new is added");
        return;
    }
    auto after = before;
    after.push_back(pattern);
    if (listItems(pattern) == std::vector<std::string_view>{pattern}) {
        require(parseExceptions(*added) == after, "what is added stands at the end");
        require(!addProxyException(*added, entry), "nothing is added twice");
    }
}

void checkScript(std::string_view text) {
    const auto found = directPatterns(text);
    std::unordered_set<std::string_view> seen;
    for (const auto& pattern : found) {
        require(!pattern.empty() && pattern.find('"') == std::string::npos, "a pattern stood in quotes");
        require(seen.insert(pattern).second, "each pattern comes once");
    }
    const bool quotable = isValidUtf8(text) && text.find('"') == std::string_view::npos;
    if (!quotable) {
        return;
    }
    std::vector<std::string> once;
    for (auto& pattern : parseExceptions(text)) {
        if (std::ranges::find(once, pattern) == once.end()) {
            once.push_back(std::move(pattern));
        }
    }
    require(directPatterns(PacGenerator::generate({}, parseExceptions(text))) == once,
            "the exceptions of our own script are read back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = textOf(data, size);
    const auto entry = text.substr(0, text.find('\n'));
    checkEntry(entry);
    checkList(text);
    checkAddition(text.substr(entry.size()), entry);
    checkScript(text);
    return 0;
}
