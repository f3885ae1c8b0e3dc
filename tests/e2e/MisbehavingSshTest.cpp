#include "e2e/TunnelStand.h"
#include "fixtures/Processes.h"

#include <QElapsedTimer>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <memory>
#include <string>

namespace velmora {
namespace {

using namespace std::chrono_literals;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using State = ConnectionStatus::State;

/// What the user sees of an ssh, of files and of names that behave badly.
class MisbehavingSshTest : public testing::Test {
protected:
    void start(const Environment& behaviour, const std::string& program = FAKESSH) {
        stand_ = std::make_unique<TunnelStand>(program, behaviour);
    }

    static SSHHost hostNamed(const std::string& name) {
        SSHHost host;
        host.name = name;
        host.hostname = "server.example";
        return host;
    }

    std::string shown(const SSHHost& host) {
        const auto status = stand_->manager().status(host.id);
        return status.state == State::connected    ? "Connected"
               : status.state == State::connecting ? "Connecting"
               : status.state == State::error      ? status.message
                                                   : "Disconnected";
    }

    /// What the user sees once the first attempt has come to something.
    std::string shownAfterConnecting(const SSHHost& host, std::chrono::milliseconds patience = 15s) {
        stand_->connect(host);
        EXPECT_TRUE(
            stand_->waitUntil([&] { return stand_->manager().status(host.id).state != State::connecting; }, patience));
        return shown(host);
    }

    static std::vector<pid_t> children() { return descendantsOf(::getpid()); }

    TunnelStand& stand() { return *stand_; }

    TemporaryDirectory directory_;
    std::unique_ptr<TunnelStand> stand_;
};

// ---- an ssh of its own mind ----

TEST_F(MisbehavingSshTest, OneThatIgnoresTerminateIsShownAsDisconnectedAndRunsOn) {
    start({{"FAKESSH_IGNORE", "1"}});
    const auto host = hostNamed("a");
    ASSERT_EQ(shownAfterConnecting(host), "Connected");
    const auto stubborn = children();
    ASSERT_THAT(stubborn, SizeIs(1));
    stand().manager().disconnect(host);
    EXPECT_EQ(shown(host), "Disconnected");
    stand().run(3s);  // longer than it is reminded
    EXPECT_EQ(children(), stubborn);
    EXPECT_EQ(shown(host), "Disconnected");

    stand().manager().connect(host);
    EXPECT_THAT(children(), SizeIs(2)) << "a new one is started all the same";
    ::kill(stubborn.front(), SIGKILL);
    ASSERT_TRUE(stand().waitForState(host, State::error));
    EXPECT_EQ(shown(host), "Reconnecting in 5s… (Exited (code 9))");

    const auto before = std::chrono::steady_clock::now();
    const auto left = children();
    stand().quit();
    EXPECT_LT(std::chrono::steady_clock::now() - before, 1s) << "nobody waits for it";
    for (const auto pid : left) {
        ::kill(pid, SIGKILL);
    }
}

TEST_F(MisbehavingSshTest, OneThatClosesStandardErrorIsConnectedAndItsExitIsNoticed) {
    start({{"FAKESSH_MUTE", "1"}});
    const auto host = hostNamed("a");
    ASSERT_EQ(shownAfterConnecting(host), "Connected");
    rusage before{};
    ::getrusage(RUSAGE_SELF, &before);
    stand().run(1s);
    rusage after{};
    ::getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_nvcsw - before.ru_nvcsw, 100) << "the end of the stream wakes nobody again and again";
    ::kill(children().front(), SIGKILL);
    ASSERT_TRUE(stand().waitForState(host, State::error));
    EXPECT_EQ(shown(host), "Reconnecting in 5s… (Exited (code 9))");
}

TEST_F(MisbehavingSshTest, AnHeirThatHoldsThePipesHoldsUpNothing) {
    start({{"FAKESSH_HEIR", directory_ / "heir"}, {"FAKESSH_SAY", "bye\n"}, {"FAKESSH_EXIT", "3"}});
    const auto host = hostNamed("a");
    EXPECT_EQ(shownAfterConnecting(host, 2s), "Reconnecting in 5s… (bye)");
    EXPECT_THAT(stand().log(host), EndsWith("bye\n[exit 3]\n"));
    const auto heir = static_cast<pid_t>(std::stol(contentOf(directory_ / "heir")));
    EXPECT_EQ(::kill(heir, 0), 0) << "it belongs to ssh, not to us";
    ::kill(heir, SIGKILL);
}

TEST_F(MisbehavingSshTest, AGigabyteOfWordsGoesToTheLogAndNowhereElse) {
    const std::uintmax_t gigabyte = 1 << 30;
    start({{"FAKESSH_FLOOD", std::to_string(gigabyte)}, {"FAKESSH_EXIT", "255"}});
    const auto host = hostNamed("a");
    long mostMemory = 0;
    qint64 longestTurn = 0;
    QElapsedTimer sinceBeat;
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, &heart, [&] {
        longestTurn = std::max(longestTurn, sinceBeat.restart());
        mostMemory = std::max(mostMemory, residentKilobytes());
    });
    const auto memoryBefore = residentKilobytes();
    sinceBeat.start();
    heart.start(10);
    stand().connect(host);
    ASSERT_TRUE(stand().waitUntil([&] { return shown(host).starts_with("Reconnecting"); }, 100s));
    EXPECT_EQ(shown(host), "Reconnecting in 5s… (" + std::string(4096, 'x') + ")");
    EXPECT_LT(mostMemory - memoryBefore, 8192);
    EXPECT_LT(longestTurn, 500);
    const auto size = std::filesystem::file_size(stand().manager().logURL(host));
    EXPECT_GE(size, gigabyte);
    EXPECT_LT(size, gigabyte + 4096) << "what ssh wrote, once, and our two lines";
}

