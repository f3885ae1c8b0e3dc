#include "UpdateStand.h"
#include "ZipWriter.h"
#include "update/ArchiveListing.h"

#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using Kind = ArchiveEntry::Kind;

class ArchiveListingTest : public testing::Test {
protected:
    Result<ArchiveListing, Error> list(const std::string& bytes) {
        writeContent(directory / "a.zip", bytes);
        return listArchive(directory / "a.zip", {.unpackedBytes = 1U << 20, .entries = 100}, Cancellation());
    }

    [[nodiscard]] std::string failureOf(const ZipWriter::Entry& entry) {
        const auto result = list(ZipWriter().add(entry).bytes());
        return result ? "" : result.error().message;
    }

    TemporaryDirectory directory;
};

TEST_F(ArchiveListingTest, ListsFilesFoldersAndLinks) {
    const auto listing = list(ZipWriter()
                                  .add({.name = "V.app/", .content = "", .mode = ZipWriter::folder})
                                  .add({.name = "V.app/a", .content = "12345"})
                                  .add({.name = "V.app/b", .content = std::string(300000, 'b'), .deflate = true})
                                  .add({.name = "V.app/d/up", .content = "../a", .mode = ZipWriter::link})
                                  .bytes());
    ASSERT_TRUE(listing) << listing.error().message;
    EXPECT_EQ(*listing, (ArchiveListing{{"V.app", {Kind::folder, 0, ""}},
                                        {"V.app/a", {Kind::file, 5, ""}},
                                        {"V.app/b", {Kind::file, 300000, ""}},
                                        {"V.app/d/up", {Kind::link, 0, "../a"}}}));
}

TEST_F(ArchiveListingTest, ReadsWhatUsualProgramsWrite) {
    UpdateStand stand;
    stand.pack();
    const auto limits = ArchiveLimits::forArchiveOf(std::filesystem::file_size(stand.archive));
    const auto zip = listArchive(stand.archive, limits, Cancellation());
    ASSERT_TRUE(zip) << zip.error().message;
    EXPECT_EQ(zip->at("Velmora.app/Contents/notes"), (ArchiveEntry{Kind::link, 0, "Resources/notes.txt"}));

    // One that describes each entry behind its bytes, as a program does that cannot go back.
    const auto piped = stand.root / "piped.zip";
    mustRun("/bin/sh", {"-c",
                        "cd \"$1\" && python3 -c 'import sys, zipfile\n"
                        "with zipfile.ZipFile(sys.stdout.buffer, \"w\", zipfile.ZIP_DEFLATED) as archive:\n"
                        "    archive.write(\"Velmora.app/Contents/Info.plist\")' | cat >\"$2\"",
                        "sh", (stand.root / "release").string(), piped.string()});
    const auto streamed = listArchive(piped, limits, Cancellation());
    ASSERT_TRUE(streamed) << streamed.error().message;
    EXPECT_EQ(streamed->at("Velmora.app/Contents/Info.plist"), zip->at("Velmora.app/Contents/Info.plist"));
}

TEST_F(ArchiveListingTest, RefusesPathsThatAreNotSafe) {
    const std::string names[] = {"../a", "a/../b", "/a",   "a//b",     "./a",
                                 "a/.",  "a/..",   "..",   ".",        "",
                                 "/",    "a\\b",   "a\nb", "\xc3\xa9", std::string("a\0b", 3)};
    for (const auto& name : names) {
        EXPECT_NE(failureOf({.name = name, .content = "x"}), "") << name;
    }
    EXPECT_EQ(failureOf({.name = "a b/..c/d.", .content = "x"}), "");
}

TEST_F(ArchiveListingTest, RefusesLinksThatLeaveTheFolder) {
    for (const char* target : {"/etc/passwd", "..", "../x", "a/../../x", "a/..", "../a/../../x", "a\\b", ""}) {
        EXPECT_NE(failureOf({.name = "l", .content = target, .mode = ZipWriter::link}), "") << target;
    }
    EXPECT_NE(failureOf({.name = "l", .content = std::string(2000, 'x'), .mode = ZipWriter::link}), "");
    EXPECT_NE(failureOf({.name = "d/l", .content = "../../x", .mode = ZipWriter::link}), "");
    EXPECT_EQ(failureOf({.name = "d/l", .content = "../x/y", .mode = ZipWriter::link}), "");
    EXPECT_EQ(failureOf({.name = "d/l", .content = "./x", .mode = ZipWriter::link}), "");
}

TEST_F(ArchiveListingTest, RefusesWhatIsNeitherFileNorFolderNorLink) {
    for (const std::uint32_t mode : {0010644U, 0020644U, 0060644U, 0140644U}) {
        EXPECT_NE(failureOf({.name = "x", .content = "", .mode = mode}), "") << mode;
    }
    EXPECT_NE(failureOf({.name = "x", .content = "", .mode = ZipWriter::folder}), "");
    EXPECT_NE(failureOf({.name = "x/", .content = "", .mode = ZipWriter::file}), "");
    EXPECT_NE(failureOf({.name = "x/", .content = "y", .mode = ZipWriter::folder}), "");
    EXPECT_NE(failureOf({.name = "x/", .content = "y", .mode = ZipWriter::link}), "");
}

