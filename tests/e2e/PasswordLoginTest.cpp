#include "e2e/TunnelStand.h"
#include "fixtures/FreePort.h"
#include "fixtures/PageServer.h"
#include "fixtures/PasswordAccount.h"
#include "fixtures/PrivateSession.h"
#include "fixtures/Sshd.h"
#include "fixtures/Transfer.h"
#include "platform/linux/SecretServiceStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace velmora {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;
using State = ConnectionStatus::State;

/// A password from the keyring through ssh to a real account.
class PasswordLoginTest : public testing::Test {
protected:
    void SetUp() override {
        if (geteuid() != 0) {
            ASSERT_EQ(std::getenv("CI"), nullptr) << "must run as root in CI";
            GTEST_SKIP() << "needs root: makes an account of this system and logs in with its password";
        }
        session_ = std::make_unique<PrivateSession>();
        session_->startKeyring();
        account_ = std::make_unique<PasswordAccount>();
        sshd_ = std::make_unique<Sshd>(Sshd::PasswordLogin::allowed);
        credentials_ = std::make_unique<SecretServiceStore>();
        stand_ = std::make_unique<TunnelStand>(*credentials_);
    }

    SSHHost passwordHost() const {
        SSHHost host = hostAt(*sshd_);
        host.username = account_->name();
        host.authMethod = AuthMethod::password;
        host.forwardingRules = {localRule(port_, server_.port())};
        return host;
    }

    PageServer server_{pageOf(5 * 1024 * 1024)};
    const std::uint16_t port_ = freePort();
    std::unique_ptr<PrivateSession> session_;
    std::unique_ptr<PasswordAccount> account_;
    std::unique_ptr<Sshd> sshd_;
    std::unique_ptr<SecretServiceStore> credentials_;
    std::unique_ptr<TunnelStand> stand_;
};

TEST_F(PasswordLoginTest, passwordOfTheKeyringConnectsAndLeavesNoTrace) {
    const SSHHost host = passwordHost();
    stand_->manager().keychain().save(account_->password(), host.id);
    stand_->connect(host);

    const auto files = stand_->askpassFiles();
    ASSERT_THAT(files, SizeIs(1));
    EXPECT_EQ(files.front().extension(), ".sh");
    EXPECT_EQ(modeOf(files.front()), 0700);
    const auto processes = TunnelStand::sshProcesses();
    ASSERT_THAT(processes, SizeIs(1));
    const std::string process = "/proc/" + std::to_string(processes.front());
    EXPECT_THAT(contentOf(process + "/environ"), HasSubstr("SSH_ASKPASS=" + files.front().string()));
    EXPECT_THAT(contentOf(process + "/environ"), Not(HasSubstr(account_->password())));
    EXPECT_THAT(contentOf(process + "/cmdline"), Not(HasSubstr(account_->password())));

    ASSERT_TRUE(stand_->waitForState(host, State::connected));
    EXPECT_THAT(sshd_->log(), HasSubstr("Accepted password for " + account_->name()));
    EXPECT_EQ(stand_->askpassFiles(), files);
    const auto received = fetch(port_);
    ASSERT_TRUE(received.has_value());
    EXPECT_EQ(checksum(*received), checksum(server_.page()));

    stand_->manager().disconnect(host);
    EXPECT_THAT(stand_->askpassFiles(), IsEmpty());
    EXPECT_TRUE(stand_->waitUntil([] { return TunnelStand::sshProcesses().empty(); }));
    EXPECT_THAT(stand_->log(host), HasSubstr("] ssh -o IdentitiesOnly=yes -o NumberOfPasswordPrompts=1 -N "));
    EXPECT_THAT(stand_->log(host), Not(HasSubstr(account_->password())));
}

TEST_F(PasswordLoginTest, wrongPasswordIsTriedOnceAndItsScriptGoes) {
    const SSHHost host = passwordHost();
    stand_->manager().keychain().save("wrong", host.id);
    stand_->connect(host);
    ASSERT_TRUE(stand_->waitForState(host, State::error));
    EXPECT_THAT(stand_->manager().status(host.id).message, StartsWith("Reconnecting in 5s… ("));
    EXPECT_THAT(stand_->manager().status(host.id).message, HasSubstr("Permission denied"));
    EXPECT_THAT(stand_->askpassFiles(), IsEmpty());
    const std::string log = sshd_->log();
    const std::string failure = "Failed password for " + account_->name();
    EXPECT_THAT(log, HasSubstr(failure));
    EXPECT_EQ(log.find(failure), log.rfind(failure));
}

/// With a password that the user has put into the keyring by other means.
TEST_F(PasswordLoginTest, quitRemovesTheScript) {
    const SSHHost host = passwordHost();
    HelperProcess store({.arguments = {"secret-tool", "store", "--label=Test", "service", "com.velmora.app", "account",
                                       host.id.toString()},
                         .input = account_->password(),
                         .log = session_->home() / "secret-tool.log"});
    ASSERT_EQ(store.wait(), 0);
    stand_->connect(host);
    ASSERT_TRUE(stand_->waitUntil([&] { return isListening(port_); }));
    ASSERT_THAT(stand_->askpassFiles(), SizeIs(1));
    stand_->quit();
    EXPECT_THAT(stand_->askpassFiles(), IsEmpty());
    EXPECT_TRUE(stand_->waitUntil([] { return TunnelStand::sshProcesses().empty(); }));
}

}  // namespace
}  // namespace velmora
