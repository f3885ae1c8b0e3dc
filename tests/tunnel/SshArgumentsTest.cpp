#include "base/Text.h"
#include "tunnel/SshArguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace velmora {
namespace {

using Arguments = std::vector<std::string>;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr auto home = "/home/anna";

SSHHost defaultHost() {
    SSHHost host;
    host.username = "anna";
    host.hostname = "server.example";
    return host;
}

Arguments launched(const SSHHost& host, const SshSettings& settings = {},
                   AskpassPrepared askpass = AskpassPrepared::no) {
    return sshArguments(host, settings, home, askpass);
}

/// The value that follows a flag, or "none".
std::string valueOf(const Arguments& arguments, const std::string& flag) {
    const auto found = std::find(arguments.begin(), arguments.end(), flag);
    return found == arguments.end() ? "none" : *std::next(found);
}

TEST(SshArguments, OfADefaultHost) {
    const Arguments expected{"-N",
                             "-p",
                             "22",
                             "-o",
                             "StrictHostKeyChecking=no",
                             "-o",
                             "UserKnownHostsFile=/dev/null",
                             "-o",
                             "ServerAliveInterval=60",
                             "-o",
                             "ServerAliveCountMax=3",
                             "-o",
                             "ConnectTimeout=30",
                             "anna@server.example"};
    EXPECT_EQ(launched(defaultHost()), expected);
    EXPECT_EQ(sshCommand(defaultHost(), {}), "ssh " + join(expected, " "));
}

TEST(SshArguments, OfAnAliasLeaveTheServerToTheUsersConfiguration) {
    auto host = defaultHost();
    host.useSSHConfigAlias = true;
    host.port = 2200;
    host.identityFile = "~/.ssh/id";
    host.proxyJump = "jump";
    EXPECT_THAT(launched(host, {.globalProxyJumpEnabled = true, .globalProxyJump = "global"}),
                ElementsAre("-N", "-o", "ServerAliveInterval=60", "-o", "ServerAliveCountMax=3", "-o",
                            "ConnectTimeout=30", "server.example"));
}

TEST(SshArguments, WithAnAskpassScriptBeginWithThePasswordOptions) {
    auto host = defaultHost();
    host.authMethod = AuthMethod::password;
    const auto arguments = launched(host, {}, AskpassPrepared::yes);
    EXPECT_EQ(Arguments(arguments.begin(), arguments.begin() + 5),
              (Arguments{"-o", "IdentitiesOnly=yes", "-o", "NumberOfPasswordPrompts=1", "-N"}));
    EXPECT_THAT(sshCommand(host, {}), testing::StartsWith("ssh -N "));
}

TEST(SshArguments, AHostsOwnJumpHostWinsOverTheGlobalOne) {
    auto host = defaultHost();
    host.proxyJump = "own";
    EXPECT_EQ(valueOf(launched(host, {.globalProxyJumpEnabled = true, .globalProxyJump = "global"}), "-J"), "own");
    EXPECT_EQ(valueOf(launched(host), "-J"), "own");
}

TEST(SshArguments, TheGlobalJumpHostServesHostsWithoutOne) {
    const auto host = defaultHost();
    EXPECT_EQ(valueOf(launched(host, {.globalProxyJumpEnabled = true, .globalProxyJump = "global"}), "-J"), "global");
    EXPECT_EQ(valueOf(launched(host, {.globalProxyJumpEnabled = false, .globalProxyJump = "global"}), "-J"), "none");
}

TEST(SshArguments, AnEmptyGlobalJumpHostIsNone) {
    EXPECT_THAT(launched(defaultHost(), {.globalProxyJumpEnabled = true, .globalProxyJump = ""}), Not(Contains("-J")));
}

TEST(SshArguments, CustomOptionsAreTrimmedLinesThatAreNotEmpty) {
    auto host = defaultHost();
    host.customOptions = "  ForwardAgent=yes\n\n\tLogLevel=ERROR";
    const auto arguments = launched(host);
    EXPECT_EQ(Arguments(arguments.end() - 5, arguments.end()),
              (Arguments{"-o", "ForwardAgent=yes", "-o", "LogLevel=ERROR", "anna@server.example"}));
}

TEST(SshArguments, CustomOptionsKeepCarriageReturnsAndInnerSpaces) {
    auto host = defaultHost();
    host.customOptions = "LogLevel ERROR\r\nA=b";
    const auto arguments = launched(host);
    EXPECT_THAT(arguments, Contains("LogLevel ERROR\r"));
    EXPECT_THAT(arguments, Contains("A=b"));
}

TEST(SshArguments, RulesStandInListOrderAfterPerformanceAndBeforeCustomOptions) {
    auto host = defaultHost();
    host.compression = true;
    host.customOptions = "A=b";
    ForwardingRule disabled;
    disabled.type = ForwardingType::dynamic;
    disabled.bindPort = 1;
    disabled.enabled = false;
    ForwardingRule incomplete;
    incomplete.bindPort = 2;
    incomplete.targetAddress = "x";
    ForwardingRule remote;
    remote.type = ForwardingType::remote;
    remote.bindPort = 3;
    remote.targetAddress = "x";
    remote.targetPort = 4;
    ForwardingRule dynamic;
    dynamic.type = ForwardingType::dynamic;
    dynamic.bindPort = 5;
    host.forwardingRules = {disabled, incomplete, remote, dynamic};
    const auto arguments = launched(host, {.performanceMode = true});
    const Arguments expectedTail{"-C",
                                 "-o",
                                 "GSSAPIAuthentication=no",
                                 "-o",
                                 "Ciphers=aes128-gcm@openssh.com,chacha20-poly1305@openssh.com,aes256-gcm@openssh.com",
                                 "-o",
                                 "IPQoS=lowdelay throughput",
                                 "-R",
                                 "3:x:4",
                                 "-D",
                                 "5",
                                 "-o",
                                 "A=b",
                                 "anna@server.example"};
    EXPECT_EQ(Arguments(arguments.end() - static_cast<std::ptrdiff_t>(expectedTail.size()), arguments.end()),
              expectedTail);
}

TEST(SshArguments, TheIdentityFileIsExpandedForSshOnly) {
    auto host = defaultHost();
    host.identityFile = "~/.ssh/id";
    EXPECT_EQ(valueOf(launched(host), "-i"), "/home/anna/.ssh/id");
    EXPECT_THAT(sshCommand(host, {}), testing::HasSubstr(" -i ~/.ssh/id "));
    host.identityFile = "~";
    EXPECT_EQ(valueOf(launched(host), "-i"), "/home/anna");
    host.identityFile = "/keys/~/id";
    EXPECT_EQ(valueOf(launched(host), "-i"), "/keys/~/id");
    host.identityFile = "~bob/id";
    EXPECT_EQ(valueOf(launched(host), "-i"), "~bob/id");
}

TEST(SshArguments, PasswordHostsNeverNameAnIdentityFile) {
    auto host = defaultHost();
    host.identityFile = "/id";
    host.authMethod = AuthMethod::password;
    EXPECT_THAT(launched(host), Not(Contains("-i")));
}

TEST(SshArguments, StrictCheckingAndSessionsAddNothing) {
    auto host = defaultHost();
    host.strictHostKeyChecking = true;
    host.noSessionRequest = false;
    host.username.clear();
    host.serverAliveInterval = 0;
    host.serverAliveCountMax = -2;
    host.connectTimeout = -1;
    EXPECT_THAT(launched(host), ElementsAre("-p", "22", "-o", "ServerAliveInterval=0", "-o", "ServerAliveCountMax=-2",
                                            "-o", "ConnectTimeout=-1", "server.example"));
}

TEST(SshCommand, QuotesNothing) {
    EXPECT_THAT(sshCommand(defaultHost(), {.performanceMode = true}),
                testing::HasSubstr("-o IPQoS=lowdelay throughput anna@"));
}

}  // namespace
}  // namespace velmora
