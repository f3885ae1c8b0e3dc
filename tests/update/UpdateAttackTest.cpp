#include "UpdateStand.h"
#include "ZipWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;
using testing::StartsWith;

/// Something that somebody does to an update, and the error that it must end with.
struct Attack {
    const char* name;
    void (*prepare)(UpdateStand& stand, UpdateManifest& manifest);
    const char* error;  ///< how the user's text begins
};

constexpr const char* notSigned = "Download rejected: not signed by the expected developer.\n";
constexpr const char* notUnzipped = "Download failed: could not unzip (";

/// The archive becomes what is in the release folder now, with its right checksum.
void repack(const UpdateStand& stand, UpdateManifest& manifest) {
    stand.pack();
    manifest.sha256 = stand.checksum();
}

void replaceArchive(const UpdateStand& stand, UpdateManifest& manifest, const std::string& bytes) {
    writeContent(stand.archive, bytes);
    manifest.sha256 = sha256(bytes);
}

ZipWriter goodZip(const UpdateStand& stand) {
    ZipWriter zip;
    for (const auto& item : fs::recursive_directory_iterator(stand.release)) {
        if (item.symlink_status().type() == fs::file_type::regular) {
            zip.add({.name = item.path().lexically_relative(stand.root / "release").string(),
                     .content = contentOf(item.path()),
                     .mode = ZipWriter::program});
        }
    }
    zip.add({.name = "Velmora.app/Contents/notes", .content = "Resources/notes.txt", .mode = ZipWriter::link});
    return zip;
}

void addToZip(UpdateStand& stand, UpdateManifest& manifest, ZipWriter::Entry entry) {
    replaceArchive(stand, manifest, goodZip(stand).add(std::move(entry)).bytes());
}

/// Changes the bundle behind its seal.
template <typename Change>
void tamper(const UpdateStand& stand, UpdateManifest& manifest, Change change) {
    change(stand.release / "Contents");
    repack(stand, manifest);
}