// ---- an ssh that does not start ----

TEST_F(MisbehavingSshTest, WhatDoesNotStartSaysWhyAndIsNotTriedAgain) {
    writeContent(directory_ / "plain", "no program");
    writeContent(directory_ / "script", "#!/no/such/interpreter\n");
    std::filesystem::permissions(directory_ / "script", std::filesystem::perms::owner_all);
    for (const auto& [program, text] : {std::pair(directory_ / "none", "No such file or directory"),
                                        {directory_ / "plain", "Permission denied"},
                                        {directory_ / "script", "No such file or directory"},
                                        {directory_.path(), "Permission denied"}}) {
        start({}, program);
        const auto host = hostNamed("a");
        EXPECT_EQ(shownAfterConnecting(host), text) << program;
        EXPECT_THAT(stand().log(host), StartsWith("[2")) << "the command line is there, and no exit";
        EXPECT_THAT(stand().log(host), Not(HasSubstr("[exit")));
        EXPECT_THAT(children(), IsEmpty());
    }
}

TEST_F(MisbehavingSshTest, OptionsThatAreTooLongForTheSystem) {
    start({});
    auto host = hostNamed("a");
    host.customOptions = "SetEnv=" + std::string(200000, 'x');
    EXPECT_EQ(shownAfterConnecting(host), "Argument list too long");
    EXPECT_THAT(children(), IsEmpty());
}

TEST_F(MisbehavingSshTest, WithoutFreeDescriptorsTheHostSaysSoAndCanBeConnectedLater) {
    start({{"FAKESSH_EXIT", "0"}});
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none{3, limit.rlim_max};
    const auto host = hostNamed("a");
    ::setrlimit(RLIMIT_NOFILE, &none);
    stand().connect(host);
    ::setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(shown(host), "Too many open files");
    stand().manager().toggle(host);
    ASSERT_TRUE(stand().waitForState(host, State::error));
    EXPECT_EQ(shown(host), "Reconnecting in 5s… (Exited (code 0))");
}

// ---- logs that cannot be written ----

