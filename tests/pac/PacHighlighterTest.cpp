#include "pac/Generated.h"
#include "pac/PacHighlighter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unicode/uregex.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace velmora {

namespace PacHighlighter {
void PrintTo(const Range& range, std::ostream* out) {
    *out << '{' << range.start << ", " << range.length << ", " << static_cast<int>(range.kind) << '}';
}
}  // namespace PacHighlighter

namespace {

using PacHighlighter::highlight;
using PacHighlighter::Kind;
using PacHighlighter::Range;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::pair<std::u16string, Kind>> coloured(std::u16string_view script) {
    std::vector<std::pair<std::u16string, Kind>> pieces;
    for (const auto& range : highlight(script)) {
        pieces.emplace_back(script.substr(range.start, range.length), range.kind);
    }
    return pieces;
}

TEST(PacHighlighter, HasNothingToColourInAnEmptyText) {
    EXPECT_THAT(highlight(u""), IsEmpty());
}

TEST(PacHighlighter, ColoursAScript) {
    EXPECT_THAT(coloured(u"function FindProxyForURL(url, host) {\n"
                         u"  if (shExpMatch(host, \"*.a\")) return 'x'; // name\n"
                         u"}"),
                ElementsAre(std::pair(u"function", Kind::keyword), std::pair(u"FindProxyForURL", Kind::builtIn),
                            std::pair(u"if", Kind::keyword), std::pair(u"shExpMatch", Kind::builtIn),
                            std::pair(u"\"*.a\"", Kind::string), std::pair(u"return", Kind::keyword),
                            std::pair(u"'x'", Kind::string), std::pair(u"// name", Kind::comment)));
}

TEST(PacHighlighter, CountsInUtf16Units) {
    EXPECT_THAT(highlight(u"\U0001F4A1 if"), ElementsAre(Range{3, 2, Kind::keyword}));
}

class Words : public testing::TestWithParam<std::pair<Kind, std::u16string>> {};

TEST_P(Words, AreColouredWhereTheyStandAlone) {
    const auto& [kind, word] = GetParam();
    EXPECT_THAT(coloured(word), ElementsAre(std::pair(word, kind)));
    EXPECT_THAT(coloured(u"(" + word + u"."), ElementsAre(std::pair(word, kind)));
    for (const auto& other : {word + u"X", u"x" + word, word + u"_", word + u"1", u"_" + word, word + u"\u00E9",
                              word + u"\u0301", u"\u00E9" + word}) {
        EXPECT_THAT(coloured(other), IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(Keywords, Words,
                         testing::Values(std::pair(Kind::keyword, u"function"), std::pair(Kind::keyword, u"return"),
                                         std::pair(Kind::keyword, u"if"), std::pair(Kind::keyword, u"else"),
                                         std::pair(Kind::keyword, u"for"), std::pair(Kind::keyword, u"while"),
                                         std::pair(Kind::keyword, u"var"), std::pair(Kind::keyword, u"let"),
                                         std::pair(Kind::keyword, u"const"), std::pair(Kind::keyword, u"in"),
                                         std::pair(Kind::keyword, u"of"), std::pair(Kind::keyword, u"true"),
                                         std::pair(Kind::keyword, u"false"), std::pair(Kind::keyword, u"null"),
                                         std::pair(Kind::keyword, u"undefined")));
INSTANTIATE_TEST_SUITE_P(
    BuiltIns, Words,
    testing::Values(std::pair(Kind::builtIn, u"FindProxyForURL"), std::pair(Kind::builtIn, u"shExpMatch"),
                    std::pair(Kind::builtIn, u"isInNet"), std::pair(Kind::builtIn, u"dnsDomainIs"),
                    std::pair(Kind::builtIn, u"localHostOrDomainIs"), std::pair(Kind::builtIn, u"isResolvable"),
                    std::pair(Kind::builtIn, u"isPlainHostName"), std::pair(Kind::builtIn, u"dnsResolve"),
                    std::pair(Kind::builtIn, u"myIpAddress"), std::pair(Kind::builtIn, u"alert")));

TEST(PacHighlighter, TellsUpperFromLowerCase) {
    EXPECT_THAT(coloured(u"If RETURN shexpmatch"), IsEmpty());
}

TEST(PacHighlighter, DoesNotColourLongerWords) {
    EXPECT_THAT(coloured(u"shExpMatchX"), IsEmpty());
    EXPECT_THAT(coloured(u"instance inform"), IsEmpty());
}

TEST(PacHighlighter, LetsStringsWinOverWords) {
    EXPECT_THAT(coloured(u"\"a function\""), ElementsAre(std::pair(u"\"a function\"", Kind::string)));
}

TEST(PacHighlighter, LetsCommentsWinOverWordsAndStrings) {
    EXPECT_THAT(coloured(u"// function"), ElementsAre(std::pair(u"// function", Kind::comment)));
    EXPECT_THAT(coloured(u"/* \"a\" if */"), ElementsAre(std::pair(u"/* \"a\" if */", Kind::comment)));
}

TEST(PacHighlighter, SplitsAStringThatHoldsSlashes) {
    EXPECT_THAT(coloured(u"\"http://x\" if\n"),
                ElementsAre(std::pair(u"\"http:", Kind::string), std::pair(u"//x\" if", Kind::comment)));
    EXPECT_THAT(coloured(u"'a /* b */ c'"),
                ElementsAre(std::pair(u"'a ", Kind::string), std::pair(u"/* b */", Kind::comment),
                            std::pair(u" c'", Kind::string)));
}

TEST(PacHighlighter, GoesOnWithAStringBehindALineComment) {
    EXPECT_THAT(coloured(u"'a // b\nc'"),
                ElementsAre(std::pair(u"'a ", Kind::string), std::pair(u"// b", Kind::comment),
                            std::pair(u"\nc'", Kind::string)));
}

TEST(PacHighlighter, ReadsEscapesInStrings) {
    EXPECT_THAT(coloured(u"\"a\\\"b\" 'c\\'d' \"\\\\\" x"),
                ElementsAre(std::pair(u"\"a\\\"b\"", Kind::string), std::pair(u"'c\\'d'", Kind::string),
                            std::pair(u"\"\\\\\"", Kind::string)));
}

TEST(PacHighlighter, LetsStringsRunOverLines) {
    EXPECT_THAT(coloured(u"'a\nb\\\nc'"), ElementsAre(std::pair(u"'a\nb\\\nc'", Kind::string)));
}

TEST(PacHighlighter, LeavesAStringThatIsNotClosedPlain) {
    EXPECT_THAT(coloured(u"\"abc if"), ElementsAre(std::pair(u"if", Kind::keyword)));
    EXPECT_THAT(coloured(u"\"it's 'in'"),
                ElementsAre(std::pair(u"'s '", Kind::string), std::pair(u"in", Kind::keyword)));
}

TEST(PacHighlighter, LeavesABlockCommentThatIsNotClosedPlain) {
    EXPECT_THAT(coloured(u"/* if"), ElementsAre(std::pair(u"if", Kind::keyword)));
    EXPECT_THAT(coloured(u"/*/"), IsEmpty());
    EXPECT_THAT(coloured(u"/*// x"), ElementsAre(std::pair(u"// x", Kind::comment)));
}

TEST(PacHighlighter, EndsLineCommentsAtALineFeedOnly) {
    EXPECT_THAT(coloured(u"// a\r\nif"),
                ElementsAre(std::pair(u"// a\r", Kind::comment), std::pair(u"if", Kind::keyword)));
}

/// The rules as expressions, each painted over what the ones before it have painted.
std::vector<Range> highlightByExpressions(const std::u16string& script) {
    constexpr std::array<std::u16string_view, 4> expressions{
        u"\\b(function|return|if|else|for|while|var|let|const|in|of|true|false|null|undefined)\\b",
        u"\\b(FindProxyForURL|shExpMatch|isInNet|dnsDomainIs|localHostOrDomainIs|isResolvable|isPlainHostName|"
        u"dnsResolve|myIpAddress|alert)\\b",
        u"\"(?:[^\"\\\\]|\\\\.)*\"|'(?:[^'\\\\]|\\\\.)*'", u"//[^\\n]*|/\\*[\\s\\S]*?\\*/"};
    std::vector<int> kinds(script.size(), -1);
    for (std::size_t rule = 0; rule < expressions.size(); ++rule) {
        UErrorCode status = U_ZERO_ERROR;
        const std::unique_ptr<URegularExpression, decltype(&uregex_close)> expression(
            uregex_open(expressions[rule].data(), static_cast<int>(expressions[rule].size()), UREGEX_DOTALL, nullptr,
                        &status),
            &uregex_close);
        uregex_setText(expression.get(), script.data(), static_cast<int>(script.size()), &status);
        while (uregex_findNext(expression.get(), &status) != 0) {
            std::fill(kinds.begin() + uregex_start(expression.get(), 0, &status),
                      kinds.begin() + uregex_end(expression.get(), 0, &status), static_cast<int>(rule));
        }
        EXPECT_EQ(status, U_ZERO_ERROR);
    }
    std::vector<Range> ranges;
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        if (kinds[i] < 0) {
            continue;
        }
        if (i > 0 && kinds[i - 1] == kinds[i]) {
            ++ranges.back().length;
        } else {
            ranges.push_back({i, 1, static_cast<Kind>(kinds[i])});
        }
    }
    return ranges;
}

TEST(PacHighlighter, AgreesWithTheExpressionsOnGeneratedText) {
    const std::vector<std::u16string> pieces{u"\"",
                                             u"\"",
                                             u"'",
                                             u"'",
                                             u"\\",
                                             u"\\",
                                             u"/",
                                             u"/",
                                             u"*",
                                             u"//",
                                             u"/*",
                                             u"*/",
                                             u"\n",
                                             u"\r\n",
                                             u"\r",
                                             u" ",
                                             u"(",
                                             u".",
                                             u"_",
                                             u"1",
                                             u"x",
                                             u"X",
                                             u"in",
                                             u"if",
                                             u"of",
                                             u"function",
                                             u"null",
                                             u"shExpMatch",
                                             u"alert",
                                             u"isInNet",
                                             u"\u00E9",
                                             u"\u0301",
                                             u"\u200D",
                                             u"\u200C",
                                             u"\u00AD",
                                             u"\u0660",
                                             u"\u203F",
                                             u"\u2028",
                                             u"\u0903",
                                             u"\u20DD",
                                             u"\U0001D49C",
                                             u"\U0001F4A1",
                                             u"\U000E0100",
                                             std::u16string(1, 0xD800),
                                             std::u16string(1, 0xDC00)};
    Generated generated;
    for (int i = 0; i < 20000; ++i) {
        const auto script = generated.textOf(pieces, 24);
        ASSERT_EQ(highlight(script), highlightByExpressions(script))
            << "seed " << generated.seed() << ", text " << i << ": " << testing::PrintToString(script);
    }
}

TEST(PacHighlighter, TakesTimeInProportionToTheText) {
    for (const std::u16string piece : {u"/*", u"\"\\", u"'", u"x\u0301", u"\\\"", u"/", u"if ", u"ifx"}) {
        std::u16string script;
        while (script.size() < 1'000'000) {
            script += piece;
        }
        const auto start = std::chrono::steady_clock::now();
        (void)highlight(script);
        // A scan that starts anew at each place would take hours.
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    }
}

}  // namespace
}  // namespace velmora