const Attack attacks[] = {
    {"WrongChecksum",
     [](auto& stand, auto& manifest) {
         (void)stand;
         manifest.sha256 = sha256("another archive");
     },
     "Download rejected: checksum doesn't match the manifest."},
    {"ChecksumOfNoLength", [](auto&, auto& manifest) { manifest.sha256 = "00"; },
     "Download rejected: checksum doesn't match the manifest."},
    {"RightChecksumButUnsigned",
     [](auto& stand, auto& manifest) {
         tamper(stand, manifest, [](const fs::path& contents) { fs::remove_all(contents / "_CodeSignature"); });
     },
     notSigned},
    {"RightChecksumButSignatureMissing",
     [](auto& stand, auto& manifest) {
         tamper(stand, manifest,
                [](const fs::path& contents) { fs::remove(contents / "_CodeSignature/files.sha256.sig"); });
     },
     notSigned},
    {"SignedByAnotherKey",
     [](auto& stand, auto& manifest) {
         stand.seal(UpdateStand::madeKey(stand.root / "another key"));
         repack(stand, manifest);
     },
     notSigned},
    {"SignedForAnotherPurpose",
     [](auto& stand, auto& manifest) {
         const auto list = stand.release / "Contents/_CodeSignature/files.sha256";
         fs::remove(list.string() + ".sig");
         mustRun("/usr/bin/ssh-keygen",
                 {"-q", "-Y", "sign", "-f", stand.signingKey.string(), "-n", "file", list.string()});
         repack(stand, manifest);
     },
     notSigned},
    {"OneByteChangedInTheProgram",
     [](auto& stand, auto& manifest) {
         tamper(stand, manifest, [](const fs::path& contents) {
             std::fstream file(contents / "MacOS/velmora", std::ios::in | std::ios::out);
             file.seekp(3);
             file.put('B');
         });
     },
     notSigned},
    {"OneByteChangedInInfoPlist",
     [](auto& stand, auto& manifest) {
         tamper(stand, manifest,
                [](const fs::path& contents) { writeContent(contents / "Info.plist", infoPlist("2.1")); });
         manifest.version = "2.1";
     },
     notSigned},
    {"OneByteChangedInTheSeal",
     [](auto& stand, auto& manifest) {
         tamper(stand, manifest, [](const fs::path& contents) {
             std::fstream file(contents / "_CodeSignature/files.sha256", std::ios::in | std::ios::out);
             const char digit = static_cast<char>(file.get());
             file.seekp(0);
             file.put(digit == '0' ? '1' : '0');
         });
     },
     notSigned},
    {"OneByteChangedInTheSignature",
     [](auto& stand, auto& manifest) {
         tamper(stand, manifest, [](const fs::path& contents) {
             std::fstream file(contents / "_CodeSignature/files.sha256.sig", std::ios::in | std::ios::out);
             file.seekg(120);
             const char digit = static_cast<char>(file.get());
             file.seekp(120);
             file.put(digit == 'A' ? 'B' : 'A');
         });
     },
     notSigned},
    {"AFileAdded",
     [](auto& stand, auto& manifest) {
         tamper(stand, manifest,
                [](const fs::path& contents) { writeContent(contents / "MacOS/libQt6Core.so.6", "x"); });
     },
     notSigned},
    {"AFileRemoved",
     [](auto& stand, auto& manifest) {
         tamper(stand, manifest, [](const fs::path& contents) { fs::remove(contents / "Resources/notes.txt"); });
     },
     notSigned},
    {"AFileBecomesALink",
     [](auto& stand, auto& manifest) {
         tamper(stand, manifest, [](const fs::path& contents) {
             fs::rename(contents / "Resources/notes.txt", contents / "Resources/other.txt");
             fs::create_symlink("other.txt", contents / "Resources/notes.txt");
         });
     },
     notSigned},
    {"ALinkLeadsElsewhereInTheBundle",
     [](auto& stand, auto& manifest) {
         tamper(stand, manifest, [](const fs::path& contents) {
             fs::remove(contents / "notes");
             fs::create_symlink("MacOS/velmora", contents / "notes");
         });
     },
     notSigned},
    {"ASymbolicLinkPointingOut",
     [](auto& stand, auto& manifest) {
         tamper(stand, manifest, [](const fs::path& contents) { fs::create_symlink("/etc/passwd", contents / "out"); });
     },
     notUnzipped},
    {"ASymbolicLinkPointingUpwards",
     [](auto& stand, auto& manifest) {
         tamper(stand, manifest, [](const fs::path& contents) { fs::create_symlink("../../../x", contents / "out"); });
     },
     notUnzipped},
    {"ASealedSymbolicLinkLeavingTheBundle",
     [](auto& stand, auto& manifest) {
         writeContent(stand.root / "release" / "beside", "x");
         fs::create_symlink("../../beside", stand.release / "Contents/out");
         stand.seal(stand.signingKey);
         repack(stand, manifest);
     },
     notSigned},
    {"TheSealIsALink",
     [](auto& stand, auto& manifest) {
         tamper(stand, manifest, [](const fs::path& contents) {
             fs::rename(contents / "_CodeSignature/files.sha256", contents / "Resources/list");
             fs::create_symlink("../Resources/list", contents / "_CodeSignature/files.sha256");
         });
     },
     notSigned},
    {"ZipEntryWithDotDot",
     [](auto& stand, auto& manifest) { addToZip(stand, manifest, {.name = "../evil", .content = "x"}); }, notUnzipped},
    {"ZipEntryWithDotDotInside",
     [](auto& stand, auto& manifest) { addToZip(stand, manifest, {.name = "Velmora.app/../../evil", .content = "x"}); },
     notUnzipped},
    {"ZipEntryWithAbsolutePath",
     [](auto& stand, auto& manifest) {
         addToZip(stand, manifest, {.name = (stand.root / "evil").string(), .content = "x"});
     },
     notUnzipped},
    {"ZipEntryWithBackslashes",
     [](auto& stand, auto& manifest) { addToZip(stand, manifest, {.name = "..\\evil", .content = "x"}); }, notUnzipped},
    {"ZipEntryThroughASymbolicLink",
     [](auto& stand, auto& manifest) {
         replaceArchive(stand, manifest,
                        goodZip(stand)
                            .add({.name = "way", .content = "Velmora.app", .mode = ZipWriter::link})
                            .add({.name = "way/evil", .content = "x"})
                            .bytes());
     },
     notUnzipped},
    {"ZipEntryThroughALinkOfAnotherCase",
     [](auto& stand, auto& manifest) {
         replaceArchive(stand, manifest,
                        goodZip(stand)
                            .add({.name = "Way", .content = "Velmora.app", .mode = ZipWriter::link})
                            .add({.name = "way/evil", .content = "x"})
                            .bytes());
     },
     notUnzipped},
    {"ZipEntryTwice",
     [](auto& stand, auto& manifest) {
         addToZip(stand, manifest, {.name = "Velmora.app/Contents/MacOS/velmora", .content = "x"});
     },
     notUnzipped},
    {"ZipEntryThatIsADevice",
     [](auto& stand, auto& manifest) { addToZip(stand, manifest, {.name = "d", .content = "", .mode = 0020666}); },
     notUnzipped},
    {"ZipWithDifferentNamesInItsTwoHeaders",
     [](auto& stand, auto& manifest) {
         addToZip(stand, manifest, {.name = "harmless", .content = "x", .localName = "../evil1"});
     },
     notUnzipped},
    {"ZipWithBytesOfNoEntry",
     [](auto& stand, auto& manifest) {
         replaceArchive(stand, manifest,
                        goodZip(stand).hide(ZipWriter().add({.name = "../evil", .content = "x"}).bytes()).bytes());
     },
     notUnzipped},
    {"TarWithAHardLink",
     [](auto& stand, auto& manifest) {
         writeContent(stand.root / "outside", "private");
         const auto folder = stand.root / "release";
         fs::create_hard_link(stand.root / "outside", folder / "outside");
         fs::create_hard_link(stand.root / "outside", folder / "second");
         const auto tar = stand.root / "hard.tar";
         mustRun("/usr/bin/bsdtar", {"-c", "-f", tar.string(), "-C", folder.string(), "."});
         replaceArchive(stand, manifest, contentOf(tar));
     },
     notUnzipped},
    {"NestedApp",
     [](auto& stand, auto& manifest) {
         fs::create_directory(stand.root / "release" / "folder");
         fs::rename(stand.release, stand.root / "release" / "folder" / "Velmora.app");
         repack(stand, manifest);
     },
     "Download failed: no .app inside the archive"},
    {"TwoAppsTheFirstIsForeign",
     [](auto& stand, auto& manifest) {
         UpdateStand::makeBundle(stand.root / "release" / "Another.app", "2.0");
         repack(stand, manifest);
     },
     notSigned},
    {"AppThatIsAFile",
     [](auto& stand, auto& manifest) {
         fs::remove_all(stand.release);
         writeContent(stand.release, "x");
         repack(stand, manifest);
     },
     "Download failed: no .app inside the archive"},
    {"AppThatIsALink",
     [](auto& stand, auto& manifest) {
         fs::rename(stand.release, stand.root / "release" / "Velmora.bundle");
         fs::create_symlink("Velmora.bundle", stand.release);
         repack(stand, manifest);
     },
     "Download failed: no .app inside the archive"},
    {"VersionOtherThanPromised", [](auto&, auto& manifest) { manifest.version = "2.0.0"; },
     "Download rejected: bundle is v2.0, manifest promised v2.0.0."},
    {"InfoPlistMissing",
     [](auto& stand, auto& manifest) {
         fs::remove(stand.release / "Contents/Info.plist");
         stand.seal(stand.signingKey);
         repack(stand, manifest);
     },
     "Download failed: unreadable Info.plist in the downloaded bundle"},
    {"InfoPlistBroken",
     [](auto& stand, auto& manifest) {
         writeContent(stand.release / "Contents/Info.plist", "<plist><dict>");
         stand.seal(stand.signingKey);
         repack(stand, manifest);
     },
     "Download failed: unreadable Info.plist in the downloaded bundle"},
    {"InfoPlistBrokenBinary",
     [](auto& stand, auto& manifest) {
         writeContent(stand.release / "Contents/Info.plist", "bplist00" + std::string(64, '\xfe'));
         stand.seal(stand.signingKey);
         repack(stand, manifest);
     },
     "Download failed: unreadable Info.plist in the downloaded bundle"},
    {"InfoPlistWithoutAVersion",
     [](auto& stand, auto& manifest) {
         writeContent(stand.release / "Contents/Info.plist", "<plist version=\"1.0\"><dict/></plist>");
         stand.seal(stand.signingKey);
         repack(stand, manifest);
     },
     "Download failed: no version in the downloaded bundle"},
    {"ArchiveTruncated",
     [](auto& stand, auto& manifest) {
         const auto bytes = contentOf(stand.archive);
         replaceArchive(stand, manifest, bytes.substr(0, bytes.size() / 2));
     },
     notUnzipped},
    {"ArchiveTruncatedByOneByte",
     [](auto& stand, auto& manifest) {
         const auto bytes = contentOf(stand.archive);
         replaceArchive(stand, manifest, bytes.substr(0, bytes.size() - 1));
     },
     notUnzipped},
    {"ArchiveEmpty", [](auto& stand, auto& manifest) { replaceArchive(stand, manifest, ""); }, notUnzipped},
    {"ArchiveThatIsAWebPage",
     [](auto& stand, auto& manifest) {
         replaceArchive(stand, manifest, "<html>" + std::string(5000, 'x') + "</html>");
     },
     notUnzipped},
    {"ArchiveWithDamagedContent",
     [](auto& stand, auto& manifest) {
         auto bytes = contentOf(stand.archive);
         const auto at = bytes.find("what is new");
         ASSERT_NE(at, std::string::npos);
         bytes[at] = 'W';
         replaceArchive(stand, manifest, bytes);
     },
     notUnzipped},
    {"BombThatSaysSo",
     [](auto& stand, auto& manifest) {
         addToZip(stand, manifest,
                  {.name = "Velmora.app/bomb", .content = std::string(100U << 20, '\0'), .deflate = true});
     },
     notUnzipped},
    {"BombThatLiesAboutItsSize",
     [](auto& stand, auto& manifest) {
         addToZip(stand, manifest,
                  {.name = "Velmora.app/bomb",
                   .content = std::string(100U << 20, '\0'),
                   .deflate = true,
                   .claimedSize = 10});
     },
     notUnzipped},
    {"BombOfManyEntries",
     [](auto& stand, auto& manifest) {
         ZipWriter zip;
         for (int i = 0; i < 60000; ++i) {
             zip.add({.name = "Velmora.app/" + std::to_string(i), .content = ""});
         }
         replaceArchive(stand, manifest, zip.bytes());
     },
     notUnzipped},
};

