#include "base/Regex.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <string>
#include <vector>

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Groups = Regex::Match;
using std::chrono::milliseconds;

std::vector<Regex::Match> findAll(std::string_view pattern, std::string_view text) {
    auto regex = Regex::compile(pattern);
    EXPECT_TRUE(regex) << pattern;
    return regex->findAll(text);
}

TEST(Regex, FindsEveryMatchWithItsGroups) {
    EXPECT_THAT(findAll("(\\w)=(\\d*)", "a=1, b=, c=23"),
                ElementsAre(Groups{"a=1", "a", "1"}, Groups{"b=", "b", ""}, Groups{"c=23", "c", "23"}));
}

TEST(Regex, FindsNothingInTextsWithoutAMatch) {
    EXPECT_THAT(findAll("x", ""), IsEmpty());
    EXPECT_THAT(findAll("x", "abc"), IsEmpty());
}

TEST(Regex, LeavesGroupsThatTookNoPartEmpty) {
    EXPECT_THAT(findAll("(a)|(b)", "ba"), ElementsAre(Groups{"b", "", "b"}, Groups{"a", "a", ""}));
}

TEST(Regex, GoesOnAfterEmptyMatches) {
    EXPECT_THAT(findAll("a*", "aab"), ElementsAre(Groups{"aa"}, Groups{""}, Groups{""}));
}

TEST(Regex, TakesAndGivesUtf8) {
    EXPECT_THAT(findAll("\xC3\xA9(.)", "caf\xC3\xA9\xF0\x9F\x92\xA1!"),
                ElementsAre(Groups{"\xC3\xA9\xF0\x9F\x92\xA1", "\xF0\x9F\x92\xA1"}));
}

TEST(Regex, ReadsWordAndDigitClassesAsUnicodeDoes) {
    EXPECT_THAT(findAll("\\w+", "\xC3\xA9t\xC3\xA9 x"), ElementsAre(Groups{"\xC3\xA9t\xC3\xA9"}, Groups{"x"}));
    EXPECT_THAT(findAll("\\d+", "\xD9\xA1\xD9\xA2"), ElementsAre(Groups{"\xD9\xA1\xD9\xA2"}));
}

TEST(Regex, CountsBytesThatAreNotUtf8AsReplacementCharacters) {
    EXPECT_THAT(findAll("a(.)b",
                        "a\xFF"
                        "b"),
                ElementsAre(Groups{"a\xEF\xBF\xBD"
                                   "b",
                                   "\xEF\xBF\xBD"}));
}

TEST(Regex, KeepsZeroBytes) {
    EXPECT_THAT(findAll("a(.)b", std::string_view("a\0b", 3)),
                ElementsAre(Groups{std::string("a\0b", 3), std::string("\0", 1)}));
}

TEST(Regex, LetsADotStopAtTheEndOfALine) {
    EXPECT_THAT(findAll(".+", "a\nb"), ElementsAre(Groups{"a"}, Groups{"b"}));
}

TEST(Regex, SearchesOneTextAfterAnother) {
    auto regex = Regex::compile("\\d");
    ASSERT_TRUE(regex);
    EXPECT_THAT(regex->findAll("1 2"), ElementsAre(Groups{"1"}, Groups{"2"}));
    EXPECT_THAT(regex->findAll("none"), IsEmpty());
    EXPECT_THAT(regex->findAll("3"), ElementsAre(Groups{"3"}));
}

TEST(Regex, ReportsExpressionsThatDoNotCompile) {
    for (const auto* bad : {"(", "[a", "a{2,1}", "\\", "", "(?<n>a)(?<n>b)"}) {
        const auto regex = Regex::compile(bad);
        ASSERT_FALSE(regex) << bad;
        EXPECT_THAT(regex.error().message, HasSubstr(std::string("regular expression ") + bad));
    }
}

class BoundedSearch : public testing::Test {
protected:
    /// Far more than the limit, for a machine that is busy with other things, and far less than the search would take.
    static constexpr milliseconds patience{20000};

    template <typename Search>
    static void expectBounded(Search search) {
        const auto start = std::chrono::steady_clock::now();
        search();
        EXPECT_LT(std::chrono::steady_clock::now() - start, patience);
    }
};

TEST_F(BoundedSearch, EndsCatastrophicBacktracking) {
    auto regex = Regex::compile("(a+)+$", milliseconds(50));
    ASSERT_TRUE(regex);
    expectBounded([&] { EXPECT_THAT(regex->findAll(std::string(64, 'a') + "b"), IsEmpty()); });
}

TEST_F(BoundedSearch, EndsAMatchThatTriesEveryStart) {
    auto regex = Regex::compile("var\\s*=\\s*\\[([^\\]]*)\\]", milliseconds(50));
    ASSERT_TRUE(regex);
    std::string text;
    for (int i = 0; i < 300000; ++i) {
        text += "var=[";
    }
    expectBounded([&] { EXPECT_THAT(regex->findAll(text), IsEmpty()); });
}

TEST_F(BoundedSearch, EndsASearchOfManySlowMatches) {
    auto regex = Regex::compile("(\\w+)!", milliseconds(50));
    ASSERT_TRUE(regex);
    std::string text;
    for (int i = 0; i < 100000; ++i) {
        text += std::string(140, 'a') + " b!";
    }
    expectBounded([&] {
        const auto matches = regex->findAll(text);
        EXPECT_LT(matches.size(), 100000U);
        EXPECT_GT(matches.size(), 0U);
    });
}

TEST_F(BoundedSearch, EndsASearchOfManyQuickMatches) {
    auto regex = Regex::compile("a", milliseconds(0));
    ASSERT_TRUE(regex);
    EXPECT_THAT(regex->findAll("aaa"), testing::SizeIs(1)) << "ICU does not look at the time within so short a match";
}

TEST_F(BoundedSearch, LeavesTextsAloneThatAreLongerThanIcuCanCount) {
    constexpr std::size_t size = std::size_t{1} << 30;
    // Room that nobody has written to takes no memory.
    void* room = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(room, MAP_FAILED);
    const std::string_view text(static_cast<const char*>(room), size);
    EXPECT_EQ(Regex::compile(text).error().message, "regular expression too long");
    EXPECT_THAT(findAll("^", text), IsEmpty());
    ::munmap(room, size);
}

TEST_F(BoundedSearch, CountsAMatchThatRunsOutOfStackAsNone) {
    auto regex = Regex::compile("(?:x|(a|b))*c");
    ASSERT_TRUE(regex);
    const auto fine = std::string(100, 'a') + "c";
    expectBounded([&] { EXPECT_THAT(regex->findAll(fine + std::string(4'000'000, 'a') + "c"), testing::SizeIs(1)); });
    EXPECT_THAT(regex->findAll(fine), testing::SizeIs(1));
}

}  // namespace
}  // namespace velmora
