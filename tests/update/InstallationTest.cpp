#include "UpdateStand.h"
#include "update/SwapScript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

class InstallationTest : public testing::Test {
protected:
    InstallationTest() { stand.pack(); }

    [[nodiscard]] std::string failure(const UpdateManifest& manifest) {
        const auto result = stand.install(manifest);
        EXPECT_TRUE(stand.nothingIsLeft());
        EXPECT_TRUE(stand.launcher.started.empty());
        return result ? "" : result.error().description();
    }

    /// The folder of the one installation that was handed over.
    [[nodiscard]] fs::path workArea() const { return *fs::directory_iterator(stand.root / "temporary"); }

    UpdateStand stand;
};

TEST_F(InstallationTest, HandsTheVerifiedBundleToTheSwapScript) {
    const auto before = snapshot(stand.release);
    const auto installedBefore = snapshot(stand.root / "applications");
    ASSERT_TRUE(stand.install(stand.manifest()));

    EXPECT_THAT(stand.stages, ElementsAre(Installation::Stage::verifying, Installation::Stage::installing));
    const auto area = workArea();
    EXPECT_THAT(area.filename().string(), StartsWith("VelmoraUpdate-"));
    EXPECT_EQ(area.filename().string().size(), std::string("VelmoraUpdate-").size() + 36);
    EXPECT_EQ(modeOf(area), 0700);
    EXPECT_EQ(modeOf(area / "unpacked"), 0700);
    const auto bundle = area / "unpacked/Velmora.app";
    EXPECT_EQ(snapshot(bundle), before);
    EXPECT_EQ(contentOf(area / "unpacked/install.sh"), swapScript(::getpid(), stand.tools.relaunchLines()));
    ASSERT_EQ(stand.launcher.started.size(), 1U);
    EXPECT_EQ(stand.launcher.started[0].first, "/bin/sh");
    EXPECT_THAT(stand.launcher.started[0].second,
                ElementsAre((area / "unpacked/install.sh").string(), bundle.string(), stand.installed.string()));
    EXPECT_EQ(snapshot(stand.root / "applications"), installedBefore);
}

TEST_F(InstallationTest, AFeedWithoutSha256SkipsOnlyTheChecksum) {
    auto manifest = stand.manifest();
    manifest.sha256.reset();
    EXPECT_TRUE(stand.install(manifest));
}

TEST_F(InstallationTest, AnEmptySha256SkipsTheChecksum) {
    auto manifest = stand.manifest();
    manifest.sha256 = "";
    EXPECT_TRUE(stand.install(manifest));
}

TEST_F(InstallationTest, WithoutSha256AllOtherChecksStillApply) {
    stand.seal(UpdateStand::madeKey(stand.root / "another"));
    stand.pack();
    auto manifest = stand.manifest();
    manifest.sha256.reset();
    EXPECT_THAT(failure(manifest), StartsWith("Download rejected: not signed by the expected developer.\n"));
}

TEST_F(InstallationTest, AChecksumInUpperCaseMatches) {
    auto manifest = stand.manifest();
    for (auto& digit : *manifest.sha256) {
        digit = static_cast<char>(std::toupper(digit));
    }
    EXPECT_TRUE(stand.install(manifest));
}

TEST_F(InstallationTest, ABundleSignedByAnotherTeamIsRejectedWithTheVerifiersOutput) {
    stand.seal(UpdateStand::madeKey(stand.root / "another"));
    stand.pack();
    EXPECT_EQ(failure(stand.manifest()),
              "Download rejected: not signed by the expected developer.\nCould not verify signature.\n");
}

TEST_F(InstallationTest, VersionTextsMustBeTheSame) {
    auto manifest = stand.manifest();
    manifest.version = "2.0.0";
    EXPECT_EQ(failure(manifest), "Download rejected: bundle is v2.0, manifest promised v2.0.0.");
}

TEST_F(InstallationTest, ABinaryInfoPlistIsRead) {
    const auto plist = stand.release / "Contents/Info.plist";
    mustRun("/usr/bin/python3",
            {"-c",
             "import plistlib, sys\n"
             "with open(sys.argv[1], 'wb') as file:\n"
             "    plistlib.dump({'CFBundleShortVersionString': '2.0'}, file, fmt=plistlib.FMT_BINARY)",
             plist.string()});
    ASSERT_TRUE(contentOf(plist).starts_with("bplist00"));
    stand.seal(stand.signingKey);
    stand.pack();
    EXPECT_TRUE(stand.install(stand.manifest()));
}