class UpdateAttack : public testing::TestWithParam<Attack> {};

TEST_P(UpdateAttack, EndsWithItsErrorAndChangesNothing) {
    UpdateStand stand;
    stand.pack();
    auto manifest = stand.manifest();
    GetParam().prepare(stand, manifest);
    const auto before = snapshot(stand.root / "applications");

    const auto result = stand.install(manifest);

    ASSERT_FALSE(result);
    EXPECT_THAT(result.error().description(), StartsWith(GetParam().error));
    EXPECT_TRUE(stand.nothingIsLeft());
    EXPECT_EQ(snapshot(stand.root / "applications"), before);
    EXPECT_TRUE(stand.launcher.started.empty());
    EXPECT_FALSE(fs::exists(stand.root / "evil"));
    EXPECT_FALSE(fs::exists(stand.root / "temporary" / "evil"));
}

INSTANTIATE_TEST_SUITE_P(Table, UpdateAttack, testing::ValuesIn(attacks),
                         [](const auto& test) { return std::string(test.param.name); });

class UpdateAttackTools : public testing::Test {
protected:
    UpdateAttackTools() { stand.pack(); }

    void expectFailure(BundleTools& tools, const std::string& start) {
        const auto before = snapshot(stand.root / "applications");
        const auto result = stand.install(stand.manifest(), tools);
        ASSERT_FALSE(result);
        EXPECT_THAT(result.error().description(), StartsWith(start));
        EXPECT_TRUE(stand.nothingIsLeft());
        EXPECT_EQ(snapshot(stand.root / "applications"), before);
        EXPECT_TRUE(stand.launcher.started.empty());
    }

