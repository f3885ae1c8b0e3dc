#include "UpdateStand.h"
#include "fakes/FakeProcessRunner.h"
#include "platform/linux/BundleSeal.h"
#include "platform/macos/MacBundleTools.h"
#include "update/CodeRequirement.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

TEST(MacBundleTools, ExpandsWithDitto) {
    FakeProcessRunner runner;
    runner.answers["/usr/bin/ditto"] = {.status = 1, .standardOutput = "no such archive\n", .standardError = {}};
    MacBundleTools tools(runner, "");
    const auto output = tools.expand("/w/update.zip", "/w/unpacked");
    EXPECT_EQ(output.status, 1);
    EXPECT_EQ(output.text, "no such archive\n");
    EXPECT_THAT(runner.runs,
                ElementsAre(Pair("/usr/bin/ditto", ElementsAre("-x", "-k", "/w/update.zip", "/w/unpacked"))));
}

TEST(MacBundleTools, VerifiesWithCodesign) {
    FakeProcessRunner runner;
    runner.answers["/usr/bin/codesign"] = {};
    MacBundleTools tools(runner, codeRequirement("ABCDE12345"));
    EXPECT_TRUE(tools.verifySignature("/w/unpacked/Velmora.app").succeeded());
    EXPECT_THAT(
        runner.runs,
        ElementsAre(Pair("/usr/bin/codesign",
                         ElementsAre("--verify", "--strict",
                                     "-R=anchor apple generic and certificate leaf[subject.OU] = \"ABCDE12345\"",
                                     "/w/unpacked/Velmora.app"))));
}

TEST(MacBundleTools, AToolThatIsMissingFailsWithTheSystemsWords) {
    FakeProcessRunner runner;
    const auto output = MacBundleTools(runner, "").expand("/a", "/b");
    EXPECT_NE(output.status, 0);
    EXPECT_EQ(output.text, "/usr/bin/ditto: No such file or directory");
}

TEST(MacBundleTools, WordsThatAreNoUtf8AreMadeIt) {
    FakeProcessRunner runner;
    runner.answers["/usr/bin/ditto"] = {.status = 1, .standardOutput = "caf\xe9", .standardError = {}};
    EXPECT_EQ(MacBundleTools(runner, "").expand("/a", "/b").text, "caf\xef\xbf\xbd");
}

TEST(LinuxBundleTools, ExpandsWithBsdtar) {
    FakeProcessRunner runner;
    runner.answers["/usr/bin/bsdtar"] = {};
    LinuxBundleTools tools(runner, {}, "/tmp");
    EXPECT_TRUE(tools.expand("/w/update.zip", "/w/unpacked").succeeded());
    EXPECT_THAT(runner.runs,
                ElementsAre(Pair("/usr/bin/bsdtar", ElementsAre("-x", "-f", "/w/update.zip", "-C", "/w/unpacked"))));
}

/// Looks at what the verifier is given while it runs.
class WatchingRunner final : public ProcessRunner {
public:
    std::vector<std::string> arguments;
    std::string signers;
    std::string input;
    int signersMode = 0;
    SystemProcessRunner real;

    Result<ProcessOutput, Error> run(const std::string& program, const std::vector<std::string>& given) override {
        return real.run(program, given);
    }
    Result<ProcessOutput, Error> runJoined(const std::string& program, const std::vector<std::string>& given,
                                           const std::filesystem::path& standardInput) override {
        arguments = given;
        arguments.insert(arguments.begin(), program);
        signers = contentOf(given.at(3));
        signersMode = modeOf(given.at(3));
        input = contentOf(standardInput);
        return real.runJoined(program, given, standardInput);
    }
};

TEST(LinuxBundleTools, VerifiesTheSealWithSshKeygen) {
    UpdateStand stand;
    WatchingRunner runner;
    const auto key = UpdateStand::publicKeyOf(stand.signingKey);
    LinuxBundleTools tools(runner, {.signer = teamIdentifier, .publicKey = key}, stand.root / "temporary");
    const auto output = tools.verifySignature(stand.release);
    EXPECT_TRUE(output.succeeded()) << output.text;
    EXPECT_THAT(output.text, HasSubstr("Good \"velmora-bundle\" signature for TESTTEAM01"));
    ASSERT_EQ(runner.arguments.size(), 11U);
    const auto& given = runner.arguments;
    EXPECT_THAT(given, ElementsAre("/usr/bin/ssh-keygen", "-Y", "verify", "-f", given[4], "-I", "TESTTEAM01", "-n",
                                   "velmora-bundle", "-s", given[10]));
    EXPECT_EQ(runner.signers, "TESTTEAM01 namespaces=\"velmora-bundle\" " + key + "\n");
    EXPECT_EQ(runner.signersMode, 0600);
    EXPECT_EQ(runner.input, contentOf(stand.release / "Contents/_CodeSignature/files.sha256"));
    EXPECT_TRUE(stand.nothingIsLeft());
}

TEST(LinuxBundleTools, NamesWithSpacesQuotesAndUnicodeCanBeSealed) {
    UpdateStand stand;
    writeContent(stand.release / "Contents/Resources/a 'b' \"c\" $d é\\n.txt", "x");
    stand.seal(stand.signingKey);
    EXPECT_TRUE(stand.tools.verifySignature(stand.release).succeeded());
}

TEST(LinuxBundleTools, SaysWhatIsWrongWithABundle) {
    UpdateStand stand;
    const auto contents = stand.release / "Contents";
    EXPECT_THAT(stand.tools.verifySignature(stand.root / "nothing").text, HasSubstr("No such file or directory"));

    writeContent(contents / "added", "x");
    EXPECT_EQ(stand.tools.verifySignature(stand.release).text, "Contents/added: file added");
    std::filesystem::remove(contents / "added");

    writeContent(contents / "Info.plist", "x");
    EXPECT_EQ(stand.tools.verifySignature(stand.release).text, "Contents/Info.plist: file changed");
    std::filesystem::remove(contents / "Info.plist");
    EXPECT_EQ(stand.tools.verifySignature(stand.release).text, "Contents/Info.plist: file missing");
}

TEST(BundleSeal, ReadsAList) {
    const std::string digest(64, 'a');
    const auto items = decodeSealList(digest + "  Contents/Info.plist\n" + digest + " @Contents/a  link\n");
    ASSERT_TRUE(items);
    EXPECT_EQ(*items, (SealedItems{{"Contents/Info.plist", {SealedItem::Kind::file, digest}},
                                   {"Contents/a  link", {SealedItem::Kind::link, digest}}}));
}

TEST(BundleSeal, RefusesAListThatIsNotExact) {
    const std::string digest(64, 'a');
    const std::string cases[] = {
        "",
        "\n",
        digest + "  a",
        digest + "  \n",
        digest + " *a\n",
        digest + " a\n",
        std::string(63, 'a') + "  a\n",
        std::string(64, 'A') + "  a\n",
        std::string(64, 'g') + "  a\n",
        digest + "  a\n\n",
        digest + "  b\n" + digest + "  a\n",
        digest + "  a\n" + digest + "  a\n",
    };
    for (const auto& text : cases) {
        EXPECT_FALSE(decodeSealList(text)) << text;
    }
}

}  // namespace
}  // namespace velmora::test
