#include "base/Pipe.h"
#include "fakes/TemporaryDirectory.h"
#include "fakes/Waiting.h"
#include "platform/posix/AsioProcessLauncher.h"
#include "platform/posix/StandardStreams.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <fstream>
#include <mutex>

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// What came from one process.
class Witness final {
public:
    ProcessEvents events() {
        return {[this](std::string_view bytes) {
                    const std::lock_guard lock(mutex_);
                    output_ += bytes;
                },
                [this](int status) {
                    const std::lock_guard lock(mutex_);
                    statuses_.push_back(status);
                    changed_.notify_all();
                }};
    }

    /// The status that the process ended with; -1 when it did not end in time.
    int waitForExit() {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(20), [this] { return !statuses_.empty(); });
        return statuses_.empty() ? -1 : statuses_.front();
    }
    std::string output() const {
        const std::lock_guard lock(mutex_);
        return output_;
    }
    std::vector<int> statuses() const {
        const std::lock_guard lock(mutex_);
        return statuses_;
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::string output_;
    std::vector<int> statuses_;
};

class ProcessLauncherTest : public testing::Test {
protected:
    void TearDown() override {
        launcher_.reset();
        while (::waitpid(-1, nullptr, 0) > 0) {
        }
    }

    Result<std::unique_ptr<ChildProcess>, Error> launch(Environment environment,
                                                        std::vector<std::string> arguments = {},
                                                        const std::string& program = FAKESSH) {
        auto pipe = makePipe();
        stdin_ = std::move(pipe->writing);
        return launcher_->launch({program, std::move(arguments), std::move(environment), std::move(pipe->reading)},
                                 witness_.events());
    }

