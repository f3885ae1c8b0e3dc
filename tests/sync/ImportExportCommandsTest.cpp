#include "fakes/TemporaryDirectory.h"
#include "model/HostJson.h"
#include "sync/ImportExportCommands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Answers as the user would, and remembers the questions.
class AnsweringPanels final : public FilePanels {
public:
    std::optional<std::filesystem::path> answer;
    std::vector<std::pair<std::string, std::string>> opened;
    std::vector<std::pair<std::string, std::string>> saved;

    std::optional<std::filesystem::path> chooseFileToOpen(std::string_view title, std::string_view message) override {
        opened.emplace_back(title, message);
        return answer;
    }
    std::optional<std::filesystem::path> chooseFileToSave(std::string_view title, std::string_view name) override {
        saved.emplace_back(title, name);
        return answer;
    }
};

SSHHost hostNamed(const std::string& name) {
    SSHHost host;
    host.name = name;
    host.forwardingRules.resize(1);
    host.forwardingRules[0].pacPatterns = "*.a\n*.b";
    return host;
}

class CommandsTest : public testing::Test {
protected:
    /// What was done to the list, in order: "+2" for two hosts in one change, "save".
    HostListAccess access() {
        return {.hosts = [this]() -> const std::vector<SSHHost>& { return hosts_; },
                .append =
                    [this](std::vector<SSHHost> added) {
                        steps_.push_back("+" + std::to_string(added.size()));
                        hosts_.insert(hosts_.end(), added.begin(), added.end());
                    },
                .save = [this] { steps_.push_back("save"); }};
    }

    std::optional<ImportResult> importBackup(const std::string& content) {
        writeContent(file_, content);
        panels_.answer = file_;
        return importVelmoraFile(panels_, access());
    }

    ImportResult importProfiles(const std::string& content) {
        writeContent(file_, content);
        panels_.answer = file_;
        const auto result = importCoreTunnelFile(panels_, access());
        EXPECT_TRUE(result);
        return result.value_or(ImportResult{.imported = -1});
    }

    static std::pair<std::int64_t, std::int64_t> counts(const ImportResult& result) {
        return {result.imported, result.skipped};
    }
    using Counts = std::pair<std::int64_t, std::int64_t>;

    TemporaryDirectory directory_;
    std::filesystem::path file_ = directory_ / "file";
    AnsweringPanels panels_;
    std::vector<SSHHost> hosts_;
    std::vector<std::string> steps_;
};

constexpr auto twoProfiles = R"({"profiles":[{"name":"one","address":"a.example"},{"name":"two","address":"b"}]})";

// ---- export ----

TEST_F(CommandsTest, ExportWritesAllHostsForTheirOwnerOnly) {
    hosts_ = {hostNamed("b"), hostNamed("a")};
    panels_.answer = file_;
    exportTunnels(panels_, access());
    EXPECT_THAT(panels_.saved, ElementsAre(std::pair("Export Velmora Hosts", "velmora-backup.json")));
    EXPECT_EQ(contentOf(file_), *encodeHosts(hosts_));
    EXPECT_EQ(modeOf(file_), 0600);
    EXPECT_THAT(steps_, IsEmpty());
}

TEST_F(CommandsTest, ExportThatIsCancelledOrFailsIsSilent) {
    hosts_ = {hostNamed("a")};
    exportTunnels(panels_, access());
    EXPECT_FALSE(std::filesystem::exists(file_));
    panels_.answer = directory_ / "none" / "file";
    exportTunnels(panels_, access());
    EXPECT_EQ(panels_.saved.size(), 2U);
}

TEST_F(CommandsTest, HostsThatCannotBeWrittenAreNotAskedAbout) {
    hosts_ = {hostNamed("\xFF")};
    exportTunnels(panels_, access());
    EXPECT_THAT(panels_.saved, IsEmpty());
}

// ---- Velmora backup ----

TEST_F(CommandsTest, BackupImportAsksForABackupAndStopsWhenCancelled) {
    EXPECT_EQ(importVelmoraFile(panels_, access()), std::nullopt);
    EXPECT_THAT(panels_.opened, ElementsAre(std::pair("Select Velmora Backup", "Choose a velmora-backup.json file")));
    EXPECT_THAT(steps_, IsEmpty());
}

TEST_F(CommandsTest, BackupImportAppendsOneAtATimeAndSavesEach) {
    hosts_ = {hostNamed("here")};
    const std::vector backup{hostNamed("b"), hostNamed("here"), hostNamed("a")};
    const auto result = importBackup(*encodeHosts(backup));
    ASSERT_TRUE(result);
    EXPECT_EQ(counts(*result), Counts(2, 1));
    EXPECT_THAT(steps_, ElementsAre("+1", "save", "+1", "save"));
    EXPECT_THAT(hosts_, ElementsAre(hosts_[0], backup[0], backup[2])) << "at the end, every field as in the file";
}

