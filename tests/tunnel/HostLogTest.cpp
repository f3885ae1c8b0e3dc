#include "base/UniqueFd.h"
#include "fakes/ResourceLimit.h"
#include "fakes/TemporaryDirectory.h"
#include "tunnel/HostLog.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>

namespace velmora {
namespace {

TEST(HostLog, StandsUnderTheNameAsItIs) {
    EXPECT_EQ(hostLogPath("/logs", "prod db"), "/logs/prod db.log");
    EXPECT_EQ(hostLogPath("/logs", "a/b"), "/logs/a/b.log");
    EXPECT_EQ(hostLogPath("/logs", "/etc/x").string(), "/logs//etc/x.log");
    EXPECT_EQ(hostLogPath("/logs", ""), "/logs/.log");
}

TEST(HostLog, OnlyGrows) {
    const TemporaryDirectory directory;
    appendToLog(directory / "a.log", "one\n");
    appendToLog(directory / "a.log", std::string("two\0\xFF\n", 6));
    EXPECT_EQ(contentOf(directory / "a.log"), std::string("one\ntwo\0\xFF\n", 10));
    EXPECT_EQ(modeOf(directory / "a.log"), 0600);
}

TEST(HostLog, WhatCannotBeWrittenIsIgnored) {
    const TemporaryDirectory directory;
    ASSERT_EQ(::mkfifo((directory / "fifo.log").c_str(), 0600), 0);
    appendToLog(directory / "fifo.log", "nobody reads");
    appendToLog(directory.path(), "a folder");
    appendToLog(directory / "none" / "a.log", "no folder");
    EXPECT_FALSE(std::filesystem::exists(directory / "none"));
}

TEST(HostLog, AFifoIsNoLogEvenWhenSomebodyReadsIt) {
    const TemporaryDirectory directory;
    ASSERT_EQ(::mkfifo((directory / "fifo.log").c_str(), 0600), 0);
    const UniqueFd reader(::open((directory / "fifo.log").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    appendToLog(directory / "fifo.log", "who writes here ends with the reader");
    char byte = 0;
    EXPECT_EQ(::read(reader.get(), &byte, 1), 0);
}

TEST(HostLog, ANameWithAZeroByteHasNoLogAndNamesNoOtherFile) {
    const TemporaryDirectory directory;
    writeContent(directory / "precious", "mine");
    const auto log = hostLogPath(directory.path(), std::string("precious\0x", 10));
    appendToLog(log, "ssh said this\n");
    EXPECT_EQ(contentOf(directory / "precious"), "mine");
    EXPECT_EQ(exitReason(log, 255), "Exited (code 255)") << "and does not tell what stands there";
}

TEST(HostLog, AReasonThatIsLongEnoughIsNotReadToItsEnd) {
    const TemporaryDirectory directory;
    for (const std::string before : {"", "debug1: not this one\n"}) {
        const auto file = directory / "a.log";
        writeContent(file, before + std::string(5000, 'x'));
        std::filesystem::resize_file(file, std::uintmax_t{1} << 40);  // a hole, which takes no room but is long to read
        EXPECT_EQ(exitReason(file, 1), std::string(4096, 'x'));
    }
}

TEST(HostLog, ALongLineThatIsNoReasonIsLeftOutWhole) {
    const TemporaryDirectory directory;
    writeContent(directory / "a.log", "debug1: " + std::string(200000, 'x') + "\nthe reason\n");
    EXPECT_EQ(exitReason(directory / "a.log", 1), "the reason");
}

TEST(HostLog, OnAFullDiskItHoldsWhatHadRoom) {
    const TemporaryDirectory directory;
    ::signal(SIGXFSZ, SIG_IGN);
    {
        const ResourceLimit noMoreThan(RLIMIT_FSIZE, 10);
        appendToLog(directory / "a.log", "ssh: first line\n");
        appendToLog(directory / "a.log", "ssh: second line\n");
    }
    ::signal(SIGXFSZ, SIG_DFL);
    EXPECT_EQ(contentOf(directory / "a.log"), "ssh: first");
    EXPECT_EQ(exitReason(directory / "a.log", 255), "ssh: first");
}

struct ReasonCase {
    std::string name;
    std::string log;
    std::string reason;
};

class ExitReason : public testing::TestWithParam<ReasonCase> {};

TEST_P(ExitReason, IsTheFirstLineThatSshWroteForPeople) {
    const TemporaryDirectory directory;
    writeContent(directory / "a.log", GetParam().log);
    EXPECT_EQ(exitReason(directory / "a.log", 255), GetParam().reason);
}

const std::string ours = "Exited (code 255)";

INSTANTIATE_TEST_SUITE_P(
    Table, ExitReason,
    testing::Values(ReasonCase{"EmptyLog", "", ours},
                    ReasonCase{"OnlyOurLinesAndDebug",
                               "[2026-01-01 00:00:00 +0000] ssh x\ndebug1: y\ndebug3: z\n[exit 255]\n", ours},
                    ReasonCase{"WarningsAreNoReason", "Warning: Permanently added 'x'\nboom\n", "boom"},
                    ReasonCase{"TheLineOfAnEarlierRunStillCounts",
                               "[a] ssh x\nold error\n[exit 255]\n[b] ssh x\nnew error\n[exit 255]\n", "old error"},
                    ReasonCase{"LinesAreTrimmed", "\n \t \r\n\t Connection closed \r\n", "Connection closed"},
                    ReasonCase{"TrimmingComesBeforeLooking", "  [not a reason]\n  Warning: x\n  debug\nreal\n", "real"},
                    ReasonCase{"WithoutALineFeedAtTheEnd", "last words", "last words"},
                    ReasonCase{"CaseCounts", "warning: x\n", "warning: x"},
                    ReasonCase{"InvalidUtf8IsKept", "bad \xFF byte\n", "bad \xFF byte"},
                    ReasonCase{"UnicodeSpacesAreTrimmed", "\xC2\xA0\n\xE3\x80\x80x\n", "x"}),
    [](const auto& each) { return each.param.name; });

TEST(HostLog, AReasonOnTheBorderOfTwoBlocksIsWhole) {
    const TemporaryDirectory directory;
    for (const std::size_t before : {65530U, 65535U, 65536U, 65537U}) {
        std::filesystem::remove(directory / "a.log");
        writeContent(directory / "a.log", "[" + std::string(before - 2, 'x') + "\nthe reason\nanother\n");
        EXPECT_EQ(exitReason(directory / "a.log", 1), "the reason") << before;
    }
}

TEST(HostLog, AReasonWithoutEndIsCut) {
    const TemporaryDirectory directory;
    writeContent(directory / "a.log", std::string(300000, ' ') + std::string(300000, 'x'));
    EXPECT_EQ(exitReason(directory / "a.log", 1), std::string(4096, 'x'));
}

TEST(HostLog, AReasonIsFoundBehindAnyAmountOfWhiteSpace) {
    const TemporaryDirectory directory;
    for (const std::string blank : {" ", "\t", "\xC2\xA0", "\xE3\x80\x80"}) {
        for (const std::size_t before : {1000U, 4095U, 4096U, 4097U, 30000U, 65535U, 65536U, 100000U}) {
            std::string log;
            for (std::size_t i = 0; i < before; ++i) {
                log += blank;
            }
            writeContent(directory / "a.log", log + "the reason\nanother\n");
            EXPECT_EQ(exitReason(directory / "a.log", 1), "the reason") << before;
            writeContent(directory / "a.log", log + "[no reason\nanother\n");
            EXPECT_EQ(exitReason(directory / "a.log", 1), "another") << before;
        }
    }
}

TEST(HostLog, AReasonIsCutBetweenCharacters) {
    const TemporaryDirectory directory;
    for (const std::string character : {"x", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
        for (const std::size_t before : {0U, 1U, 2U, 3U}) {
            std::string line(before, 'x');
            const auto whole = line.size() + (4096 - line.size()) / character.size() * character.size();
            while (line.size() < 5000) {
                line += character;
            }
            writeContent(directory / "a.log", line);
            EXPECT_EQ(exitReason(directory / "a.log", 1), line.substr(0, whole)) << character << before;
        }
    }
}

TEST(HostLog, WhatIsNoFileHasNoReason) {
    const TemporaryDirectory directory;
    ASSERT_EQ(::mkfifo((directory / "fifo.log").c_str(), 0600), 0);
    EXPECT_EQ(exitReason(directory / "fifo.log", 7), "Exited (code 7)");
    EXPECT_EQ(exitReason(directory.path(), 7), "Exited (code 7)");
    EXPECT_EQ(exitReason(directory / "none.log", 7), "Exited (code 7)");
}

}  // namespace
}  // namespace velmora
