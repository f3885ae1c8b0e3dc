#include "e2e/TunnelStand.h"
#include "fixtures/FreePort.h"
#include "fixtures/PageServer.h"
#include "fixtures/Processes.h"
#include "fixtures/Sshd.h"
#include "fixtures/Transfer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace velmora {
namespace {

using namespace std::chrono_literals;
using testing::AnyOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using State = ConnectionStatus::State;

/// What becomes of a tunnel when the network, the server or the user act on it.
class SupervisionTest : public testing::Test {
protected:
    SSHHost tunnelHost() const {
        SSHHost host = hostAt(sshd_);
        host.forwardingRules = {localRule(port_, server_.port())};
        return host;
    }

    bool carriesBytes() { return fetch(port_) == server_.page(); }

    /// Connects and expects ssh to give up before it counts as connected. The status text that follows.
    std::string failureOf(const SSHHost& host) {
        bool wasConnected = false;
        const auto watch = stand_.manager().statuses().observe(
            [&] { wasConnected |= stand_.manager().status(host.id).state == State::connected; });
        stand_.connect(host);
        EXPECT_TRUE(stand_.waitForState(host, State::error));
        EXPECT_FALSE(wasConnected);
        EXPECT_THAT(TunnelStand::sshProcesses(), IsEmpty());
        return stand_.manager().status(host.id).message;
    }

    Sshd sshd_;
    PageServer server_{pageOf(1000)};
    const std::uint16_t port_ = freePort();
    TunnelStand stand_;
};

TEST_F(SupervisionTest, keyLoginConnectsAfterThreeSecondsAndEndsOnDisconnect) {
    const SSHHost host = tunnelHost();
    const auto start = std::chrono::steady_clock::now();
    stand_.connect(host);
    EXPECT_EQ(stand_.manager().status(host.id), ConnectionStatus::connecting());
    ASSERT_TRUE(stand_.waitForState(host, State::connected));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 3s);
    EXPECT_EQ(stand_.manager().uptimeString(host.id), "< 1m");
    EXPECT_TRUE(carriesBytes());
    EXPECT_THAT(stand_.log(host), HasSubstr("] ssh -N -p " + std::to_string(sshd_.port()) + " -i "));

    stand_.manager().disconnect(host);
    EXPECT_EQ(stand_.manager().status(host.id), ConnectionStatus::disconnected());
    EXPECT_TRUE(
        stand_.waitUntil([&] { return stand_.log(host).ends_with("]\n") && TunnelStand::sshProcesses().empty(); }));
    EXPECT_THAT(stand_.log(host), HasSubstr("[exit "));
    EXPECT_FALSE(isListening(port_));
    EXPECT_TRUE(stand_.waitUntil([&] { return sshd_.connectionProcesses().empty(); }));
    EXPECT_EQ(stand_.manager().status(host.id), ConnectionStatus::disconnected());
}

TEST_F(SupervisionTest, droppedConnectionComesBackByItself) {
    const SSHHost host = tunnelHost();
    stand_.connect(host);
    ASSERT_TRUE(stand_.waitForState(host, State::connected));
    ASSERT_TRUE(carriesBytes());

    sshd_.dropConnections();
    ASSERT_TRUE(stand_.waitForState(host, State::error));
    const auto dropped = std::chrono::steady_clock::now();
    // Which of the two ssh says depends on whether it was reading or writing at that moment.
    EXPECT_THAT(stand_.manager().status(host.id).message,
                AnyOf("Reconnecting in 5s… (Connection to 127.0.0.1 closed by remote host.)",
                      "Reconnecting in 5s… (client_loop: send disconnect: Broken pipe)"));
    EXPECT_FALSE(isListening(port_));

    ASSERT_TRUE(stand_.waitUntil([&] { return isListening(port_); }));
    const auto away = std::chrono::steady_clock::now() - dropped;
    EXPECT_GE(away, 4900ms);
    EXPECT_LT(away, 9s);
    EXPECT_TRUE(carriesBytes());
    EXPECT_TRUE(stand_.waitForState(host, State::connected));
}

