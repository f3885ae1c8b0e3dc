#include "base/Text.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

struct TrimCase {
    std::string_view text;
    std::string_view withoutSpaces;
    std::string_view withoutSpacesAndNewlines;
};

class Trimming : public testing::TestWithParam<TrimCase> {};

TEST_P(Trimming, DropsBothEndsOnly) {
    EXPECT_EQ(trimWhitespace(GetParam().text), GetParam().withoutSpaces);
    EXPECT_EQ(trimWhitespaceAndNewlines(GetParam().text), GetParam().withoutSpacesAndNewlines);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Trimming,
    testing::Values(TrimCase{"", "", ""}, TrimCase{" \t ", "", ""}, TrimCase{" a b\t", "a b", "a b"},
                    TrimCase{"\n a \r\n", "\n a \r\n", "a"}, TrimCase{"a\r", "a\r", "a"},
                    TrimCase{"\xC2\xA0 x \xE3\x80\x80", "x", "x"},                    // NBSP, ideographic space
                    TrimCase{"\xC2\x85x\xE2\x80\xA8", "\xC2\x85x\xE2\x80\xA8", "x"},  // NEL, line separator
                    TrimCase{"\xE2\x80\x8Bx", "\xE2\x80\x8Bx", "\xE2\x80\x8Bx"},      // zero width is no space
                    TrimCase{"\x80 x \xFF", "\x80 x \xFF", "\x80 x \xFF"},            // not UTF-8
                    TrimCase{" \xC3", "\xC3", "\xC3"}, TrimCase{"\v\f\n", "\v\f\n", ""}));

TEST(Text, KnowsUtf8) {
    for (const auto* good : {"", "plain", "caf\xC3\xA9", "\xF0\x9F\x92\xA1 and more than eight", "01234567\xC3\xA9"}) {
        EXPECT_TRUE(isValidUtf8(good)) << good;
    }
    for (const auto* bad : {"\x80", "01234567\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF5\x80\x80\x80", "a\xFF"}) {
        EXPECT_FALSE(isValidUtf8(bad)) << bad;
    }
    EXPECT_TRUE(isValidUtf8(std::string_view("a\0b", 3)));
}

TEST(Text, SplitsAtEverySeparator) {
    using Pieces = std::vector<std::string_view>;
    EXPECT_EQ(split("", ','), Pieces{""});
    EXPECT_EQ(split("a", ','), Pieces{"a"});
    EXPECT_EQ(split("a,,b,", ','), (Pieces{"a", "", "b", ""}));
}

TEST(Text, JoinsBetweenPieces) {
    EXPECT_EQ(join({}, " "), "");
    EXPECT_EQ(join({"a"}, " "), "a");
    EXPECT_EQ(join({"a", "", "b"}, ", "), "a, , b");
}

using Pieces = std::vector<std::string_view>;

TEST(Text, TellsAsciiFromTheRest) {
    EXPECT_TRUE(isAscii(""));
    EXPECT_TRUE(isAscii("eight by\x7F and more"));
    EXPECT_FALSE(isAscii("\xC3\xA9"));
    EXPECT_FALSE(isAscii("01234567\x80"));
    EXPECT_FALSE(
        isAscii("\xFF"
                "01234567"));
}

TEST(Text, SplitsAtEveryNewlineOfUnicode) {
    EXPECT_EQ(lines("a\nb\rc\r\nd\ve\ff"), (Pieces{"a", "b", "c", "d", "e", "f"}));
    EXPECT_EQ(lines("a\xC2\x85"
                    "b\xE2\x80\xA8"
                    "c\xE2\x80\xA9"
                    "d"),
              (Pieces{"a", "b", "c", "d"}));
}

TEST(Text, KeepsEmptyLines) {
    EXPECT_EQ(lines(""), Pieces{""});
    EXPECT_EQ(lines("\n"), (Pieces{"", ""}));
    EXPECT_EQ(lines("a\r\n\r\nb"), (Pieces{"a", "", "b"}));
    EXPECT_EQ(lines("a\n\rb"), (Pieces{"a", "", "b"}));
}

