#include "e2e/TunnelStand.h"
#include "fixtures/FreePort.h"
#include "fixtures/PageServer.h"
#include "fixtures/Sshd.h"
#include "fixtures/Transfer.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace velmora {
namespace {

constexpr std::size_t fiveMegabytes = 5 * 1024 * 1024;

/// Bytes through a real ssh and a real sshd.
class ForwardingTest : public testing::Test {
protected:
    SSHHost connectWith(ForwardingRule rule) {
        SSHHost host = hostAt(sshd_);
        host.forwardingRules = {std::move(rule)};
        stand_.connect(host);
        return host;
    }

    void expectPage(const std::optional<std::string>& received) {
        ASSERT_TRUE(received.has_value());
        EXPECT_EQ(received->size(), fiveMegabytes);
        EXPECT_EQ(checksum(*received), checksum(server_.page()));
        EXPECT_EQ(server_.requests().size(), 1U);
    }

    Sshd sshd_;
    PageServer server_{pageOf(fiveMegabytes)};
    const std::uint16_t port_ = freePort();
    TunnelStand stand_;
};

TEST_F(ForwardingTest, localRuleCarriesFiveMegabytes) {
    connectWith(localRule(port_, server_.port()));
    ASSERT_TRUE(stand_.waitUntil([&] { return isListening(port_); }));
    expectPage(fetch(port_));
}

TEST_F(ForwardingTest, remoteRuleCarriesFiveMegabytes) {
    connectWith(remoteRule(port_, server_.port()));
    ASSERT_TRUE(stand_.waitUntil([&] { return isListening(port_); }));
    expectPage(fetch(port_));
}

TEST_F(ForwardingTest, dynamicRuleCarriesFiveMegabytesAndLooksNamesUpAtTheServer) {
    connectWith(dynamicRule(port_));
    ASSERT_TRUE(stand_.waitUntil([&] { return isListening(port_); }));
    expectPage(fetchThroughSocks(port_, "localhost", server_.port()));
}

TEST_F(ForwardingTest, disabledRuleBindsNothing) {
    ForwardingRule disabled = localRule(port_, server_.port());
    disabled.enabled = false;
    SSHHost host = hostAt(sshd_);
    host.forwardingRules = {disabled, localRule(freePort(), server_.port())};
    stand_.connect(host);
    const auto enabledPort = static_cast<std::uint16_t>(host.forwardingRules.back().bindPort);
    ASSERT_TRUE(stand_.waitUntil([&] { return isListening(enabledPort); }));
    EXPECT_FALSE(isListening(port_));
}

}  // namespace
}  // namespace velmora