    std::vector<std::string> dumpedLines() {
        const auto path = directory_ / "dump";
        EXPECT_TRUE(waitFor([&] { return std::filesystem::exists(path); }));
        std::ifstream file(path);
        std::vector<std::string> lines;
        for (std::string line; std::getline(file, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    std::string dumped(const std::string& key) {
        for (const auto& line : dumpedLines()) {
            if (line.starts_with(key)) {
                return line.substr(key.size());
            }
        }
        return "nothing";
    }

    pid_t pid() { return static_cast<pid_t>(std::stol(dumped("pid "))); }

    TemporaryDirectory directory_;
    Witness witness_;
    UniqueFd stdin_;
    IoThread io_;
    std::unique_ptr<AsioProcessLauncher> launcher_ = std::make_unique<AsioProcessLauncher>(io_);
};

TEST_F(ProcessLauncherTest, ArgumentsArriveByteForByte) {
    const std::vector<std::string> arguments{"-N",    "",           "a b",         "it's $HOME",
                                             "\"x\"", "line\nfeed", "caf\xC3\xA9", "\xFF"};
    ASSERT_TRUE(launch({{"FAKESSH_DUMP", directory_ / "dump"}, {"FAKESSH_EXIT", "0"}}, arguments));
    ASSERT_EQ(witness_.waitForExit(), 0);
    std::string expected;
    for (const auto& argument : arguments) {
        expected += "argument " + argument + "\n";
    }
    EXPECT_EQ(contentOf(directory_ / "dump").substr(0, expected.size()), expected);
}

TEST_F(ProcessLauncherTest, TheEnvironmentIsTheGivenOneAndNoMore) {
    ::setenv("VELMORA_TEST_LEAK", "x", 1);
    ASSERT_TRUE(launch({{"FAKESSH_DUMP", directory_ / "dump"}, {"FAKESSH_EXIT", "0"}, {"LANG", "C=D"}}));
    witness_.waitForExit();
    std::vector<std::string> environment;
    for (const auto& line : dumpedLines()) {
        if (line.starts_with("environment ")) {
            environment.push_back(line.substr(12));
        }
    }
    EXPECT_THAT(environment,
                ElementsAre("FAKESSH_DUMP=" + (directory_ / "dump").string(), "FAKESSH_EXIT=0", "LANG=C=D"));
}

TEST_F(ProcessLauncherTest, StandardStreamsArePipesAndNothingElseIsOpen) {
    const auto extra = makePipe();
    ::fcntl(extra->reading.get(), F_SETFD, 0);  // as a careless library would leave it
    ASSERT_TRUE(launch({{"FAKESSH_DUMP", directory_ / "dump"}}));
    EXPECT_EQ(dumped("streams "), "pipe pipe pipe");
    EXPECT_EQ(dumped("descriptors "), "0 1 2");
    EXPECT_EQ(dumped("input "), "open");
    EXPECT_EQ(dumped("session "), "own");
}

TEST_F(ProcessLauncherTest, SignalsAreAsAProgramExpectsThem) {
    ::signal(SIGPIPE, SIG_IGN);
    ::signal(SIGUSR2, SIG_IGN);
    sigset_t blocked;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGUSR1);
    ::sigaddset(&blocked, SIGTERM);
    sigset_t before;
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto process = launch({{"FAKESSH_DUMP", directory_ / "dump"}});
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ::signal(SIGUSR2, SIG_DFL);
    ASSERT_TRUE(process);
    EXPECT_EQ(dumped("SigIgn:"), "\t0000000000000000");
    EXPECT_EQ(dumped("SigBlk:"), "\t0000000000000000");
}

TEST_F(ProcessLauncherTest, StandardErrorArrivesWholeBeforeTheExit) {
    ASSERT_TRUE(launch({{"FAKESSH_SAY", "first\n"}, {"FAKESSH_FLOOD", "3000000"}, {"FAKESSH_EXIT", "255"}}));
    EXPECT_EQ(witness_.waitForExit(), 255);
    EXPECT_EQ(witness_.output(), "first\n" + std::string(3000000, 'x'));
}

TEST_F(ProcessLauncherTest, LastWordsAfterTerminateArrive) {
    auto process = launch({{"FAKESSH_DUMP", directory_ / "dump"}, {"FAKESSH_LAST", "Killed by signal 15.\n"}});
    ASSERT_TRUE(process);
    dumpedLines();
    (*process)->terminate();
    EXPECT_EQ(witness_.waitForExit(), 255);
    EXPECT_EQ(witness_.output(), "Killed by signal 15.\n");
}

TEST_F(ProcessLauncherTest, AProcessEndedByASignalTellsItsNumber) {
    auto process = launch({{"FAKESSH_DUMP", directory_ / "dump"}});
    ASSERT_TRUE(process);
    dumpedLines();
    (*process)->terminate();
    EXPECT_EQ(witness_.waitForExit(), SIGTERM);
    (*process)->terminate();  // and nothing happens any more
    EXPECT_EQ(witness_.statuses(), std::vector<int>{SIGTERM});
}

TEST_F(ProcessLauncherTest, AnHeirThatHoldsThePipesDoesNotHoldUpTheExit) {
    ASSERT_TRUE(launch({{"FAKESSH_HEIR", directory_ / "heir"}, {"FAKESSH_SAY", "bye\n"}, {"FAKESSH_EXIT", "3"}}));
    EXPECT_EQ(witness_.waitForExit(), 3);
    EXPECT_EQ(witness_.output(), "bye\n");
    ::kill(static_cast<pid_t>(std::stol(contentOf(directory_ / "heir"))), SIGKILL);
}

TEST_F(ProcessLauncherTest, AProcessThatClosesStandardErrorIsStillWatched) {
    ASSERT_TRUE(launch({}, {"-c", "echo x >&2; exec 2>&-; exit 4"}, "/bin/sh"));
    EXPECT_EQ(witness_.waitForExit(), 4);
    EXPECT_EQ(witness_.output(), "x\n");
}

struct Failure {
    std::string program;
    std::vector<std::string> arguments;
    std::string message;
};

TEST_F(ProcessLauncherTest, WhatCannotStartIsDescribed) {
    writeContent(directory_ / "plain", "no program");
    const auto long_ = std::string(3 << 20, 'x');
    for (const auto& failure :
         {Failure{directory_ / "none", {}, "No such file or directory"},
          Failure{directory_ / "plain", {}, "Permission denied"}, Failure{directory_.path(), {}, "Permission denied"},
          Failure{FAKESSH, {long_}, "Argument list too long"},
          Failure{FAKESSH, {std::string("a\0b", 3)}, "Invalid argument"}}) {
        const auto result = launch({}, failure.arguments, failure.program);
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error().message, failure.message);
    }
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "no zombie";
}

TEST_F(ProcessLauncherTest, WithoutDescriptorsTheLaunchFails) {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    auto pipe = makePipe();
    const rlimit tight{static_cast<rlim_t>(pipe->writing.get()) + 1, limit.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &tight);
    const auto result = launcher_->launch({FAKESSH, {}, {}, std::move(pipe->reading)}, witness_.events());
    ::setrlimit(RLIMIT_NOFILE, &limit);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().message, "Too many open files");
}

TEST_F(ProcessLauncherTest, TheLauncherEndsWhatStillRunsAndThenIsSilent) {
    auto process = launch({{"FAKESSH_DUMP", directory_ / "dump"}});
    ASSERT_TRUE(process);
    const auto child = pid();
    process->reset();  // nobody knows it but the launcher
    launcher_.reset();
    EXPECT_EQ(::waitpid(child, nullptr, 0), child);
    EXPECT_TRUE(witness_.statuses().empty());
}

