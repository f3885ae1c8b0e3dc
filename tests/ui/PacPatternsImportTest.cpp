#include "ui/SettingsView.h"
#include "ui/WindowStand.h"

#include <QApplication>
#include <QPointer>
#include <QPushButton>
#include <QThreadPool>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class PacPatternsImportTest : public testing::Test {
protected:
    PacPatternsImportTest() {
        SSHHost host = ManagerStand::hostNamed("web");
        host.forwardingRules.push_back({.type = ForwardingType::dynamic, .bindPort = 21000});
        stand.setHosts({host});
        window = new SettingsView(stand.services);
    }
    ~PacPatternsImportTest() override { delete window; }

    QPushButton& button() { return *window->findChild<QPushButton*>(QStringLiteral("importPatterns")); }

    std::filesystem::path script(const std::string& content) {
        auto file = stand.home / "proxy.pac";
        std::ofstream(file) << content;
        return file;
    }
    static std::string condition(const std::string& pattern, int port) {
        return "if (shExpMatch(host, \"" + pattern + "\")) return \"SOCKS5 127.0.0.1:" + std::to_string(port) + "\";\n";
    }
    void import(const std::filesystem::path& file) {
        stand.dialogs.choices = {file};
        button().click();
        finish();
    }
    static void finish() {
        QThreadPool::globalInstance()->waitForDone();
        QApplication::processEvents();
    }
    std::pair<std::string, std::string> lastAlert() {
        if (stand.dialogs.alerts.empty()) {
            return {};
        }
        const auto& alert = stand.dialogs.alerts.back();
        return {alert.message.toStdString(), alert.informativeText.toStdString()};
    }
    std::string patterns() { return stand.host(0).forwardingRules[0].pacPatterns; }

    WindowStand stand;
    QPointer<SettingsView> window;
};

TEST_F(PacPatternsImportTest, AsksForTheFile) {
    button().click();
    finish();
    EXPECT_THAT(stand.dialogs.panels,
                ElementsAre(Pair("Select PAC File", "Choose a proxy.pac file to import patterns from")));
    EXPECT_THAT(stand.dialogs.alerts, IsEmpty()) << "to cancel is no import";
}

TEST_F(PacPatternsImportTest, NoEntriesFindsNothing) {
    import(script("function FindProxyForURL(url, host) { return \"DIRECT\"; }"));
    EXPECT_THAT(lastAlert(),
                Pair("Nothing found", "No shExpMatch patterns with SOCKS5 proxies were found in the selected file."));
}

TEST_F(PacPatternsImportTest, AnUnreadableFileFindsNothing) {
    import(stand.home / "there is no such file");
    EXPECT_EQ(lastAlert().first, "Nothing found");
    import(stand.home.path());
    EXPECT_EQ(lastAlert().first, "Nothing found");
    import(script("\xff\xfe" + condition("*.a", 21000)));
    EXPECT_EQ(lastAlert().first, "Nothing found");
    EXPECT_EQ(stand.dialogs.alerts.size(), 3U);
}

TEST_F(PacPatternsImportTest, EntriesOfOtherPortsMatchNoTunnel) {
    import(script(condition("*.a", 1080) + condition("*.b", 1081)));
    EXPECT_THAT(lastAlert(), Pair("No matching tunnels",
                                  "Found 2 patterns for ports: 1080, 1081\n\nNone matched a Dynamic forwarding rule "
                                  "in Velmora."));
    EXPECT_EQ(patterns(), "");
}

TEST_F(PacPatternsImportTest, WhatIsAddedIsCounted) {
    import(script(condition("*.a", 21000)));
    EXPECT_THAT(lastAlert(), Pair("Import complete", "Added 1 pattern to matching Dynamic forwarding rules."));
    import(script(condition("*.a", 21000) + condition("*.b", 21000) + condition("*.c", 21000)));
    EXPECT_THAT(lastAlert(), Pair("Import complete", "Added 2 patterns to matching Dynamic forwarding rules."));
    EXPECT_EQ(patterns(), "*.a\n*.b\n*.c");
}

TEST_F(PacPatternsImportTest, TheButtonRestsWhileAnImportRuns) {
    stand.dialogs.choices = {script(condition("*.a", 21000))};
    button().click();
    EXPECT_FALSE(button().isEnabled());
    EXPECT_THAT(stand.dialogs.alerts, IsEmpty()) << "the main thread has not waited";
    finish();
    EXPECT_TRUE(button().isEnabled());
    EXPECT_EQ(stand.dialogs.alerts.size(), 1U);
}

TEST_F(PacPatternsImportTest, AnImportEndsAlsoWhenTheWindowIsClosed) {
    stand.dialogs.choices = {script(condition("*.a", 21000))};
    button().click();
    delete window;
    finish();
    EXPECT_EQ(lastAlert().first, "Import complete");
    EXPECT_EQ(patterns(), "*.a");
}

}  // namespace
}  // namespace velmora