TEST_F(ArchiveListingTest, RefusesEntriesBelowFilesAndTheSameNameTwice) {
    const auto two = [&](const std::string& first, const std::string& second) {
        return static_cast<bool>(
            list(ZipWriter().add({.name = first, .content = "x"}).add({.name = second, .content = "y"}).bytes()));
    };
    EXPECT_TRUE(two("a", "b"));
    EXPECT_FALSE(two("a", "a"));
    EXPECT_FALSE(two("a", "A"));
    EXPECT_FALSE(two("a", "a/b"));
    EXPECT_FALSE(two("A/b", "a"));
    EXPECT_TRUE(two("a/b", "a/c"));
}

TEST_F(ArchiveListingTest, RefusesEncryptedAndUnknownPacking) {
    EXPECT_NE(failureOf({.name = "x", .content = "y", .flags = 1}), "");
    EXPECT_NE(failureOf({.name = "x", .content = "y", .flags = 8}), "");
    EXPECT_NE(failureOf({.name = "x", .content = "y", .flags = 0x2000}), "");
}

TEST_F(ArchiveListingTest, RefusesMoreThanTheLimits) {
    EXPECT_EQ(failureOf({.name = "x", .content = std::string(1U << 20, 'x')}), "");
    EXPECT_EQ(failureOf({.name = "x", .content = std::string((1U << 20) + 1, 'x')}),
              "it would unpack to 1048577 bytes");
    EXPECT_NE(failureOf({.name = "x", .content = std::string(1000, 'x'), .deflate = true, .claimedSize = 999}), "");
    EXPECT_NE(failureOf({.name = "x", .content = std::string(1000, 'x'), .deflate = true, .claimedSize = 1001}), "");
    ZipWriter many;
    for (int i = 0; i <= 100; ++i) {
        many.add({.name = std::to_string(i), .content = ""});
    }
    EXPECT_FALSE(list(many.bytes()));
}

TEST_F(ArchiveListingTest, TheLimitGrowsWithTheArchive) {
    constexpr std::uint64_t mebibyte = 1U << 20;
    EXPECT_EQ(ArchiveLimits::forArchiveOf(0).unpackedBytes, 64 * mebibyte);
    EXPECT_EQ(ArchiveLimits::forArchiveOf(100 * mebibyte).unpackedBytes, 2000 * mebibyte);
    EXPECT_EQ(ArchiveLimits::forArchiveOf(2048 * mebibyte).unpackedBytes, 8192 * mebibyte);
}

TEST_F(ArchiveListingTest, EveryCutOfAnArchiveIsRefused) {
    const auto bytes = ZipWriter()
                           .add({.name = "V.app/a", .content = "12345", .deflate = true})
                           .add({.name = "V.app/l", .content = "a", .mode = ZipWriter::link})
                           .bytes();
    ASSERT_TRUE(list(bytes));
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_FALSE(list(bytes.substr(0, length))) << length;
        EXPECT_FALSE(list(bytes.substr(bytes.size() - length))) << length;
    }
    EXPECT_FALSE(list(bytes + "x"));
    EXPECT_FALSE(list("x" + bytes));
}

TEST_F(ArchiveListingTest, NoSingleChangedByteBringsItDown) {
    const auto bytes = ZipWriter()
                           .add({.name = "V.app/a", .content = "12345 12345 12345", .deflate = true})
                           .add({.name = "V.app/l", .content = "a", .mode = ZipWriter::link})
                           .bytes();
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        for (const int change : {0x01, 0x80, 0xff}) {
            auto changed = bytes;
            changed[at] = static_cast<char>(changed[at] ^ change);
            const auto listing = list(changed);
            EXPECT_TRUE(!listing || listing->size() == 2) << at;
        }
    }
}

TEST_F(ArchiveListingTest, ACancelledLookStops) {
    writeContent(directory / "a.zip", ZipWriter().add({.name = "a", .content = "x"}).bytes());
    Cancellation cancelled;
    cancelled.request();
    EXPECT_FALSE(listArchive(directory / "a.zip", {.unpackedBytes = 100, .entries = 10}, cancelled));
}

TEST_F(ArchiveListingTest, AFileThatIsNotThereFailsInTheSystemsWords) {
    const auto listing = listArchive("/nowhere.zip", {}, Cancellation());
    ASSERT_FALSE(listing);
    EXPECT_EQ(listing.error().message, "/nowhere.zip: No such file or directory");
}

}  // namespace
}  // namespace velmora::test
