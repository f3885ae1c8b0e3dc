#include "base/Sha256.h"
#include "fakes/TemporaryDirectory.h"
#include "update/Checksum.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

TEST(Checksum, LettersCaseDoesNotMatter) {
    EXPECT_TRUE(isSameChecksum("00ffab", "00ffab"));
    EXPECT_TRUE(isSameChecksum("00ffab", "00FFaB"));
    EXPECT_FALSE(isSameChecksum("00ffab", "00ffa"));
    EXPECT_FALSE(isSameChecksum("00ffab", "00ffab "));
    EXPECT_FALSE(isSameChecksum("00ffab", "00ffac"));
}

TEST(Checksum, OfBytesAndOfAFileAsTheStandardHasIt) {
    const char* const expected = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
    const TemporaryDirectory directory;
    writeContent(directory / "abc", "abc");
    EXPECT_EQ(sha256("abc"), expected);
    EXPECT_EQ(*sha256OfFile(directory / "abc", Cancellation()), expected);
}

TEST(Checksum, OfAFileThatIsLargerThanABuffer) {
    const TemporaryDirectory directory;
    const std::string content(1'000'003, 'v');
    writeContent(directory / "large", content);
    EXPECT_EQ(*sha256OfFile(directory / "large", Cancellation()), sha256(content));
}

TEST(Checksum, OfAFileThatCannotBeReadFails) {
    const TemporaryDirectory directory;
    std::filesystem::create_symlink("/dev/zero", directory / "link");
    EXPECT_FALSE(sha256OfFile(directory / "nothing", Cancellation()));
    EXPECT_FALSE(sha256OfFile(directory / "link", Cancellation()));
    EXPECT_FALSE(sha256OfFile(directory.path(), Cancellation()));
    Cancellation cancelled;
    cancelled.request();
    writeContent(directory / "file", "content");
    EXPECT_FALSE(sha256OfFile(directory / "file", cancelled));
}

}  // namespace
}  // namespace velmora