TEST_F(MisbehavingSshTest, ATunnelWorksWithoutALogAndTellsTheStatusOnly) {
    start({{"FAKESSH_SAY", "boom\n"}, {"FAKESSH_EXIT", "255"}});
    const auto folder = stand().manager().logURL(hostNamed("a"));
    std::filesystem::create_directory(stand().manager().logURL(hostNamed("a folder")));
    ASSERT_EQ(::mkfifo(stand().manager().logURL(hostNamed("a fifo")).c_str(), 0600), 0);
    ASSERT_EQ(::symlink("/dev/full", stand().manager().logURL(hostNamed("a device")).c_str()), 0);
    const auto withoutReason = "Reconnecting in 5s… (Exited (code 255))";
    for (const auto* name : {"a folder", "a fifo", "a device", "no/folder"}) {
        EXPECT_EQ(shownAfterConnecting(hostNamed(name)), withoutReason) << name;
    }
    std::filesystem::remove_all(folder.parent_path());
    EXPECT_EQ(shownAfterConnecting(hostNamed("no place")), withoutReason);
    writeContent(folder.parent_path(), "a file where the folder should be");
    EXPECT_EQ(shownAfterConnecting(hostNamed("no folder")), withoutReason);
}

TEST_F(MisbehavingSshTest, ALogFolderThatRefusesWritesChangesNothingElse) {
    start({{"FAKESSH_SAY", "boom\n"}, {"FAKESSH_EXIT", "255"}});
    const auto folder = stand().manager().logURL(hostNamed("a")).parent_path();
    std::filesystem::remove_all(folder);
    std::filesystem::create_symlink("/proc/self", folder);  // refuses root too
    EXPECT_EQ(shownAfterConnecting(hostNamed("a")), "Reconnecting in 5s… (Exited (code 255))");
}

// ---- names ----

TEST_F(MisbehavingSshTest, ANameIsTheNameOfTheLogWhateverItIs) {
    start({{"FAKESSH_SAY", "boom\n"}, {"FAKESSH_EXIT", "255"}});
    for (const auto& name : {std::string("-rf"), std::string("two\nlines"), std::string(251, 'n'), std::string("..")}) {
        EXPECT_EQ(shownAfterConnecting(hostNamed(name)), "Reconnecting in 5s… (boom)") << name;
        EXPECT_THAT(stand().log(hostNamed(name)), EndsWith("boom\n[exit 255]\n"));
    }
    for (const auto& name : {std::string("a/b"), std::string(300, 'n'), std::string("a\0b", 3)}) {
        EXPECT_EQ(shownAfterConnecting(hostNamed(name)), "Reconnecting in 5s… (Exited (code 255))") << name;
    }
}

/// The real ssh, which does not get as far as the network.
TEST_F(MisbehavingSshTest, AHostNameThatIsNoneIsRefusedBySshAndItsWordsAreShown) {
    start({}, "/usr/bin/ssh");
    const auto shownFor = [&](const std::string& name, const std::string& hostname, const std::string& user = {}) {
        auto host = hostNamed(name);
        host.hostname = hostname;
        host.username = user;
        return shownAfterConnecting(host);
    };
    const std::string again = "Reconnecting in 5s… (";
    EXPECT_THAT(shownFor("slash", "a/b"), StartsWith(again + "ssh: Could not resolve hostname a/b: "));
    EXPECT_THAT(shownFor("long", std::string(300, 'h')), StartsWith(again + "ssh: Could not resolve hostname hhh"));
    EXPECT_THAT(shownFor("dash", "-oProxyCommand=true"), StartsWith(again + "usage: ssh "));
    EXPECT_EQ(shownFor("user", "-oProxyCommand=true", "anna"), again + "hostname contains invalid characters)");
    // The command line in the log has two lines then, and the second is the first that looks like a message.
    EXPECT_EQ(shownFor("newline", "a\nb"), again + "b)");
    EXPECT_EQ(shownFor("zero", std::string("a\0b", 3)), "Invalid argument");
}

}  // namespace
}  // namespace velmora