    /// Runs another program in the place of one.
    class Replacing final : public ProcessRunner {
    public:
        Replacing(std::string program, std::string replacement)
            : program_(std::move(program)), replacement_(std::move(replacement)) {}
        Result<ProcessOutput, Error> run(const std::string& program,
                                         const std::vector<std::string>& arguments) override {
            return real_.run(program == program_ ? replacement_ : program, arguments);
        }
        Result<ProcessOutput, Error> runJoined(const std::string& program, const std::vector<std::string>& arguments,
                                               const fs::path& input) override {
            return real_.runJoined(program == program_ ? replacement_ : program, arguments, input);
        }

    private:
        SystemProcessRunner real_;
        std::string program_;
        std::string replacement_;
    };

    void expectFailureWith(const std::string& program, const std::string& replacement, const std::string& start) {
        Replacing replacing(program, replacement);
        LinuxBundleTools tools(replacing,
                               {.signer = teamIdentifier, .publicKey = UpdateStand::publicKeyOf(stand.signingKey)},
                               stand.root / "temporary");
        expectFailure(tools, start);
    }

    fs::path script(const std::string& content) {
        const auto path = stand.root / "tool";
        writeContent(path, "#!/bin/sh\n" + content + "\n");
        fs::permissions(path, fs::perms{0755});
        return path;
    }

