#pragma once

#include "UpdateFakes.h"
#include "base/Sha256.h"
#include "fakes/InlineWorker.h"
#include "fakes/TemporaryDirectory.h"
#include "platform/linux/LinuxBundleTools.h"
#include "platform/posix/SystemProcessRunner.h"
#include "update/Installation.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace velmora::test {

inline constexpr const char* teamIdentifier = "TESTTEAM01";

/// Runs a program of the system; throws when it fails.
inline std::string mustRun(const std::string& program, const std::vector<std::string>& arguments) {
    SystemProcessRunner runner;
    auto output = runner.runJoined(program, arguments, "/dev/null");
    if (!output || output->status != 0) {
        throw std::runtime_error(program + ": " + (output ? output->standardOutput : output.error().message));
    }
    return output->standardOutput;
}

/// Everything in a folder: path to type, mode and content.
inline std::map<std::string, std::string> snapshot(const std::filesystem::path& folder) {
    namespace fs = std::filesystem;
    std::map<std::string, std::string> result;
    for (const auto& item : fs::recursive_directory_iterator(folder)) {
        const auto path = item.path().lexically_relative(folder).string();
        const auto status = item.symlink_status();
        std::string what = std::to_string(static_cast<int>(status.type())) + " " + std::to_string(modeOf(item.path()));
        if (fs::is_symlink(status)) {
            what += fs::read_symlink(item.path()).string();
        } else if (fs::is_regular_file(status)) {
            what += " " + sha256(contentOf(item.path()));
        }
        result[path] = what;
    }
    return result;
}

inline std::string infoPlist(const std::string& version) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
           "<key>CFBundleShortVersionString</key><string>" +
           version + "</string></dict></plist>\n";
}

/// An installed bundle 1.0, and a sealed bundle 2.0 to make archives of; the system's real tools.
class UpdateStand {
public:
    UpdateStand() {
        for (const char* name : {"temporary", "applications", "release"}) {
            std::filesystem::create_directory(root / name);
        }
        makeBundle(installed, "1.0");
        makeBundle(release, "2.0");
        seal(signingKey);
    }

    static std::filesystem::path madeKey(const std::filesystem::path& path) {
        mustRun("/usr/bin/ssh-keygen", {"-q", "-t", "ed25519", "-N", "", "-C", "test", "-f", path.string()});
        return path;
    }

    static void makeBundle(const std::filesystem::path& bundle, const std::string& version) {
        std::filesystem::create_directories(bundle / "Contents/MacOS");
        std::filesystem::create_directories(bundle / "Contents/Resources");
        writeContent(bundle / "Contents/Info.plist", infoPlist(version));
        writeContent(bundle / "Contents/MacOS/velmora",
                     "#!/bin/sh\necho " + version + " \"$0\" >>\"$VELMORA_TEST_OUTPUT\"\n");
        std::filesystem::permissions(bundle / "Contents/MacOS/velmora", std::filesystem::perms{0755});
        writeContent(bundle / "Contents/Resources/notes.txt", "what is new in " + version);
        std::filesystem::create_symlink("Resources/notes.txt", bundle / "Contents/notes");
    }

    void seal(const std::filesystem::path& key) const { mustRun(SEAL_BUNDLE, {release.string(), key.string()}); }

    /// The archive of what is in the release folder.
    void pack() const {
        std::filesystem::remove(archive);
        mustRun("/bin/sh", {"-c", "cd \"$1\" && exec zip -q -X -r -y \"$2\" .", "sh", (root / "release").string(),
                            archive.string()});
    }

    [[nodiscard]] std::string checksum() const { return sha256(contentOf(archive)); }

    /// Installs what is in the archive.
    Result<void, UpdateError> install(const UpdateManifest& manifest, BundleTools& bundles) {
        if (!http.file) {
            http.file = archive;
        }
        Installation installation(
            {http, bundles, launcher}, root / "temporary", {.path = installed, .isBundle = true, .version = "1.0"},
            {.downloaded = [](auto, auto) {}, .reached = [this](auto stage) { stages.push_back(stage); }},
            cancellation);
        return installation.run(manifest);
    }
    Result<void, UpdateError> install(const UpdateManifest& manifest) { return install(manifest, tools); }

    [[nodiscard]] UpdateManifest manifest() const {
        return {.version = "2.0", .url = "https://host.example/update.zip", .sha256 = checksum()};
    }

    [[nodiscard]] bool nothingIsLeft() const { return std::filesystem::is_empty(root / "temporary"); }

    static std::string publicKeyOf(const std::filesystem::path& key) {
        auto line = contentOf(key.string() + ".pub");
        line.resize(line.find('\n'));
        return line;
    }

    TemporaryDirectory root;
    std::filesystem::path signingKey = madeKey(root / "signing key");
    std::filesystem::path installed = root / "applications" / "Velmora.app";
    std::filesystem::path release = root / "release" / "Velmora.app";
    std::filesystem::path archive = root / "archive.zip";
    SystemProcessRunner runner;
    LinuxBundleTools tools{
        runner, {.signer = teamIdentifier, .publicKey = publicKeyOf(signingKey)}, root / "temporary"};
    FakeHttpClient http;
    RecordingLauncher launcher;
    Cancellation cancellation;
    std::vector<Installation::Stage> stages;
};

}  // namespace velmora::test
