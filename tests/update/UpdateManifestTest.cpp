#include "update/UpdateManifest.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(UpdateManifest, ReadsEveryKey) {
    const auto manifest = decodeManifest(R"({"version": "2.0", "build": "17", "date": "2026-05-01",
        "url": "https://host.example/a.zip", "sha256": "ab", "notes": "neu — ✓", "minimumSystemVersion": "13.0"})");
    ASSERT_TRUE(manifest);
    EXPECT_EQ(*manifest, (UpdateManifest{.version = "2.0",
                                         .build = "17",
                                         .date = "2026-05-01",
                                         .url = "https://host.example/a.zip",
                                         .sha256 = "ab",
                                         .notes = "neu — ✓",
                                         .minimumSystemVersion = "13.0"}));
}

TEST(UpdateManifest, OnlyVersionAndUrlDecodesAndTheOthersAreAbsent) {
    const auto manifest = decodeManifest(R"({"version": "2.0", "url": "u"})");
    ASSERT_TRUE(manifest);
    EXPECT_EQ(*manifest, (UpdateManifest{.version = "2.0", .url = "u"}));
    EXPECT_FALSE(manifest->sha256);
}

TEST(UpdateManifest, UnknownKeysAreIgnoredAndNullIsAbsent) {
    const auto manifest = decodeManifest(R"({"version": "2.0", "url": "u", "more": {"a": [1]}, "notes": null})");
    ASSERT_TRUE(manifest);
    EXPECT_FALSE(manifest->notes);
}

TEST(UpdateManifest, RecordsCompareFieldByField) {
    const UpdateManifest one{.version = "1", .url = "u"};
    UpdateManifest other = one;
    EXPECT_EQ(one, other);
    other.build = "";
    EXPECT_NE(one, other);
}

class UndecodableManifest : public testing::TestWithParam<const char*> {};

TEST_P(UndecodableManifest, FailsAsAWhole) {
    const auto manifest = decodeManifest(GetParam());
    ASSERT_FALSE(manifest);
    EXPECT_TRUE(manifest.error().message.starts_with("The update feed cannot be read: ")) << manifest.error().message;
}

INSTANTIATE_TEST_SUITE_P(Table, UndecodableManifest,
                         testing::Values("", "{", "[]", "null", "\"2.0\"", "{}", R"({"version": "2.0"})",
                                         R"({"url": "u"})", R"({"version": null, "url": "u"})",
                                         R"({"version": 2.0, "url": "u"})", R"({"version": "2.0", "url": ["u"]})",
                                         R"({"version": "2.0", "url": "u", "build": 17})",
                                         R"({"version": "2.0", "url": "u", "date": {}})",
                                         R"({"version": "2.0", "url": "u", "sha256": false})",
                                         R"({"version": "2.0", "url": "u", "notes": []})",
                                         R"({"version": "2.0", "url": "u", "minimumSystemVersion": 13})",
                                         R"({"version": "2.0", "url": "u"} trailing)", "<html>not found</html>",
                                         "{\"version\": \"\xff\", \"url\": \"u\"}"));

}  // namespace
}  // namespace velmora