TEST_F(CommandsTest, ExportingAndImportingTheSameFileSkipsEveryHost) {
    hosts_ = {hostNamed("a"), hostNamed("b")};
    const auto before = hosts_;
    panels_.answer = file_;
    exportTunnels(panels_, access());
    const auto result = importVelmoraFile(panels_, access());
    ASSERT_TRUE(result);
    EXPECT_EQ(counts(*result), Counts(0, 2));
    EXPECT_EQ(importAlertMessage(*result), "Imported 0 tunnels. Skipped 2 duplicates.");
    EXPECT_EQ(hosts_, before);
    EXPECT_THAT(steps_, IsEmpty());
}

TEST_F(CommandsTest, ABackupWithTwoHostsOfOneNewNameImportsBoth) {
    const auto result = importBackup(*encodeHosts({hostNamed("new"), hostNamed("new")}));
    ASSERT_TRUE(result);
    EXPECT_EQ(counts(*result), Counts(2, 0));
    EXPECT_EQ(hosts_.size(), 2U);
}

TEST_F(CommandsTest, AHostOfAKnownNameIsSkippedEvenWhenEveryOtherFieldDiffers) {
    hosts_ = {hostNamed("web")};
    const auto result = importBackup(R"([{"name":"web","hostname":"elsewhere","port":2222,"tags":"x"}])");
    ASSERT_TRUE(result);
    EXPECT_EQ(counts(*result), Counts(0, 1));
    EXPECT_EQ(hosts_.size(), 1U);
}

TEST_F(CommandsTest, AnEmptyBackupSavesNothingAndReportsZeroTunnels) {
    const auto result = importBackup("[]");
    ASSERT_TRUE(result);
    EXPECT_EQ(importAlertMessage(*result), "Imported 0 tunnels.");
    EXPECT_THAT(steps_, IsEmpty());
}

TEST_F(CommandsTest, AFileThatIsNoArrayOfHostsShowsNoAlert) {
    for (const auto* content : {"", "{}", "[1]", "null", "not JSON", R"([{"port":"22"}])", "[{\"name\":\"\xFF\"}]"}) {
        EXPECT_EQ(importBackup(content), std::nullopt) << content;
    }
    panels_.answer = directory_ / "none";
    EXPECT_EQ(importVelmoraFile(panels_, access()), std::nullopt);
    panels_.answer = directory_.path();
    EXPECT_EQ(importVelmoraFile(panels_, access()), std::nullopt);
    EXPECT_THAT(steps_, IsEmpty());
}

// ---- Core Tunnel backup ----

TEST_F(CommandsTest, CoreTunnelImportAsksForABackupAndStopsWhenCancelled) {
    EXPECT_EQ(importCoreTunnelFile(panels_, access()), std::nullopt);
    EXPECT_THAT(panels_.opened,
                ElementsAre(std::pair("Select Core Tunnel Backup", "Choose a .coretunnel backup file")));
    EXPECT_THAT(steps_, IsEmpty());
}

TEST_F(CommandsTest, CoreTunnelImportAppendsAllInOneChangeAndSavesOnce) {
    hosts_ = {hostNamed("here")};
    EXPECT_EQ(counts(importProfiles(twoProfiles)), Counts(2, 0));
    EXPECT_THAT(steps_, ElementsAre("+2", "save"));
    EXPECT_EQ(hosts_[1].name, "one");
    EXPECT_EQ(hosts_[2].name, "two");
}

TEST_F(CommandsTest, ImportingTheSameCoreTunnelBackupTwiceSkipsEveryProfile) {
    importProfiles(twoProfiles);
    const auto before = hosts_;
    steps_.clear();
    EXPECT_EQ(counts(importProfiles(twoProfiles)), Counts(0, 2));
    EXPECT_EQ(hosts_, before);
    EXPECT_THAT(steps_, ElementsAre("+0", "save")) << "saved even when nothing was kept";
}

TEST_F(CommandsTest, ACoreTunnelBackupWithoutProfilesStillSaves) {
    EXPECT_EQ(counts(importProfiles(R"({"profiles":[]})")), Counts(0, 0));
    EXPECT_THAT(steps_, ElementsAre("+0", "save"));
}

TEST_F(CommandsTest, TwoProfilesOfOneNewNameAreBothImported) {
    EXPECT_EQ(counts(importProfiles(R"({"profiles":[{"name":"n","address":"a"},{"name":"n","address":"b"}]})")),
              Counts(2, 0));
}

TEST_F(CommandsTest, ACoreTunnelFileThatCannotBeReadOrDecodedReportsZeroAndChangesNothing) {
    hosts_ = {hostNamed("here")};
    EXPECT_EQ(counts(importProfiles("[]")), Counts(0, 0));
    panels_.answer = directory_ / "none";
    const auto missing = importCoreTunnelFile(panels_, access());
    ASSERT_TRUE(missing);
    EXPECT_EQ(importAlertMessage(*missing), "Imported 0 tunnels.");
    EXPECT_EQ(hosts_.size(), 1U);
    EXPECT_THAT(steps_, IsEmpty());
}

}  // namespace
}  // namespace velmora
