#include "update/CodeRequirement.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(CodeRequirement, NamesTheTeam) {
    EXPECT_EQ(codeRequirement("ABCDE12345"), "anchor apple generic and certificate leaf[subject.OU] = \"ABCDE12345\"");
}

}  // namespace
}  // namespace velmora