    UpdateStand stand;
};

TEST_F(UpdateAttackTools, VerifierMissing) {
    expectFailureWith("/usr/bin/ssh-keygen", "/usr/bin/no-such-verifier",
                      std::string(notSigned) + "/usr/bin/no-such-verifier: No such file or directory");
}

TEST_F(UpdateAttackTools, VerifierCrashing) {
    expectFailureWith("/usr/bin/ssh-keygen", script("echo about to crash; kill -SEGV $$").string(),
                      std::string(notSigned) + "about to crash\n");
}

TEST_F(UpdateAttackTools, ExpanderMissing) {
    expectFailureWith("/usr/bin/bsdtar", "/usr/bin/no-such-tool",
                      "Download failed: could not unzip (/usr/bin/no-such-tool: No such file or directory)");
}

TEST_F(UpdateAttackTools, ExpanderFailing) {
    expectFailureWith("/usr/bin/bsdtar", script("echo no; exit 1").string(), "Download failed: could not unzip (no\n)");
}

TEST_F(UpdateAttackTools, ABuildWithoutAKeyTrustsNobody) {
    LinuxBundleTools tools(stand.runner, {.signer = teamIdentifier, .publicKey = ""}, stand.root / "temporary");
    expectFailure(tools, std::string(notSigned) + "this build trusts no key");
}

TEST_F(UpdateAttackTools, AnotherIdentityIsNotTrusted) {
    SystemProcessRunner runner;
    LinuxBundleTools tools(
        runner, {.signer = "OTHERTEAM1", .publicKey = "ssh-ed25519 AAAAC3NzaC1lZDI1NTE5AAAAIGrTnLzTmFM1RzPzZJg5Zg5c1z"},
        stand.root / "temporary");
    expectFailure(tools, notSigned);
}

TEST_F(UpdateAttackTools, DiskFullWhileUnpacking) {
    // A limit on the size of files stands for the disk's: the tool fails to write in the same place.
    writeContent(stand.release / "Contents/Resources/large", std::string(400000, 'r'));
    stand.seal(stand.signingKey);
    stand.pack();
    expectFailureWith("/usr/bin/bsdtar", script("ulimit -f 200; exec /usr/bin/bsdtar \"$@\"").string(), notUnzipped);
}

TEST_F(UpdateAttackTools, SomethingElseIsUnpackedThanTheArchiveLists) {
    expectFailureWith("/usr/bin/bsdtar", script("/usr/bin/bsdtar \"$@\" && echo x >\"$5/extra\"").string(),
                      "Download failed: could not unzip (“extra” is not what the archive lists)");
}

TEST_F(UpdateAttackTools, AFileThatIsUnpackedHasASecondNameOutside) {
    expectFailureWith("/usr/bin/bsdtar",
                      script("/usr/bin/bsdtar \"$@\" && ln \"$5/Velmora.app/Contents/Info.plist\" '" +
                             (stand.root / "second").string() + "'")
                          .string(),
                      "Download failed: could not unzip (“Velmora.app/Contents/Info.plist”");
}

TEST(UpdateAttackSurvivor, TwoAppsTheFirstIsGenuine) {
    UpdateStand stand;
    UpdateStand::makeBundle(stand.root / "release" / "Zzz.app", "2.0");
    stand.pack();
    ASSERT_TRUE(stand.install(stand.manifest()));
    ASSERT_EQ(stand.launcher.started.size(), 1U);
    EXPECT_EQ(fs::path(stand.launcher.started[0].second[1]).filename(), "Velmora.app");
}

}  // namespace
}  // namespace velmora::test
