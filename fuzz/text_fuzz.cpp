#include "Fuzz.h"
#include "base/Text.h"

#include <unicode/utf8.h>

#include <string>

// The rules about texts that all readers share, compared with the plain way to write them.

namespace {

using namespace velmora;

bool isPlainlyUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        UChar32 c = 0;
        U8_NEXT(reinterpret_cast<const std::uint8_t*>(text.data()), i, text.size(), c);
        if (c < 0) {
            return false;
        }
    }
    return true;
}

std::vector<std::string_view> plainLines(std::string_view text) {
    std::vector<std::string_view> all;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < text.size();) {
        std::size_t length = 0;
        for (const std::string_view newline :
             {"\r\n", "\r", "\n", "\v", "\f", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
            if (length == 0 && text.substr(i).starts_with(newline)) {
                length = newline.size();
            }
        }
        if (length > 0) {
            all.push_back(text.substr(begin, i - begin));
            begin = i + length;
        }
        i += length > 0 ? length : 1;
    }
    all.push_back(text.substr(begin));
    return all;
}

void checkCharacters(std::string_view text) {
    std::string joined;
    const auto all = characters(text);
    for (const auto character : all) {
        require(!character.empty(), "a character is not empty");
        joined += character;
    }
    require(joined == text, "the characters are the text");
    require(characterCount(text) == all.size(), "characters are counted as they are");
}

void checkTrimming(std::string_view text) {
    const auto trimmed = trimWhitespace(text);
    const auto bare = trimWhitespaceAndNewlines(text);
    require(trimmed.empty() || text.find(trimmed) != std::string_view::npos, "trimming takes away");
    require(trimWhitespace(trimmed) == trimmed, "trimming again changes nothing");
    require(trimWhitespaceAndNewlines(bare) == bare, "trimming again changes nothing");
    require(bare.size() <= trimmed.size(), "more is trimmed where newlines count");
    require(trimWhitespaceAndNewlines(trimmed) == bare, "white space is trimmed with newlines as well");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = textOf(data, size);
    require(isValidUtf8(text) == isPlainlyUtf8(text), "UTF-8 is told from other bytes");
    require(lines(text) == plainLines(text), "lines end where they end");
    checkTrimming(text);
    checkCharacters(text);
    for (const auto item : listItems(text)) {
        require(!item.empty() && lines(item).size() == 1 && trimWhitespace(item) == item, "an item is a trimmed line");
    }
    const auto lower = lowercased(text);
    require(isValidUtf8(lower) || !isValidUtf8(text), "text in lower case is text");
    require(!isValidUtf8(text) || lowercased(lower) == lower, "lower case stays");
    return 0;
}
