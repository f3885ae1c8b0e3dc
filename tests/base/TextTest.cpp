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

TEST(Text, KnowsNumbersOfEveryScript) {
    for (const auto* number : {"1", "10.0.0.1", "0x", "\xC2\xBD", "\xE2\x85\xA3", "\xD9\xA1", "\xE4\xB8\x80"}) {
        EXPECT_TRUE(startsWithNumber(number)) << number;  // digits, one half, Roman four, Arabic one, Chinese one
    }
    for (const auto* other : {"", "a1", "-1", " 1", "\xC3\xA9", "\x80", "\xC2"}) {
        EXPECT_FALSE(startsWithNumber(other)) << other;
    }
}

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

}  // namespace
}  // namespace velmora
