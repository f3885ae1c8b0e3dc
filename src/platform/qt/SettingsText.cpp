#include "platform/qt/SettingsText.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <system_error>

namespace velmora {

namespace {

bool endsLine(char character) {
    return character == '\n' || character == '\r';
}

/// The end of a line with what continues it: a backslash before the end of a line joins the next one.
std::size_t endOfEntry(std::string_view text, std::size_t at) {
    while (at < text.size()) {
        const char character = text[at++];
        if (endsLine(character)) {
            return at;
        }
        if (character == '\\' && at < text.size()) {
            const char escaped = text[at++];
            if (endsLine(escaped) && at < text.size() && endsLine(text[at]) && text[at] != escaped) {
                ++at;
            }
        }
    }
    return at;
}

int digit(char character, int base) {
    int value = 0;
    const auto result = std::from_chars(&character, &character + 1, value, base);
    return result.ec == std::errc() ? value : -1;
}

/// Takes the digits of a character's number, of which the toolkit keeps the last 16 bits. Without digits there is no
/// character.
std::string numbered(std::string_view text, std::size_t& at, int base) {
    const auto first = at;
    unsigned number = 0;
    for (; at < text.size() && digit(text[at], base) >= 0; ++at) {
        number = (number * static_cast<unsigned>(base) + static_cast<unsigned>(digit(text[at], base))) & 0xffffU;
    }
    return at == first ? std::string() : std::string(1, number < 0x80 ? static_cast<char>(number) : '?');
}

/// What the entry says, roughly: characters by number stand as they are, other escapes as "?" or, unknown ones, not at
/// all, and quotation marks and ends of lines are left out.
std::string plain(std::string_view entry) {
    std::string result;
    for (std::size_t at = 0; at < entry.size();) {
        const char character = entry[at++];
        if (character == '\\' && at < entry.size()) {
            if (entry[at] == 'x') {
                result += numbered(entry, ++at, 16);
            } else if (digit(entry[at], 8) >= 0) {
                result += numbered(entry, at, 8);
            } else {
                result += std::string_view("abfnrtv\"?'\\").find(entry[at]) != std::string_view::npos ? "?" : "";
                ++at;
            }
        } else if (character != '"' && !endsLine(character)) {
            result += character;
        }
    }
    return result;
}

/// The toolkit takes the first one of a value for no character.
std::string withoutByteOrderMarks(std::string text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at)) {
        text.erase(at, mark.size());
    }
    return text;
}

/// A value, or an item of a list, begins with the mark of an object. A text that begins with "@" is written with two. A
/// comma in a text is taken for the end of an item: where quotation marks begin and end, only the toolkit knows.
bool holdsObject(std::string_view entry) {
    constexpr std::array<std::string_view, 2> marks{"@Variant(", "@DateTime("};
    if (entry.find('@') == std::string_view::npos && entry.find('\\') == std::string_view::npos) {
        return false;
    }
    const std::string text = withoutByteOrderMarks(plain(entry));
    for (const auto mark : marks) {
        for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + 1)) {
            const auto before = std::string_view(text).substr(0, at).find_last_not_of(" \t");
            if (before == std::string_view::npos || text[before] == '=' || text[before] == ',') {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

std::string withoutObjects(std::string_view settings) {
    std::string kept;
    for (std::size_t at = 0; at < settings.size();) {
        const auto end = endOfEntry(settings, at);
        const auto entry = settings.substr(at, end - at);
        if (!holdsObject(entry)) {
            kept += entry;
        }
        at = end;
    }
    return kept;
}

}  // namespace velmora
