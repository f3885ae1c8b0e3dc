#include "ui/TextMatches.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TextMatches, CountsInAnyCase) {
    const TextMatches matches(QStringLiteral("Proxy PROXY proxy direct"), QStringLiteral("proxy"));
    EXPECT_EQ(matches.count(), 3);
    EXPECT_FALSE(matches.hasMore());
    EXPECT_EQ(matches.numberAt(6), 2);
    EXPECT_EQ(matches.numberAt(7), std::nullopt);
}

TEST(TextMatches, DoNotOverlap) {
    const TextMatches matches(QStringLiteral("aaaaa"), QStringLiteral("aa"));
    EXPECT_THAT(matches.between(0, 5, 10), ElementsAre(0, 2));
}

TEST(TextMatches, GoRoundTheEndOfTheText) {
    const TextMatches matches(QStringLiteral("x..x..x"), QStringLiteral("x"));
    EXPECT_EQ(matches.atOrAfter(0), 0);
    EXPECT_EQ(matches.atOrAfter(1), 3);
    EXPECT_EQ(matches.atOrAfter(7), 0);
    EXPECT_EQ(matches.before(6), 3);
    EXPECT_EQ(matches.before(0), 6);
}

TEST(TextMatches, AreNoneOfAnEmptyOrMissingPattern) {
    EXPECT_TRUE(TextMatches().empty());
    EXPECT_TRUE(TextMatches(QStringLiteral("text"), QString()).empty());
    EXPECT_TRUE(TextMatches(QStringLiteral("text"), QStringLiteral("no")).empty());
    EXPECT_THAT(TextMatches(QStringLiteral("text"), QStringLiteral("no")).between(0, 4, 10), IsEmpty());
}

TEST(TextMatches, BeyondTheCountedOnesAreFoundAllTheSame) {
    const int size = 3 * TextMatches::mostCounted;
    const TextMatches matches(QString(size, u'a'), QStringLiteral("A"));
    EXPECT_EQ(matches.count(), TextMatches::mostCounted);
    EXPECT_TRUE(matches.hasMore());
    EXPECT_EQ(matches.atOrAfter(size - 1), size - 1);
    EXPECT_EQ(matches.atOrAfter(size), 0);
    EXPECT_EQ(matches.before(0), size - 1);
    EXPECT_EQ(matches.before(size - 1), size - 2);
    EXPECT_EQ(matches.before(5), 4);
    EXPECT_EQ(matches.numberAt(size - 1), std::nullopt);
    EXPECT_THAT(matches.between(size - 2, size, 10), ElementsAre(size - 2, size - 1));
    EXPECT_THAT(matches.between(TextMatches::mostCounted - 1, size, 3),
                ElementsAre(TextMatches::mostCounted - 1, TextMatches::mostCounted, TextMatches::mostCounted + 1));
}

}  // namespace
}  // namespace velmora
