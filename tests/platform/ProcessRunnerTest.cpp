#include "fakes/TemporaryDirectory.h"
#include "platform/posix/SystemProcessRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {
namespace {

using testing::HasSubstr;

TEST(ProcessRunner, ReturnsStatusAndBothStreams) {
    SystemProcessRunner runner;
    const auto output = runner.run("/bin/sh", {"-c", "echo out; echo err >&2; exit 3"});
    ASSERT_TRUE(output);
    EXPECT_EQ(output->status, 3);
    EXPECT_EQ(output->standardOutput, "out\n");
    EXPECT_EQ(output->standardError, "err\n");
}

TEST(ProcessRunner, ReadsMuchFromBothStreamsWithoutADeadLock) {
    SystemProcessRunner runner;
    const auto output = runner.run("/bin/sh", {"-c", "head -c 1000000 /dev/zero >&2; head -c 1000000 /dev/zero"});
    ASSERT_TRUE(output);
    EXPECT_EQ(output->standardOutput.size(), 1000000U);
    EXPECT_EQ(output->standardError.size(), 1000000U);
}

TEST(ProcessRunner, KeepsABoundedPart) {
    SystemProcessRunner runner;
    const auto output = runner.run("/bin/sh", {"-c", "head -c 9000000 /dev/zero"});
    ASSERT_TRUE(output);
    EXPECT_EQ(output->standardOutput.size(), std::size_t{4} << 20);
    EXPECT_EQ(output->status, 0);
}

TEST(ProcessRunner, DoesNotWaitForAnHeir) {
    SystemProcessRunner runner;
    const auto output = runner.run("/bin/sh", {"-c", "sleep 600 & echo $!"});
    ASSERT_TRUE(output);
    const auto heir = static_cast<pid_t>(std::stol(output->standardOutput));
    EXPECT_EQ(::kill(heir, SIGKILL), 0);
}

TEST(ProcessRunner, HandsOnTheEnvironmentAndAnEmptyInput) {
    ::setenv("VELMORA_TEST_VALUE", "a=b", 1);
    SystemProcessRunner runner;
    const auto output = runner.run("/bin/sh", {"-c", "printf %s \"$VELMORA_TEST_VALUE\"; cat"});
    ASSERT_TRUE(output);
    EXPECT_EQ(output->standardOutput, "a=b");
    EXPECT_EQ(currentEnvironment().at("VELMORA_TEST_VALUE"), "a=b");
}

TEST(ProcessRunner, JoinsBothStreamsInTheOrderOfTheirWords) {
    SystemProcessRunner runner;
    const auto output = runner.runJoined("/bin/sh", {"-c", "echo one; echo two >&2; echo three; exit 4"}, "/dev/null");
    ASSERT_TRUE(output);
    EXPECT_EQ(output->status, 4);
    EXPECT_EQ(output->standardOutput, "one\ntwo\nthree\n");
    EXPECT_EQ(output->standardError, "");
}

TEST(ProcessRunner, ReadsStandardInputFromAFile) {
    const TemporaryDirectory directory;
    writeContent(directory / "input", "as given");
    SystemProcessRunner runner;
    const auto output = runner.runJoined("/bin/cat", {}, directory / "input");
    ASSERT_TRUE(output);
    EXPECT_EQ(output->standardOutput, "as given");
    EXPECT_FALSE(runner.runJoined("/bin/cat", {}, directory / "nothing"));
}

TEST(ProcessRunner, TellsTheSignalThatEndedAProgram) {
    SystemProcessRunner runner;
    const auto output = runner.runJoined("/bin/sh", {"-c", "kill -SEGV $$"}, "/dev/null");
    ASSERT_TRUE(output);
    EXPECT_EQ(output->status, SIGSEGV);
}

TEST(ProcessRunner, AProgramThatIsNotThereFails) {
    SystemProcessRunner runner;
    const auto output = runner.run("/bin/launchctl-is-not-here", {});
    ASSERT_FALSE(output);
    EXPECT_THAT(output.error().message, HasSubstr("No such file or directory"));
}

}  // namespace
}  // namespace velmora
