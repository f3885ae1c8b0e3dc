#include "sync/ImportResult.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

struct SentenceCase {
    std::int64_t imported;
    std::int64_t skipped;
    const char* sentence;
};

class ImportAlert : public testing::TestWithParam<SentenceCase> {};

TEST_P(ImportAlert, SaysHowManyInSingularAndPlural) {
    const auto& [imported, skipped, sentence] = GetParam();
    EXPECT_EQ(importAlertMessage({.imported = imported, .skipped = skipped}), sentence);
}

INSTANTIATE_TEST_SUITE_P(Table, ImportAlert,
                         testing::Values(SentenceCase{0, 0, "Imported 0 tunnels."},
                                         SentenceCase{1, 0, "Imported 1 tunnel."},
                                         SentenceCase{2, 0, "Imported 2 tunnels."},
                                         SentenceCase{3, 1, "Imported 3 tunnels. Skipped 1 duplicate."},
                                         SentenceCase{1, 2, "Imported 1 tunnel. Skipped 2 duplicates."},
                                         SentenceCase{0, 11, "Imported 0 tunnels. Skipped 11 duplicates."}));

TEST(ImportResult, EachIsOneOfItsOwn) {
    EXPECT_NE(ImportResult{}.id, ImportResult{}.id);
}

}  // namespace
}  // namespace velmora
