#include "fakes/TemporaryDirectory.h"
#include "update/WorkArea.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <optional>

namespace velmora {
namespace {

namespace fs = std::filesystem;

TEST(WorkArea, IsPrivateAndGoesWithEverythingInIt) {
    const TemporaryDirectory directory;
    {
        auto area = WorkArea::create(directory.path());
        ASSERT_TRUE(area);
        EXPECT_EQ(area->archive().filename(), "update.zip");
        EXPECT_EQ(area->unpacked(), area->archive().parent_path() / "unpacked");
        EXPECT_EQ(modeOf(area->archive().parent_path()), 0700);
        fs::create_directories(area->unpacked() / "a/b");
        writeContent(area->unpacked() / "a/b/file", "x");
        fs::permissions(area->unpacked() / "a/b", fs::perms{0});
        fs::permissions(area->unpacked() / "a", fs::perms{0500});
    }
    EXPECT_TRUE(fs::is_empty(directory.path()));
}

TEST(WorkArea, StaysWhenItIsHandedOver) {
    const TemporaryDirectory directory;
    {
        auto area = WorkArea::create(directory.path());
        ASSERT_TRUE(area);
        area->handOver();
    }
    EXPECT_FALSE(fs::is_empty(directory.path()));
}

TEST(WorkArea, IsNotMadeWhereOthersCanExchangeIt) {
    const TemporaryDirectory directory;
    ASSERT_EQ(::chmod(directory.path().c_str(), 0777), 0);
    EXPECT_FALSE(WorkArea::create(directory.path()));
    EXPECT_TRUE(fs::is_empty(directory.path()));
    ASSERT_EQ(::chmod(directory.path().c_str(), 01777), 0);
    EXPECT_TRUE(WorkArea::create(directory.path()));
}

TEST(WorkArea, WithoutATemporaryFolderItFailsInTheSystemsWords) {
    const auto area = WorkArea::create("/nowhere/at/all");
    ASSERT_FALSE(area);
    EXPECT_EQ(area.error().message, "/nowhere/at/all: No such file or directory");
}

}  // namespace
}  // namespace velmora
