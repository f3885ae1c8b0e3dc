#include "base/Text.h"

#include <unicode/ubrk.h>
#include <unicode/ucasemap.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

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

/// Whether the byte is an ASCII character that no trimming drops: what most texts begin and end with.
bool isPlain(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte > ' ' && byte < 0x80;
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
    if (!text.empty() && isPlain(text.front()) && isPlain(text.back())) {
        return text;
    }
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

/// How many bytes from `i` on hold no newline for sure: a multiple of eight, found eight at a time.
std::size_t newlineFreeBytes(std::string_view text, std::size_t i) {
    constexpr std::uint64_t ones = 0x0101010101010101U;
    constexpr std::uint64_t highBits = ones << 7U;
    constexpr std::uint64_t aboveNewlines = ones * ('\r' + 1);
    const std::size_t begin = i;
    for (std::uint64_t word = 0; i + sizeof word <= text.size(); i += sizeof word) {
        std::memcpy(&word, text.data() + i, sizeof word);
        // The high bit of a byte is set here when the byte is not ASCII, or when it is as low as the newlines.
        if ((((word - aboveNewlines) | word) & highBits) != 0) {
            break;
        }
    }
    return i - begin;
}

/// How many bytes the newline takes that stands at `i`; 0 where none does.
std::size_t newlineLength(std::string_view text, std::size_t i) {
    switch (text[i]) {
        case '\r':
            return i + 1 < text.size() && text[i + 1] == '\n' ? 2 : 1;
        case '\n':
        case '\v':
        case '\f':
            return 1;
        case '\xC2':
            return text.substr(i).starts_with("\xC2\x85") ? 2 : 0;
        case '\xE2': {
            const auto rest = text.substr(i);
            return rest.starts_with("\xE2\x80\xA8") || rest.starts_with("\xE2\x80\xA9") ? 3 : 0;
        }
        default:
            return 0;
    }
}

template <typename Take>
void forEachLine(std::string_view text, Take take) {
    std::size_t begin = 0;
    for (std::size_t i = newlineFreeBytes(text, 0); i < text.size();) {
        const auto length = newlineLength(text, i);
        if (length == 0) {
            ++i;
            continue;
        }
        take(text.substr(begin, i - begin));
        begin = i + length;
        i = begin + newlineFreeBytes(text, begin);
    }
    take(text.substr(begin));
}

struct Closer {
    void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
    void operator()(UCaseMap* map) const { ucasemap_close(map); }
    void operator()(UText* text) const { utext_close(text); }
};

/// Opening one costs more than counting a text with it, so each thread keeps its own.
UBreakIterator* characterIterator() {
    thread_local const std::unique_ptr<UBreakIterator, Closer> iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        return std::unique_ptr<UBreakIterator, Closer>(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
    }();
    return iterator.get();
}

template <typename Take>
void forEachAsciiCharacter(std::string_view text, Take take) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = text.substr(i).starts_with("\r\n") ? 2 : 1;
        take(text.substr(i, length));
        i += length;
    }
}

template <typename Take>
void forEachCharacter(std::string_view text, Take take) {
    auto* iterator = isAscii(text) ? nullptr : characterIterator();
    if (iterator == nullptr) {
        forEachAsciiCharacter(text, take);
        return;
    }
    UErrorCode status = U_ZERO_ERROR;
    UText storage = UTEXT_INITIALIZER;
    const std::unique_ptr<UText, Closer> utext(
        utext_openUTF8(&storage, text.data(), static_cast<std::int64_t>(text.size()), &status));
    ubrk_setUText(iterator, utext.get(), &status);
    std::size_t begin = 0;
    for (auto end = ubrk_next(iterator); end != UBRK_DONE; end = ubrk_next(iterator)) {
        const auto next = static_cast<std::size_t>(end);
        take(text.substr(begin, next - begin));
        begin = next;
    }
}

}  // namespace

bool isAscii(std::string_view text) {
    unsigned char seen = 0;
    for (const char c : text.substr(asciiPrefix(text))) {
        seen |= static_cast<unsigned char>(c);
    }
    return seen < 0x80;
}

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

std::string_view trimWhitespace(std::string_view text) {
    return trim(text, [](UChar32 c) { return isWhitespace(c); });
}

std::string_view trimWhitespaceAndNewlines(std::string_view text) {
    return trim(text, [](UChar32 c) { return isWhitespaceOrNewline(c); });
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

std::vector<std::string_view> lines(std::string_view text) {
    std::vector<std::string_view> pieces;
    forEachLine(text, [&](std::string_view line) { pieces.push_back(line); });
    return pieces;
}

std::vector<std::string_view> listItems(std::string_view text) {
    std::vector<std::string_view> items;
    constexpr std::size_t usualLength = 16;
    items.reserve(text.size() / usualLength + 1);
    forEachLine(text, [&](std::string_view line) {
        if (const auto item = trimWhitespace(line); !item.empty()) {
            items.push_back(item);
        }
    });
    return items;
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

std::vector<std::string_view> characters(std::string_view text) {
    std::vector<std::string_view> all;
    forEachCharacter(text, [&](std::string_view character) { all.push_back(character); });
    return all;
}

std::size_t characterCount(std::string_view text) {
    std::size_t count = 0;
    forEachCharacter(text, [&](std::string_view) { ++count; });
    return count;
}

bool isNumeric(std::string_view character) {
    if (character.empty()) {
        return false;
    }
    std::size_t next = 0;
    UChar32 c = 0;
    U8_NEXT(reinterpret_cast<const std::uint8_t*>(character.data()), next, character.size(), c);
    return c >= 0 && u_getIntPropertyValue(c, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

std::string lowercased(std::string_view text) {
    std::string result(text);
    if (isAscii(text)) {
        std::transform(result.begin(), result.end(), result.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
        return result;
    }
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UCaseMap, Closer> map(ucasemap_open("", 0, &status));
    const auto write = [&] {
        status = U_ZERO_ERROR;
        return static_cast<std::size_t>(ucasemap_utf8ToLower(map.get(), result.data(),
                                                             static_cast<std::int32_t>(result.size()), text.data(),
                                                             static_cast<std::int32_t>(text.size()), &status));
    };
    auto size = write();
    if (status == U_BUFFER_OVERFLOW_ERROR) {
        result.resize(size);
        size = write();
    }
    result.resize(size);
    return result;
}

}  // namespace velmora