TEST_F(InstallationTest, ABadDownloadUrl) {
    auto manifest = stand.manifest();
    for (const char* url : {"", "no url", "/relative.zip", "http://", "https://[bad/x.zip"}) {
        manifest.url = url;
        EXPECT_EQ(failure(manifest), "Download failed: bad download URL") << url;
    }
}

TEST_F(InstallationTest, AStatusOtherThan200) {
    for (const int status : {404, 500, 206, 301}) {
        stand.http.answer = [status] { return HttpAnswer{.status = status, .body = {}}; };
        stand.http.file.reset();
        Installation installation({stand.http, stand.tools, stand.launcher}, stand.root / "temporary",
                                  {.path = stand.installed, .isBundle = true, .version = "1.0"},
                                  {.downloaded = [](auto, auto) {}, .reached = [](auto) {}}, stand.cancellation);
        const auto result = installation.run(stand.manifest());
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error().description(), "Download failed: HTTP " + std::to_string(status));
    }
}

TEST_F(InstallationTest, ALaunchFailureOfTheScriptFailsTheInstallation) {
    stand.launcher.failure = Error{"/bin/sh: Resource temporarily unavailable"};
    const auto result = stand.install(stand.manifest());
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().description(), "/bin/sh: Resource temporarily unavailable");
    EXPECT_TRUE(stand.nothingIsLeft());
}

TEST_F(InstallationTest, AProgramThatIsNotInABundleCannotBeReplaced) {
    stand.http.file = stand.archive;
    Installation installation({stand.http, stand.tools, stand.launcher}, stand.root / "temporary",
                              {.path = "/usr/bin/velmora", .isBundle = false, .version = "1.0"},
                              {.downloaded = [](auto, auto) {}, .reached = [](auto) {}}, stand.cancellation);
    const auto result = installation.run(stand.manifest());
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().description(), "Can't replace /usr/bin/velmora — no write permission.");
    EXPECT_TRUE(stand.nothingIsLeft());
}

TEST_F(InstallationTest, ACancelledInstallationLeavesNothing) {
    stand.cancellation.request();
    EXPECT_FALSE(failure(stand.manifest()).empty());
}

TEST_F(InstallationTest, RightsOfOthersToWriteAreTakenAway) {
    fs::permissions(stand.release / "Contents/Info.plist", fs::perms{0666});
    fs::permissions(stand.release / "Contents/MacOS/velmora", fs::perms{06777});
    fs::permissions(stand.release / "Contents/Resources", fs::perms{0777});
    stand.pack();
    ASSERT_TRUE(stand.install(stand.manifest()));
    const auto contents = workArea() / "unpacked/Velmora.app/Contents";
    EXPECT_EQ(modeOf(contents / "Info.plist"), 0644);
    EXPECT_EQ(modeOf(contents / "MacOS/velmora"), 0755);
    EXPECT_EQ(modeOf(contents / "Resources"), 0755);
}

/// Root may write everywhere: the test becomes another user meanwhile.
class AsOrdinaryUser final {
public:
    AsOrdinaryUser() { become(nobody); }
    AsOrdinaryUser(const AsOrdinaryUser&) = delete;
    AsOrdinaryUser& operator=(const AsOrdinaryUser&) = delete;
    ~AsOrdinaryUser() { become(0); }

private:
    static constexpr uid_t nobody = 65534;
    void become(uid_t user) const {
        if (wasRoot_ && ::seteuid(user) != 0) {
            throw std::runtime_error("cannot change the user");
        }
    }
    const bool wasRoot_ = ::getuid() == 0;
};

TEST_F(InstallationTest, AFolderThatTheUserCannotWriteGivesNotWritableAndNothingIsTouched) {
    ASSERT_EQ(::chmod(stand.root.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod((stand.root / "applications").c_str(), 0555), 0);
    if (::getuid() == 0) {
        ASSERT_EQ(::chown((stand.root / "temporary").c_str(), 65534, 65534), 0);
    }
    const auto manifest = stand.manifest();
    const auto before = snapshot(stand.root / "applications");
    std::string description;
    {
        const AsOrdinaryUser user;
        const auto result = stand.install(manifest);
        description = result ? "" : result.error().description();
    }
    EXPECT_EQ(description, "Can't replace " + stand.installed.string() + " — no write permission.");
    EXPECT_TRUE(stand.nothingIsLeft());
    EXPECT_EQ(snapshot(stand.root / "applications"), before);
    ::chmod((stand.root / "applications").c_str(), 0755);
}

}  // namespace
}  // namespace velmora::test
