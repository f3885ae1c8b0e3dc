#include "base/Text.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <cstring>

namespace velmora {

namespace {

bool isWhitespace(UChar32 c) {
    if (c < 0x80) {
        return c == ' ' || c == '\t';
    }
    return u_charType(c) == U_SPACE_SEPARATOR;
}

bool isNewline(UChar32 c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

bool isWhitespaceOrNewline(UChar32 c) {
    return isWhitespace(c) || isNewline(c);
}

/// Where the last character before `end` begins. (ICU walks backwards in 32-bit offsets only.)
std::size_t lastCharacter(const std::uint8_t* bytes, std::size_t begin, std::size_t end) {
    std::size_t position = end - 1;
    while (position > begin && end - position < U8_MAX_LENGTH && U8_IS_TRAIL(bytes[position])) {
        --position;
    }
    return position;
}

template <typename Predicate>
std::string_view trim(std::string_view text, Predicate drops) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end) {
        std::size_t next = begin;
        UChar32 c = 0;
        U8_NEXT(bytes, next, end, c);
        if (c < 0 || !drops(c)) {
            break;
        }
        begin = next;
    }
    while (end > begin) {
        const std::size_t last = lastCharacter(bytes, begin, end);
        std::size_t next = last;
        UChar32 c = 0;
        U8_NEXT(bytes, next, end, c);
        if (c < 0 || next != end || !drops(c)) {
            break;
        }
        end = last;
    }
    return text.substr(begin, end - begin);
}

/// The length of the part at the start of the text that is plain ASCII, found eight bytes at a time.
std::size_t asciiPrefix(std::string_view text) {
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::size_t i = 0;
    while (i + sizeof(std::uint64_t) <= text.size()) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + i, sizeof word);
        if ((word & highBits) != 0) {
            break;
        }
        i += sizeof word;
    }
    return i;
}

}  // namespace

bool isValidUtf8(std::string_view text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    std::size_t i = asciiPrefix(text);
    while (i < text.size()) {
        if (bytes[i] < 0x80) {
            ++i;
            continue;
        }
        UChar32 c = 0;
        U8_NEXT(bytes, i, text.size(), c);
        if (c < 0) {
            return false;
        }
        i += asciiPrefix(text.substr(i));
    }
    return true;
}

bool startsWithNumber(std::string_view text) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    std::size_t next = 0;
    UChar32 c = U_SENTINEL;
    if (!text.empty()) {
        U8_NEXT(bytes, next, text.size(), c);
    }
    return c >= 0 && u_getIntPropertyValue(c, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

std::string_view trimWhitespace(std::string_view text) {
    return trim(text, isWhitespace);
}

std::string_view trimWhitespaceAndNewlines(std::string_view text) {
    return trim(text, isWhitespaceOrNewline);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    for (;;) {
        const auto end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return pieces;
        }
        text.remove_prefix(end + 1);
    }
}

std::string join(const std::vector<std::string>& pieces, std::string_view separator) {
    std::string joined;
    for (const auto& piece : pieces) {
        if (&piece != &pieces.front()) {
            joined += separator;
        }
        joined += piece;
    }
    return joined;
}

}  // namespace velmora
