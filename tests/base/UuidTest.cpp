#include "base/Uuid.h"

#include <gtest/gtest.h>

#include <set>

namespace velmora {
namespace {

TEST(Uuid, IsWrittenInCanonicalUpperCase) {
    Uuid id;
    for (std::size_t i = 0; i < id.bytes.size(); ++i) {
        id.bytes[i] = static_cast<std::uint8_t>(0xA0 + i);
    }
    EXPECT_EQ(id.toString(), "A0A1A2A3-A4A5-A6A7-A8A9-AAABACADAEAF");
}

TEST(Uuid, ReadsWhatItWritesInEitherCase) {
    const auto id = Uuid::random();
    auto lower = id.toString();
    for (auto& c : lower) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    EXPECT_EQ(Uuid::parse(id.toString()), id);
    EXPECT_EQ(Uuid::parse(lower), id);
}

TEST(Uuid, RefusesEveryOtherText) {
    for (const auto* text : {"", "A0A1A2A3-A4A5-A6A7-A8A9-AAABACADAEA", "A0A1A2A3-A4A5-A6A7-A8A9-AAABACADAEAFF",
                             "A0A1A2A3A4A5-A6A7-A8A9-AAABACADAEAF0", "A0A1A2A3-A4A5-A6A7-A8A9-AAABACADAEAG",
                             "{0A1A2A3-A4A5-A6A7-A8A9-AAABACADAEAF}", "A0A1A2A3-A4A5-A6A7-A8A9_AAABACADAEAF"}) {
        EXPECT_FALSE(Uuid::parse(text)) << text;
    }
}

TEST(Uuid, RandomOnesAreVersionFourAndDiffer) {
    std::set<Uuid> seen;
    for (int i = 0; i < 1000; ++i) {
        const auto id = Uuid::random();
        EXPECT_EQ(id.bytes[6] >> 4, 4);
        EXPECT_EQ(id.bytes[8] >> 6, 2);
        EXPECT_TRUE(seen.insert(id).second);
    }
}

}  // namespace
}  // namespace velmora
