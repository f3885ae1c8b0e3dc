#include "base/AtomicFile.h"
#include "fakes/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::size_t entriesIn(const fs::path& directory) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(directory), fs::directory_iterator()));
}

TEST(AtomicFile, ANewFileIsPrivate) {
    const TemporaryDirectory directory;
    ASSERT_TRUE(writeFileAtomically(directory / "file", "content"));
    EXPECT_EQ(contentOf(directory / "file"), "content");
    EXPECT_EQ(modeOf(directory / "file"), 0600);
}

TEST(AtomicFile, AnExistingFileKeepsItsMode) {
    const TemporaryDirectory directory;
    writeContent(directory / "file", "old");
    fs::permissions(directory / "file", static_cast<fs::perms>(0640));
    ASSERT_TRUE(writeFileAtomically(directory / "file", "new"));
    EXPECT_EQ(contentOf(directory / "file"), "new");
    EXPECT_EQ(modeOf(directory / "file"), 0640);
}

TEST(AtomicFile, ASymbolicLinkStaysAndItsTargetIsReplaced) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "elsewhere");
    writeContent(directory / "elsewhere" / "real", "old");
    fs::create_symlink("elsewhere/real", directory / "middle");
    fs::create_symlink(directory / "middle", directory / "link");
    ASSERT_TRUE(writeFileAtomically(directory / "link", "new"));
    EXPECT_TRUE(fs::is_symlink(directory / "link"));
    EXPECT_TRUE(fs::is_symlink(directory / "middle"));
    EXPECT_EQ(contentOf(directory / "elsewhere" / "real"), "new");
}

TEST(AtomicFile, ADanglingLinkMakesItsTarget) {
    const TemporaryDirectory directory;
    fs::create_symlink("later", directory / "link");
    ASSERT_TRUE(writeFileAtomically(directory / "link", "new"));
    EXPECT_EQ(contentOf(directory / "later"), "new");
    EXPECT_TRUE(fs::is_symlink(directory / "link"));
}

TEST(AtomicFile, LinksInACircleAreRefused) {
    const TemporaryDirectory directory;
    fs::create_symlink("b", directory / "a");
    fs::create_symlink("a", directory / "b");
    EXPECT_FALSE(writeFileAtomically(directory / "a", "new"));
}

TEST(AtomicFile, FailuresNameThePathAndLeaveNothingBehind) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "folder");
    const auto missing = writeFileAtomically(directory / "none" / "file", "x");
    ASSERT_FALSE(missing);
    EXPECT_THAT(missing.error().message, HasSubstr("none/file: No such file"));
    const auto folder = writeFileAtomically(directory / "folder", "x");
    ASSERT_FALSE(folder);
    EXPECT_THAT(folder.error().message, HasSubstr("folder: Is a directory"));
    EXPECT_EQ(entriesIn(directory.path()), 1U);
}

TEST(AtomicFile, AReaderSeesOneContentOrTheOther) {
    const TemporaryDirectory directory;
    const std::string a(200000, 'a');
    const std::string b(100000, 'b');
    ASSERT_TRUE(writeFileAtomically(directory / "file", a));
    std::atomic<bool> done = false;
    std::thread writer([&] {
        for (int i = 0; i < 50; ++i) {
            EXPECT_TRUE(writeFileAtomically(directory / "file", i % 2 == 0 ? b : a));
        }
        done = true;
    });
    std::size_t whole = 0;
    while (!done) {
        const auto content = readFile(directory / "file", 1 << 20);
        ASSERT_TRUE(content);
        ASSERT_TRUE(*content == a || *content == b);
        ++whole;
    }
    writer.join();
    EXPECT_GT(whole, 0U);
    EXPECT_EQ(entriesIn(directory.path()), 1U);
}

TEST(AtomicFile, AProcessKilledAtAnyMomentLeavesAWholeFile) {
    const TemporaryDirectory directory;
    const std::string a(300000, 'a');
    const std::string b(300000, 'b');
    ASSERT_TRUE(writeFileAtomically(directory / "file", a));
    for (int round = 0; round < 30; ++round) {
        const pid_t child = ::fork();
        if (child == 0) {
            for (int i = 0;; ++i) {
                (void)writeFileAtomically(directory / "file", i % 2 == 0 ? b : a);
            }
        }
        std::this_thread::sleep_for(std::chrono::microseconds(700 * round));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        const auto content = contentOf(directory / "file");
        ASSERT_TRUE(content == a || content == b) << content.size();
    }
}

TEST(ReadFile, ReadsAWholeFileUpToTheLimit) {
    const TemporaryDirectory directory;
    writeContent(directory / "file", "12345");
    EXPECT_EQ(*readFile(directory / "file", 5), "12345");
    EXPECT_THAT(readFile(directory / "file", 4).error().message, HasSubstr("larger than 4 bytes"));
    writeContent(directory / "empty", "");
    EXPECT_EQ(*readFile(directory / "empty", 0), "");
}

TEST(ReadFile, RefusesWhatIsNoFile) {
    const TemporaryDirectory directory;
    ASSERT_EQ(::mkfifo((directory / "fifo").c_str(), 0600), 0);
    EXPECT_THAT(readFile(directory / "fifo", 10).error().message, HasSubstr("fifo: not a regular file"));
    EXPECT_THAT(readFile(directory.path(), 10).error().message, HasSubstr("not a regular file"));
    EXPECT_THAT(readFile(directory / "none", 10).error().message, HasSubstr("none: No such file"));
}

TEST(ReadFile, RefusesWhatHasAnotherSizeThanItSays) {
    EXPECT_THAT(readFile("/proc/self/status", 10000).error().message, HasSubstr("status: changed while it was read"))
        << "it says that it is empty";
}

TEST(PrivateDirectory, MakesWhatIsMissingAndKeepsWhatIsThere) {
    const TemporaryDirectory directory;
    fs::create_directory(directory / "there");
    fs::permissions(directory / "there", static_cast<fs::perms>(0755));
    ASSERT_TRUE(createPrivateDirectory(directory / "there" / "a" / "b"));
    EXPECT_EQ(modeOf(directory / "there"), 0755);
    EXPECT_EQ(modeOf(directory / "there" / "a"), 0700);
    EXPECT_EQ(modeOf(directory / "there" / "a" / "b"), 0700);
    ASSERT_TRUE(createPrivateDirectory(directory / "there" / "a" / "b"));
    writeContent(directory / "file", "");
    EXPECT_FALSE(createPrivateDirectory(directory / "file" / "below"));
    EXPECT_THAT(createPrivateDirectory(directory / "file" / "below" / "that").error().message,
                HasSubstr("file/below: Not a directory"));
}

}  // namespace
}  // namespace velmora
