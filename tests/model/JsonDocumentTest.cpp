#include "model/JsonDocument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {
namespace {

using testing::HasSubstr;

constexpr std::size_t plenty = 1 << 20;

std::optional<std::int64_t> integerIn(const std::string& text) {
    const auto document = JsonDocument::parse(text, plenty);
    return document ? integerFrom(document->root()) : std::nullopt;
}

std::string nested(std::size_t levels) {
    return std::string(levels, '[') + std::string(levels, ']');
}

TEST(JsonDocument, TellsTheTypesApart) {
    const auto document = JsonDocument::parse(R"(["1", true, 1, null])", plenty);
    ASSERT_TRUE(document);
    const auto& values = document->root().get_array();
    EXPECT_EQ(stringFrom(values[0]), "1");
    EXPECT_EQ(booleanFrom(values[1]), true);
    EXPECT_EQ(integerFrom(values[2]), 1);
    for (const std::size_t i : {1U, 2U, 3U}) {
        EXPECT_FALSE(stringFrom(values[i])) << i;
    }
    for (const std::size_t i : {0U, 2U, 3U}) {
        EXPECT_FALSE(booleanFrom(values[i])) << i;
    }
    for (const std::size_t i : {0U, 1U, 3U}) {
        EXPECT_FALSE(integerFrom(values[i])) << i;
    }
}

TEST(JsonDocument, AWholeNumberMayBeWrittenWithAFraction) {
    EXPECT_EQ(integerIn("22.0"), 22);
    EXPECT_EQ(integerIn("2.2e1"), 22);
    EXPECT_EQ(integerIn("-9223372036854775808"), INT64_MIN);
    EXPECT_EQ(integerIn("22.5"), std::nullopt);
    EXPECT_EQ(integerIn("9223372036854775808"), std::nullopt);
    EXPECT_EQ(integerIn("1e30"), std::nullopt);
}

TEST(JsonDocument, TheLastOfARepeatedKeyCounts) {
    const auto document = JsonDocument::parse(R"({"a":1,"b":2,"a":3})", plenty);
    ASSERT_TRUE(document);
    EXPECT_EQ(integerFrom(document->root().at("a")), 3);
}

TEST(JsonDocument, HasLimits) {
    EXPECT_TRUE(JsonDocument::parse(nested(64), plenty));
    EXPECT_FALSE(JsonDocument::parse(nested(65), plenty));
    EXPECT_TRUE(JsonDocument::parse("[1]", 3));
    const auto large = JsonDocument::parse("[12]", 3);
    ASSERT_FALSE(large);
    EXPECT_EQ(large.error().message, "larger than 3 bytes");
}

TEST(JsonDocument, RefusesWhatIsNotOneValueInUtf8) {
    for (const auto* text : {"", " ", "[1", "1 2", "[1]x", "\"\xFF\"", "{\"\xC3\":1}", "nul", "[1,]"}) {
        const auto document = JsonDocument::parse(text, plenty);
        ASSERT_FALSE(document) << text;
        EXPECT_THAT(document.error().message, HasSubstr("not JSON: ")) << text;
    }
}

}  // namespace
}  // namespace velmora
