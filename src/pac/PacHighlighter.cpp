#include "pac/PacHighlighter.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <optional>

namespace velmora::PacHighlighter {

namespace {

using Text = std::u16string_view;

constexpr std::array<Text, 15> keywords{u"function", u"return", u"if", u"else", u"for",   u"while", u"var",      u"let",
                                        u"const",    u"in",     u"of", u"true", u"false", u"null",  u"undefined"};
constexpr std::array<Text, 10> builtIns{
    u"FindProxyForURL", u"shExpMatch",          u"isInNet",    u"dnsDomainIs", u"isResolvable",
    u"isPlainHostName", u"localHostOrDomainIs", u"dnsResolve", u"myIpAddress", u"alert"};

std::optional<Kind> kindOf(Text word) {
    if (std::find(keywords.begin(), keywords.end(), word) != keywords.end()) {
        return Kind::keyword;
    }
    if (std::find(builtIns.begin(), builtIns.end(), word) != builtIns.end()) {
        return Kind::builtIn;
    }
    return std::nullopt;
}

bool isAsciiLetter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool isWordCharacter(UChar32 c) {
    if (u_hasBinaryProperty(c, UCHAR_ALPHABETIC) != 0) {
        return true;
    }
    switch (u_charType(c)) {
        case U_NON_SPACING_MARK:
        case U_ENCLOSING_MARK:
        case U_COMBINING_SPACING_MARK:
        case U_DECIMAL_DIGIT_NUMBER:
        case U_CONNECTOR_PUNCTUATION:
            return true;
        default:
            return c == 0x200C || c == 0x200D;
    }
}

/// Accents and invisible characters belong to the character before them.
bool isAttached(UChar32 c) {
    return u_hasBinaryProperty(c, UCHAR_GRAPHEME_EXTEND) != 0 || u_charType(c) == U_FORMAT_CHAR;
}

/// Whether a word that begins with a letter may begin at `position`.
bool wordMayBegin(Text text, std::size_t position) {
    const char16_t* units = text.data();
    while (position > 0) {
        UChar32 c = 0;
        U16_PREV(units, std::size_t{0}, position, c);
        if (!isAttached(c)) {
            return !isWordCharacter(c);
        }
    }
    return true;
}

/// Whether a word that ends with a letter may end at `position`.
bool wordMayEnd(Text text, std::size_t position) {
    if (position == text.size()) {
        return true;
    }
    const char16_t* units = text.data();
    UChar32 c = 0;
    U16_GET(units, std::size_t{0}, position, text.size(), c);
    return !isAttached(c) && !isWordCharacter(c);
}

/// The kind of each unit of the script, painted layer over layer: what is painted later hides what is below.
class Canvas final {
public:
    explicit Canvas(Text script) : script_(script), kinds_(script.size(), none) {}

    void paintWords();
    void paintStrings();
    void paintComments();
    [[nodiscard]] std::vector<Range> ranges() const;

private:
    static constexpr std::uint8_t none = 0xFF;

    void paint(std::size_t begin, std::size_t end, Kind kind) {
        std::fill(kinds_.begin() + static_cast<std::ptrdiff_t>(begin),
                  kinds_.begin() + static_cast<std::ptrdiff_t>(end), static_cast<std::uint8_t>(kind));
    }
    [[nodiscard]] std::size_t stringEnd(std::size_t begin) const;

    Text script_;
    std::vector<std::uint8_t> kinds_;
};

void Canvas::paintWords() {
    for (std::size_t begin = 0; begin < script_.size();) {
        std::size_t end = begin;
        while (end < script_.size() && isAsciiLetter(script_[end])) {
            ++end;
        }
        if (const auto kind = kindOf(script_.substr(begin, end - begin));
            kind && wordMayBegin(script_, begin) && wordMayEnd(script_, end)) {
            paint(begin, end, *kind);
        }
        begin = std::max(end, begin + 1);
    }
}

/// The end of the string whose quote stands at `begin`; npos for one that is not closed.
std::size_t Canvas::stringEnd(std::size_t begin) const {
    for (std::size_t i = begin + 1; i < script_.size(); ++i) {
        if (script_[i] == script_[begin]) {
            return i + 1;
        }
        if (script_[i] == u'\\') {
            ++i;
        }
    }
    return Text::npos;
}

void Canvas::paintStrings() {
    // Where one quote finds no end, no later one of its kind does: it would go on just like the first.
    bool doubleQuotesEnd = true;
    bool singleQuotesEnd = true;
    for (std::size_t i = 0; i < script_.size();) {
        const bool isDouble = script_[i] == u'"';
        auto& quotesEnd = isDouble ? doubleQuotesEnd : singleQuotesEnd;
        if (!quotesEnd || (!isDouble && script_[i] != u'\'')) {
            ++i;
            continue;
        }
        const auto end = stringEnd(i);
        if (end == Text::npos) {
            quotesEnd = false;
            ++i;
            continue;
        }
        paint(i, end, Kind::string);
        i = end;
    }
}

void Canvas::paintComments() {
    bool blocksEnd = true;
    for (std::size_t i = 0; i < script_.size();) {
        const auto opening = script_.substr(i, 2);
        std::size_t end = i;
        if (opening == u"//") {
            end = std::min(script_.find(u'\n', i), script_.size());
        } else if (opening == u"/*" && blocksEnd) {
            const auto closing = script_.find(u"*/", i + 2);
            blocksEnd = closing != Text::npos;
            end = blocksEnd ? closing + 2 : i;
        }
        paint(i, end, Kind::comment);
        i = std::max(end, i + 1);
    }
}

std::vector<Range> Canvas::ranges() const {
    std::vector<Range> ranges;
    for (std::size_t begin = 0; begin < kinds_.size();) {
        std::size_t end = begin + 1;
        while (end < kinds_.size() && kinds_[end] == kinds_[begin]) {
            ++end;
        }
        if (kinds_[begin] != none) {
            ranges.push_back({begin, end - begin, static_cast<Kind>(kinds_[begin])});
        }
        begin = end;
    }
    return ranges;
}

}  // namespace

std::vector<Range> highlight(std::u16string_view script) {
    Canvas canvas(script);
    canvas.paintWords();
    canvas.paintStrings();
    canvas.paintComments();
    return canvas.ranges();
}

}  // namespace velmora::PacHighlighter