TEST(Text, DoesNotTakeOtherCharactersForNewlines) {
    for (const auto* one : {"a\tb",
                            "a\x1C"
                            "b",
                            "\xC2\xA0", "\xC2\x86", "\xE2\x80\xA7", "\xE2\x80", "a\xC2", "\xC3\x85"}) {
        EXPECT_EQ(lines(one), Pieces{one});
    }
}

TEST(Text, ReadsOneItemALine) {
    EXPECT_EQ(listItems(""), Pieces{});
    EXPECT_EQ(listItems(" \n\t\r\n\xC2\xA0"), Pieces{});
    EXPECT_EQ(listItems(" a.com \r\n\n\tb, c\xE2\x80\xA8\xE3\x80\x80"
                        "d"),
              (Pieces{"a.com", "b, c", "d"}));
}

struct CharacterCase {
    std::string_view text;
    Pieces characters;
};

class Characters : public testing::TestWithParam<CharacterCase> {};

TEST_P(Characters, AreGraphemeClusters) {
    EXPECT_EQ(characters(GetParam().text), GetParam().characters);
    EXPECT_EQ(characterCount(GetParam().text), GetParam().characters.size());
}

INSTANTIATE_TEST_SUITE_P(
    Table, Characters,
    testing::Values(CharacterCase{"", {}}, CharacterCase{"a.b", {"a", ".", "b"}},
                    CharacterCase{"\r\n\r\r\n\n", {"\r\n", "\r", "\r\n", "\n"}},
                    CharacterCase{"\xC3\xA9\r\n", {"\xC3\xA9", "\r\n"}},
                    CharacterCase{"e\xCC\x81.", {"e\xCC\x81", "."}},  // combining acute accent
                    CharacterCase{"*.\xCC\x81", {"*", ".\xCC\x81"}},  // also on a dot
                    CharacterCase{"\xF0\x9F\x87\xA9\xF0\x9F\x87\xAA!", {"\xF0\x9F\x87\xA9\xF0\x9F\x87\xAA", "!"}},
                    CharacterCase{"\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x92\xBB",
                                  {"\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x92\xBB"}},            // joined emoji
                    CharacterCase{"\xE1\x84\x80\xE1\x85\xA1", {"\xE1\x84\x80\xE1\x85\xA1"}}));  // Hangul syllable

TEST(Text, KnowsNumbersOfEveryScript) {
    for (const auto* number :
         {"0", "9", "\xD9\xA3", "\xC2\xBD", "\xE2\x85\xA7", "\xE3\x8A\x88", "\xE4\xB8\x80", "\xC2\xB2", "1\xCC\x81"}) {
        EXPECT_TRUE(isNumeric(number)) << number;
    }
    for (const auto* other : {"", "a", " ", "-", ":", "\xC3\xA9", "\xCC\x81", "\xFF"}) {
        EXPECT_FALSE(isNumeric(other)) << other;
    }
}

TEST(Text, LowersTheCaseOfEveryScript) {
    EXPECT_EQ(lowercased(""), "");
    EXPECT_EQ(lowercased("@AZ[`az{0*"), "@az[`az{0*");
    EXPECT_EQ(lowercased("B\xC3\x9C"
                         "CHER.\xD0\xA0\xD0\xA4"),
              "b\xC3\xBC"
              "cher.\xD1\x80\xD1\x84");
    // Both become longer: a capital I with its dot, and a letter whose small form lies further up.
    EXPECT_EQ(lowercased("\xC4\xB0"), "i\xCC\x87");
    EXPECT_EQ(lowercased("\xC8\xBA\xC8\xBA"), "\xE2\xB1\xA5\xE2\xB1\xA5");
}

}  // namespace
}  // namespace velmora
