#include "base/Pipe.h"
#include "fakes/FakeKqueue.h"
#include "platform/posix/Spawn.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace velmora {
namespace {

class SpawnTest : public testing::Test {
protected:
    SpawnTest() { fakeKqueue() = {}; }

    [[nodiscard]] Result<SpawnedProcess, Error> start(const std::string& program,
                                                      const std::vector<std::string>& arguments) const {
        const Environment environment{{"PATH", "/usr/bin:/bin"}};
        return spawn({.program = program,
                      .arguments = arguments,
                      .environment = environment,
                      .standardInput = nothing.get(),
                      .standardOutput = output.writing.get(),
                      .standardError = nothing.get()});
    }
    [[nodiscard]] static bool isReadable(const UniqueFd& descriptor, int milliseconds) {
        pollfd waiting{.fd = descriptor.get(), .events = POLLIN, .revents = 0};
        return ::poll(&waiting, 1, milliseconds) == 1;
    }
    /// Nothing of the process is left, not even its number.
    static void expectGone(uintptr_t pid) {
        EXPECT_EQ(::kill(static_cast<pid_t>(pid), 0), -1);
        EXPECT_EQ(errno, ESRCH);
    }

    static constexpr int longEnough = 20000;
    const UniqueFd nothing{::open("/dev/null", O_RDWR | O_CLOEXEC)};
    const Pipe output = *makePipe();
};

TEST_F(SpawnTest, theEndOfTheProcessMakesTheDescriptorReadable) {
    const auto process = start("/bin/sh", {"-c", "exit 7"});
    ASSERT_TRUE(process);
    EXPECT_TRUE(isReadable(process->exitDescriptor, longEnough));
    EXPECT_EQ(reap(process->pid), 7);
    ASSERT_EQ(fakeKqueue().changes.size(), 1U);
    EXPECT_EQ(fakeKqueue().changes.front().ident, static_cast<uintptr_t>(process->pid));
}

TEST_F(SpawnTest, theDescriptorIsNotReadableWhileTheProcessRuns) {
    const auto process = start("/bin/sleep", {"1000"});
    ASSERT_TRUE(process);
    EXPECT_FALSE(isReadable(process->exitDescriptor, 0));
    ::kill(process->pid, SIGTERM);
    EXPECT_TRUE(isReadable(process->exitDescriptor, longEnough));
    EXPECT_EQ(reap(process->pid), SIGTERM);
}

TEST_F(SpawnTest, theProcessHasNoOtherDescriptorsAndASessionOfItsOwn) {
    const auto process = start("/bin/sh", {"-c",
                                           "read pid name state parent group session rest </proc/$$/stat; "
                                           "printf '%s' \"$session\""});
    ASSERT_TRUE(process);
    EXPECT_EQ(fakeKqueue().spawnFlags,
              POSIX_SPAWN_CLOEXEC_DEFAULT | POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    EXPECT_EQ(reap(process->pid), 0);
    std::array<char, 100> text{};
    ASSERT_GT(::read(output.reading.get(), text.data(), text.size() - 1), 0);
    EXPECT_EQ(text.data(), std::to_string(process->pid));
}

TEST_F(SpawnTest, aProcessThatEndedBeforeItWasWatchedCountsAsEnded) {
    fakeKqueue().watchRefusal = ESRCH;
    const auto process = start("/bin/true", {});
    ASSERT_TRUE(process);
    EXPECT_TRUE(isReadable(process->exitDescriptor, 0));
    EXPECT_EQ(reap(process->pid), 0);
}

TEST_F(SpawnTest, aProcessThatCannotBeWatchedIsEnded) {
    fakeKqueue().watchRefusal = ENOMEM;
    const auto process = start("/bin/sleep", {"1000"});
    ASSERT_FALSE(process);
    EXPECT_EQ(process.error().message, "Cannot allocate memory");
    ASSERT_EQ(fakeKqueue().changes.size(), 1U);
    expectGone(fakeKqueue().changes.front().ident);
}

TEST_F(SpawnTest, withoutAQueueThereIsNoProcess) {
    fakeKqueue().queueRefusal = EMFILE;
    const auto process = start("/bin/sleep", {"1000"});
    ASSERT_FALSE(process);
    EXPECT_EQ(process.error().message, "Too many open files");
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(SpawnTest, aProgramThatIsNotThereIsAnError) {
    const auto process = start("/nowhere/ssh", {});
    ASSERT_FALSE(process);
    EXPECT_EQ(process.error().message, "No such file or directory");
    EXPECT_TRUE(fakeKqueue().changes.empty());
}

TEST_F(SpawnTest, aZeroByteCannotBePassedOn) {
    const auto process = start("/bin/echo", {std::string("a\0b", 3)});
    ASSERT_FALSE(process);
    EXPECT_EQ(process.error().message, "Invalid argument");
}

}  // namespace
}  // namespace velmora