TEST_F(SupervisionTest, frozenServerIsNoticedByTheKeepAlive) {
    SSHHost host = tunnelHost();
    host.serverAliveInterval = 1;
    host.serverAliveCountMax = 2;
    stand_.connect(host);
    ASSERT_TRUE(stand_.waitUntil([&] { return isListening(port_); }));

    sshd_.freezeConnections();
    ASSERT_TRUE(stand_.waitForState(host, State::error));
    EXPECT_EQ(stand_.manager().status(host.id).message,
              "Reconnecting in 5s… (Timeout, server 127.0.0.1 not responding.)");
}

TEST_F(SupervisionTest, serverThatAcceptsAndNeverAnswersRunsIntoTheTimeout) {
    SSHHost host = tunnelHost();
    host.connectTimeout = 1;
    sshd_.freezeListener();
    EXPECT_EQ(failureOf(host), "Reconnecting in 5s… (Connection timed out during banner exchange)");
}

TEST_F(SupervisionTest, refusedConnection) {
    SSHHost host = tunnelHost();
    sshd_.stop();
    EXPECT_EQ(failureOf(host), "Reconnecting in 5s… (ssh: connect to host 127.0.0.1 port " +
                                   std::to_string(sshd_.port()) + ": Connection refused)");
}

TEST_F(SupervisionTest, unknownHostName) {
    SSHHost host = tunnelHost();
    host.hostname = "no-such-host.invalid";
    EXPECT_THAT(failureOf(host),
                StartsWith("Reconnecting in 5s… (ssh: Could not resolve hostname no-such-host.invalid: "));
}

TEST_F(SupervisionTest, refusedKey) {
    const TemporaryDirectory directory;
    const auto strangersKey = directory.path() / "key";
    runProgram("/usr/bin/ssh-keygen", {"-q", "-t", "ed25519", "-N", "", "-f", strangersKey});
    SSHHost host = tunnelHost();
    host.identityFile = strangersKey;
    host.customOptions = "IdentitiesOnly=yes";
    EXPECT_EQ(failureOf(host),
              "Reconnecting in 5s… (" + Sshd::userName() + "@127.0.0.1: Permission denied (publickey).)");
}

TEST_F(SupervisionTest, localPortInUseEndsSshWhenItIsToldToExit) {
    SSHHost host = tunnelHost();
    host.forwardingRules = {localRule(server_.port(), server_.port())};
    host.customOptions = "ExitOnForwardFailure=yes";
    EXPECT_EQ(failureOf(host),
              "Reconnecting in 5s… (bind [127.0.0.1]:" + std::to_string(server_.port()) + ": Address already in use)");
}

TEST_F(SupervisionTest, disconnectDuringTheWaitStaysDisconnected) {
    SSHHost host = tunnelHost();
    sshd_.stop();
    failureOf(host);
    stand_.manager().disconnect(host);
    sshd_.restart();
    stand_.run(6s);
    EXPECT_EQ(stand_.manager().status(host.id), ConnectionStatus::disconnected());
    EXPECT_THAT(TunnelStand::sshProcesses(), IsEmpty());
    EXPECT_THAT(sshd_.connectionProcesses(), IsEmpty());
}

TEST_F(SupervisionTest, quitLeavesNoSsh) {
    for (int count = 0; count < 5; ++count) {
        SSHHost host = hostAt(sshd_);
        host.name = "host " + std::to_string(count);
        const auto port = freePort();
        host.forwardingRules = {localRule(port, server_.port())};
        stand_.connect(host);
        ASSERT_TRUE(stand_.waitUntil([&] { return isListening(port); }));
    }
    SSHHost waiting = tunnelHost();
    waiting.port = freePort();
    stand_.connect(waiting);
    ASSERT_TRUE(stand_.waitForState(waiting, State::error));
    ASSERT_THAT(TunnelStand::sshProcesses(), SizeIs(5));

    const auto start = std::chrono::steady_clock::now();
    stand_.quit();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);
    EXPECT_TRUE(stand_.waitUntil([] { return TunnelStand::sshProcesses().empty(); }, 1s));
    EXPECT_TRUE(stand_.waitUntil([&] { return sshd_.connectionProcesses().empty(); }, 1s));
}

}  // namespace
}  // namespace velmora
