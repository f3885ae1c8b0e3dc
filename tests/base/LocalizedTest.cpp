#include "base/Localized.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(Localized, StandsAsItIsWithoutATranslation) {
    EXPECT_EQ(localized("velmora::Nobody", "Größe…"), "Größe…");
}

TEST(Localized, PutsTheNumberIntoATextThatCounts) {
    EXPECT_EQ(localizedCount("velmora::Nobody", "%n of them", nullptr, 12), "12 of them");
}

TEST(Filled, PutsArgumentsIntoTheirPlacesOnce) {
    EXPECT_EQ(filled("%2 before %1 and %2", {"%2", "b"}), "b before %2 and b");
}

TEST(Filled, LeavesWhatHasNoArgument) {
    EXPECT_EQ(filled("100 %, %0, %2, %", {"a"}), "100 %, %0, %2, %");
    EXPECT_EQ(filled("", {"a"}), "");
}

}  // namespace
}  // namespace velmora
