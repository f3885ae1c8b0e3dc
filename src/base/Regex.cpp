#include "base/Regex.h"

#include <unicode/uregex.h>
#include <unicode/ustring.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

namespace velmora {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int32_t stackLimit = 8'000'000;  // bytes
constexpr UChar32 replacement = 0xFFFD;
constexpr std::size_t longestText = std::numeric_limits<std::int32_t>::max() / 3;

/// Nothing for a text that is longer than ICU can count.
std::optional<std::u16string> toUtf16(std::string_view text) {
    if (text.size() > longestText) {
        return std::nullopt;
    }
    // No text has more UTF-16 units than UTF-8 bytes.
    std::u16string result(text.size(), u'\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(result.data(), static_cast<std::int32_t>(result.size()), &length, text.data(),
                         static_cast<std::int32_t>(text.size()), replacement, nullptr, &status);
    result.resize(static_cast<std::size_t>(length));
    return result;
}

std::string toUtf8(std::u16string_view text) {
    constexpr std::size_t mostBytesPerUnit = 3;
    std::string result(text.size() * mostBytesPerUnit, '\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(result.data(), static_cast<std::int32_t>(result.size()), &length, text.data(),
                       static_cast<std::int32_t>(text.size()), replacement, nullptr, &status);
    result.resize(static_cast<std::size_t>(length));
    return result;
}

/// ICU asks this every few thousand steps of a match.
UBool hasTimeLeft(const void* deadline, std::int32_t /*steps*/) {
    return Clock::now() < *static_cast<const Clock::time_point*>(deadline) ? 1 : 0;
}

}  // namespace

void Regex::Closer::operator()(URegularExpression* expression) const {
    uregex_close(expression);
}

Result<Regex> Regex::compile(std::string_view pattern, std::chrono::milliseconds timeLimit) {
    const auto text = toUtf16(pattern);
    if (!text) {
        return Error{"regular expression too long"};
    }
    UErrorCode status = U_ZERO_ERROR;
    UParseError where{};
    Expression expression(uregex_open(text->data(), static_cast<std::int32_t>(text->size()), 0, &where, &status));
    uregex_setStackLimit(expression.get(), stackLimit, &status);
    if (U_FAILURE(status)) {
        return Error{"regular expression " + std::string(pattern) + ": " + u_errorName(status)};
    }
    return Regex(std::move(expression), timeLimit);
}

std::vector<Regex::Match> Regex::findAll(std::string_view utf8) {
    std::vector<Match> matches;
    const auto text = toUtf16(utf8);
    if (!text) {
        return matches;
    }
    // ICU's own time limit starts anew with each match; a text of many slow matches would still take for ever.
    const auto deadline = Clock::now() + timeLimit_;
    UErrorCode status = U_ZERO_ERROR;
    uregex_setMatchCallback(expression_.get(), hasTimeLeft, &deadline, &status);
    uregex_setText(expression_.get(), text->data(), static_cast<std::int32_t>(text->size()), &status);
    while (uregex_findNext(expression_.get(), &status) != 0 && U_SUCCESS(status)) {
        matches.push_back(currentMatch(*text));
        if (Clock::now() >= deadline) {
            break;
        }
    }
    return matches;
}

Regex::Match Regex::currentMatch(std::u16string_view text) const {
    UErrorCode status = U_ZERO_ERROR;
    const auto groups = uregex_groupCount(expression_.get(), &status);
    Match match;
    for (std::int32_t group = 0; group <= groups; ++group) {
        const auto start = uregex_start(expression_.get(), group, &status);
        const auto end = uregex_end(expression_.get(), group, &status);
        match.push_back(
            start < 0 ? std::string()
                      : toUtf8(text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start))));
    }
    return match;
}

}  // namespace velmora