TEST_F(ProcessLauncherTest, AProcessThatMissesTerminateIsAskedAgain) {
    auto process = launch({{"FAKESSH_DUMP", directory_ / "dump"}, {"FAKESSH_MISS", "1"}});
    ASSERT_TRUE(process);
    pid();
    (*process)->terminate();
    process->reset();  // also when nobody holds it any more
    EXPECT_EQ(witness_.waitForExit(), SIGTERM);
}

TEST_F(ProcessLauncherTest, AProcessThatIgnoresTerminateRunsOn) {
    auto process = launch({{"FAKESSH_DUMP", directory_ / "dump"}, {"FAKESSH_IGNORE", "1"}});
    ASSERT_TRUE(process);
    const auto child = pid();
    (*process)->terminate();
    EXPECT_EQ(::kill(child, 0), 0);
    ::kill(child, SIGKILL);
    EXPECT_EQ(witness_.waitForExit(), SIGKILL);
}

TEST_F(ProcessLauncherTest, ACrashOfTheParentEndsTheProcess) {
    const auto dump = directory_ / "dump";
    const pid_t parent = ::fork();
    if (parent == 0) {
        // A fresh program with threads of its own, as after a start.
        IoThread io;
        AsioProcessLauncher launcher(io);
        auto pipe = makePipe();
        (void)launcher.launch({FAKESSH, {}, {{"FAKESSH_DUMP", dump}}, std::move(pipe->reading)},
                              {[](std::string_view) {}, [](int) {}});
        ::pause();
    }
    const auto child = pid();
    ::kill(parent, SIGKILL);
    ::waitpid(parent, nullptr, 0);
    EXPECT_TRUE(waitFor([&] {
        const auto state = contentOf("/proc/" + std::to_string(child) + "/stat");
        return state.empty() || state.find(") Z ") != std::string::npos;
    }));
}

TEST_F(ProcessLauncherTest, AProgramStartedWithoutStreamsStartsOthersWithTheirs) {
    const auto dump = directory_ / "dump";
    const pid_t parent = ::fork();
    if (parent == 0) {
        for (const int stream : {0, 1, 2}) {
            ::close(stream);
        }
        openMissingStandardStreams();
        IoThread io;
        AsioProcessLauncher launcher(io);
        auto pipe = makePipe();
        (void)launcher.launch({FAKESSH, {}, {{"FAKESSH_DUMP", dump}}, std::move(pipe->reading)},
                              {[](std::string_view) {}, [](int) {}});
        ::pause();
    }
    EXPECT_EQ(dumped("streams "), "pipe pipe pipe");
    EXPECT_EQ(dumped("input "), "open");
    ::kill(parent, SIGKILL);
    ::waitpid(parent, nullptr, 0);
}

TEST_F(ProcessLauncherTest, AProgramWhoseStandardErrorNobodyReadsRunsOn) {
    const pid_t program = ::fork();
    if (program == 0) {
        auto pipe = makePipe();
        pipe->reading.reset();
        ::signal(SIGPIPE, SIG_DFL);
        ignoreBrokenPipes();
        ::_exit(::write(pipe->writing.get(), "a warning\n", 10) < 0 && errno == EPIPE ? 0 : 1);
    }
    int status = -1;
    ::waitpid(program, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST_F(ProcessLauncherTest, AProgramStartedWithItsChildrensEndsIgnoredHearsOfThem) {
    const pid_t program = ::fork();
    if (program == 0) {
        ::signal(SIGCHLD, SIG_IGN);
        keepEndedChildren();
        const pid_t child = ::fork();
        if (child == 0) {
            ::_exit(7);
        }
        int status = -1;
        ::_exit(::waitpid(child, &status, 0) == child && WEXITSTATUS(status) == 7 ? 0 : 1);
    }
    int status = -1;
    ::waitpid(program, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST_F(ProcessLauncherTest, NothingIsLeftOfManyProcesses) {
    const auto descriptors = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    const auto runOne = [&] {
        Witness witness;
        auto pipe = makePipe();
        auto process =
            launcher_->launch({FAKESSH, {}, {{"FAKESSH_EXIT", "1"}}, std::move(pipe->reading)}, witness.events());
        ASSERT_TRUE(process);
        ASSERT_EQ(witness.waitForExit(), 1);
    };
    runOne();  // the I/O thread opens what it needs with its first process
    const auto before = descriptors();
    for (int i = 0; i < 200; ++i) {
        runOne();
    }
    EXPECT_EQ(descriptors(), before);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "no zombie";
}

}  // namespace
}  // namespace velmora
