#include "fakes/TemporaryDirectory.h"
#include "update/UnpackedTree.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora {
namespace {

namespace fs = std::filesystem;
using Kind = ArchiveEntry::Kind;

class UnpackedTreeTest : public testing::Test {
protected:
    UnpackedTreeTest() {
        fs::create_directories(directory / "V.app/folder");
        writeContent(directory / "V.app/folder/file", "12345");
        fs::create_symlink("folder", directory / "V.app/link");
    }

    [[nodiscard]] std::string failure() const {
        const auto result = secureUnpackedTree(directory.path(), listing);
        return result ? "" : result.error().message;
    }

    TemporaryDirectory directory;
    ArchiveListing listing{{"V.app/folder/file", {Kind::file, 5, ""}}, {"V.app/link", {Kind::link, 0, "folder"}}};
};

TEST_F(UnpackedTreeTest, WhatIsListedMayBeThere) {
    EXPECT_EQ(failure(), "");
    listing["V.app/missing"] = {Kind::file, 1, ""};
    EXPECT_EQ(failure(), "") << "what is missing is for the signature to notice";
}

TEST_F(UnpackedTreeTest, WhatIsNotListedMayNot) {
    writeContent(directory / "V.app/more", "");
    EXPECT_EQ(failure(), "“V.app/more” is not what the archive lists");
    fs::remove(directory / "V.app/more");
    fs::create_directory(directory / "V.app/fold");
    EXPECT_EQ(failure(), "“V.app/fold” is not what the archive lists");
}

TEST_F(UnpackedTreeTest, AnotherSizeKindOrTargetIsNotWhatIsListed) {
    listing["V.app/folder/file"].size = 6;
    EXPECT_EQ(failure(), "“V.app/folder/file” is not what the archive lists");
    listing["V.app/folder/file"] = {Kind::link, 0, "x"};
    EXPECT_EQ(failure(), "“V.app/folder/file” is not what the archive lists");
    listing["V.app/folder/file"] = {Kind::file, 5, ""};
    listing["V.app/link"].target = "other";
    EXPECT_EQ(failure(), "“V.app/link” is not what the archive lists");
}

TEST_F(UnpackedTreeTest, ASecondNameOfAFileIsRefused) {
    const TemporaryDirectory elsewhere;
    fs::create_hard_link(directory / "V.app/folder/file", elsewhere / "second");
    EXPECT_EQ(failure(), "“V.app/folder/file” is not what the archive lists");
}

TEST_F(UnpackedTreeTest, APipeIsRefused) {
    fs::remove(directory / "V.app/folder/file");
    ASSERT_EQ(::mkfifo((directory / "V.app/folder/file").c_str(), 0600), 0);
    EXPECT_EQ(failure(), "“V.app/folder/file” is not what the archive lists");
}

TEST_F(UnpackedTreeTest, RightsAreRestricted) {
    ::chmod((directory / "V.app/folder").c_str(), 03777);
    ::chmod((directory / "V.app/folder/file").c_str(), 06777);
    EXPECT_EQ(failure(), "");
    EXPECT_EQ(modeOf(directory / "V.app/folder"), 0755);
    EXPECT_EQ(modeOf(directory / "V.app/folder/file"), 0755);
}

TEST_F(UnpackedTreeTest, FindsTheFirstApplication) {
    EXPECT_EQ(findBundle(directory.path()), directory / "V.app");
    fs::create_directory(directory / "A.app");
    fs::create_directory(directory / "A.APP");
    fs::create_directory(directory / ".app");
    EXPECT_EQ(findBundle(directory.path()), directory / "A.app");
    EXPECT_EQ(findBundle(directory / "V.app"), std::nullopt);
}

}  // namespace
}  // namespace velmora
