#include "fakes/FakeSystem.h"
#include "manager/TunnelManager.h"
#include "model/HostJson.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace velmora {
namespace {

using testing::HasSubstr;
using testing::Not;

/// The served script as the hosts, the exceptions and the editor change it.
class PacManagerTest : public testing::Test {
protected:
    TunnelManager& start() {
        manager_.reset();
        manager_.emplace(system_.platform());
        return *manager_;
    }

    static SSHHost proxy(std::int64_t port, const std::string& patterns) {
        SSHHost host;
        host.name = "proxy";
        host.forwardingRules.resize(1);
        host.forwardingRules[0].type = ForwardingType::dynamic;
        host.forwardingRules[0].bindPort = port;
        host.forwardingRules[0].pacPatterns = patterns;
        return host;
    }

    void storeHosts(const std::vector<SSHHost>& hosts) {
        std::filesystem::create_directories(system_.home / "share/Velmora");
        writeContent(system_.home / "share/Velmora/hosts.json", *encodeHosts(hosts));
    }

    std::string served() { return manager_->pacServer().content(); }

    FakeSystem system_;
    std::optional<TunnelManager> manager_;
};

const std::string nothing = "function FindProxyForURL(url, host) {\n    return \"DIRECT\";\n}";

TEST_F(PacManagerTest, TheScriptIsThereFromTheStart) {
    start();
    EXPECT_EQ(served(), nothing);
    EXPECT_GT(manager_->pacServer().listeningPort(), 0);
    storeHosts({proxy(1080, "*.corp")});
    system_.defaults.setString("proxyExceptions", "direct.corp");
    start();
    EXPECT_EQ(served(),
              "function FindProxyForURL(url, host) {\n"
              "    if (shExpMatch(host, \"direct.corp\")) return \"DIRECT\"; // exception\n"
              "    if (shExpMatch(host, \"*.corp\")) return \"SOCKS5 127.0.0.1:1080\"; // proxy\n"
              "    return \"DIRECT\";\n}");
}

TEST_F(PacManagerTest, EveryChangeOfHostsOrExceptionsIsServedAtOnce) {
    auto& manager = start();
    manager.hosts().set({proxy(1080, "a.example")});
    EXPECT_THAT(served(), HasSubstr("a.example"));
    manager.hosts().edit([](std::vector<SSHHost>& hosts) { hosts[0].forwardingRules[0].bindPort = 1081; });
    EXPECT_THAT(served(), HasSubstr(":1081"));
    manager.setProxyExceptions("b.example");
    EXPECT_THAT(served(), HasSubstr("\"b.example\")) return \"DIRECT\""));
    EXPECT_THAT(served(), HasSubstr(":1081"));
    manager.hosts().set({});
    EXPECT_THAT(served(), HasSubstr("b.example"));
    EXPECT_THAT(served(), Not(HasSubstr(":1081")));
}

TEST_F(PacManagerTest, InManualModeHostsAndExceptionsLeaveTheTextAlone) {
    auto& manager = start();
    manager.applyPac("// mine");
    EXPECT_TRUE(manager.pacServer().isCustom());
    manager.hosts().set({proxy(1080, "a.example")});
    manager.setProxyExceptions("b.example");
    EXPECT_EQ(served(), "// mine");
    const auto text = manager.regeneratePac();
    EXPECT_FALSE(manager.pacServer().isCustom());
    EXPECT_EQ(served(), text);
    EXPECT_THAT(text, HasSubstr("a.example"));
    EXPECT_THAT(text, HasSubstr("b.example"));
}

TEST_F(PacManagerTest, ApplyingTheGeneratedTextStaysAutomatic) {
    auto& manager = start();
    manager.hosts().set({proxy(1080, "a.example")});
    manager.applyPac(served());
    EXPECT_FALSE(manager.pacServer().isCustom());
    manager.applyPac("\n  " + served() + " \n\n");
    EXPECT_FALSE(manager.pacServer().isCustom());
    manager.applyPac(served() + "x");
    EXPECT_TRUE(manager.pacServer().isCustom());
}

TEST_F(PacManagerTest, ApplyingTakesTheDirectLinesAsTheExceptions) {
    auto& manager = start();
    manager.setProxyExceptions("old.example\nkept.example");
    auto edited = served();
    edited.replace(edited.find("old.example"), 11, "New.Example");
    manager.applyPac(edited);
    EXPECT_EQ(manager.proxyExceptions().get(), "New.Example\nkept.example");
    EXPECT_EQ(system_.defaults.string("proxyExceptions"), "New.Example\nkept.example");
    EXPECT_FALSE(manager.pacServer().isCustom()) << "it is what the hosts and the new exceptions give";
    manager.applyPac(nothing);
    EXPECT_EQ(manager.proxyExceptions().get(), "");
}

TEST_F(PacManagerTest, QuickAddNormalisesAndKnowsWhatIsThere) {
    auto& manager = start();
    manager.addProxyException(" https://user@Host.Example:8443/path ");
    EXPECT_EQ(manager.proxyExceptions().get(), "host.example");
    manager.addProxyException("host.example");
    manager.addProxyException("  ");
    EXPECT_EQ(manager.proxyExceptions().get(), "host.example");
    manager.addProxyException("*.corp");
    EXPECT_EQ(manager.proxyExceptions().get(), "host.example\n*.corp");
    EXPECT_THAT(served(), HasSubstr("*.corp"));
}

TEST_F(PacManagerTest, ImportedPatternsJoinTheirRulesAreSavedAndServed) {
    storeHosts({proxy(1080, "a.example"), proxy(1081, "")});
    auto& manager = start();
    const auto script = system_.home / "proxy.pac";
    writeContent(script,
                 "if (shExpMatch(host, \"a.example\")) return \"SOCKS5 127.0.0.1:1080\";\n"
                 "if (shExpMatch(host, \"b.example\")) return \"SOCKS5 localhost:1081\";\n");
    EXPECT_EQ(manager.importPacPatterns(script), 1U);
    EXPECT_EQ(manager.hosts()->at(1).forwardingRules[0].pacPatterns, "b.example");
    EXPECT_EQ(*decodeHosts(contentOf(system_.home / "share/Velmora/hosts.json")), manager.hosts().get());
    EXPECT_THAT(served(), HasSubstr("b.example"));
    EXPECT_EQ(manager.importPacPatterns(script), 0U);
}

TEST_F(PacManagerTest, AnImportThatAddsNothingSavesNothing) {
    auto& manager = start();
    EXPECT_EQ(manager.importPacPatterns(system_.home / "none.pac"), 0U);
    EXPECT_FALSE(std::filesystem::exists(system_.home / "share/Velmora/hosts.json"));
}

}  // namespace
}  // namespace velmora
