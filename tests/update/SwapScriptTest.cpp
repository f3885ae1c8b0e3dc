#include "UpdateStand.h"
#include "base/Pipe.h"
#include "fakes/Waiting.h"
#include "platform/macos/MacBundleTools.h"
#include "platform/posix/Spawn.h"
#include "platform/posix/SpawnDetachedLauncher.h"
#include "update/SwapScript.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

namespace velmora::test {
namespace {

namespace fs = std::filesystem;

TEST(SwapScript, TheTextOnMacos) {
    SystemProcessRunner runner;
    EXPECT_EQ(swapScript(4711, MacBundleTools(runner, "").relaunchLines()),
              "#!/bin/sh\n"
              "# $1 = freshly unpacked bundle, $2 = installed bundle to replace\n"
              "while kill -0 4711 2>/dev/null; do sleep 0.2; done\n"
              "/bin/rm -rf \"$2.old\"\n"
              "/bin/mv \"$2\" \"$2.old\" || exit 1\n"
              "if ! /bin/mv \"$1\" \"$2\"; then\n"
              "    /bin/mv \"$2.old\" \"$2\"\n"
              "    exit 1\n"
              "fi\n"
              "/bin/rm -rf \"$2.old\"\n"
              "/usr/bin/xattr -dr com.apple.quarantine \"$2\" 2>/dev/null\n"
              "/usr/bin/open \"$2\"");
}

TEST(SwapScript, TheTextOnLinux) {
    SystemProcessRunner runner;
    EXPECT_EQ(swapScript(1, LinuxBundleTools(runner, {}, "/tmp").relaunchLines()),
              "#!/bin/sh\n"
              "# $1 = freshly unpacked bundle, $2 = installed bundle to replace\n"
              "while kill -0 1 2>/dev/null; do sleep 0.2; done\n"
              "/bin/rm -rf \"$2.old\"\n"
              "/bin/mv \"$2\" \"$2.old\" || exit 1\n"
              "if ! /bin/mv \"$1\" \"$2\"; then\n"
              "    /bin/mv \"$2.old\" \"$2\"\n"
              "    exit 1\n"
              "fi\n"
              "/bin/rm -rf \"$2.old\"\n"
              "exec \"$2/Contents/MacOS/velmora\"");
}

/// The script, really run on two bundles whose program notes that it was started.
class SwapScriptRun : public testing::Test {
protected:
    static constexpr const char* nobody = "65534";

    SwapScriptRun() {
        for (const char* folder : {"place", "work"}) {
            fs::create_directory(root / folder);
        }
        UpdateStand::makeBundle(installed, "1.0");
        UpdateStand::makeBundle(fresh, "2.0");
        ::setenv("VELMORA_TEST_OUTPUT", (root / "started").c_str(), 1);
        writeContent(root / "started", "");
    }

    /// A process that has ended and been waited for.
    static pid_t endedProcess() {
        const pid_t child = ::fork();
        if (child == 0) {
            ::_exit(0);
        }
        reap(child);
        return child;
    }

    void writeScript(pid_t process) {
        SystemProcessRunner runner;
        writeContent(script, swapScript(process, LinuxBundleTools(runner, {}, root.path()).relaunchLines()));
    }

    int run() {
        writeScript(endedProcess());
        SystemProcessRunner runner;
        return runner.run("/bin/sh", {script.string(), fresh.string(), installed.string()})->status;
    }

    /// Root may do everything; somebody else runs the script then.
    int runAsOrdinaryUser() {
        writeScript(endedProcess());
        SystemProcessRunner runner;
        if (::getuid() != 0) {
            return runner.run("/bin/sh", {script.string(), fresh.string(), installed.string()})->status;
        }
        mustRun("/bin/chown", {"-R", nobody, root.path().string()});
        return runner
            .run("/usr/bin/setpriv",
                 {"--reuid", nobody, "--clear-groups", "/bin/sh", script.string(), fresh.string(), installed.string()})
            ->status;
    }

    [[nodiscard]] std::string started() const { return contentOf(root / "started"); }

    TemporaryDirectory root;
    fs::path installed = root / "place" / "Velmora.app";
    fs::path fresh = root / "work" / "Velmora.app";
    fs::path script = root / "install.sh";
};

TEST_F(SwapScriptRun, PutsTheNewBundleInPlaceAndStartsIt) {
    const auto expected = snapshot(fresh);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(snapshot(installed), expected);
    EXPECT_FALSE(fs::exists(fresh));
    EXPECT_FALSE(fs::exists(installed.string() + ".old"));
    EXPECT_EQ(started(), "2.0 " + (installed / "Contents/MacOS/velmora").string() + "\n");
}

TEST_F(SwapScriptRun, NamesWithSpacesAndQuotes) {
    const auto name = root / "place" / "my \"best\" 'app' $(touch x) `y` \\ *.app";
    fs::rename(installed, name);
    installed = name;
    const auto expected = snapshot(fresh);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(snapshot(installed), expected);
    EXPECT_EQ(std::distance(fs::directory_iterator(root / "place"), fs::directory_iterator()), 1);
    EXPECT_EQ(started(), "2.0 " + (installed / "Contents/MacOS/velmora").string() + "\n");
}

TEST_F(SwapScriptRun, AnOldCopyLeftOverFromACrashGoes) {
    UpdateStand::makeBundle(installed.string() + ".old", "0.9");
    const auto expected = snapshot(fresh);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(snapshot(installed), expected);
    EXPECT_FALSE(fs::exists(installed.string() + ".old"));
}

TEST_F(SwapScriptRun, ANewBundleThatCannotBeMovedRollsBack) {
    const auto before = snapshot(installed);
    ::chmod((root / "work").c_str(), 0555);
    EXPECT_EQ(runAsOrdinaryUser(), 1);
    ::chmod((root / "work").c_str(), 0755);
    EXPECT_EQ(snapshot(installed), before);
    EXPECT_FALSE(fs::exists(installed.string() + ".old"));
    EXPECT_EQ(started(), "");
    mustRun((installed / "Contents/MacOS/velmora").string(), {});
    EXPECT_EQ(started(), "1.0 " + (installed / "Contents/MacOS/velmora").string() + "\n");
}

TEST_F(SwapScriptRun, ANewBundleThatIsGoneRollsBack) {
    const auto before = snapshot(installed);
    fs::remove_all(fresh);
    EXPECT_EQ(run(), 1);
    EXPECT_EQ(snapshot(installed), before);
    EXPECT_EQ(started(), "");
}

TEST_F(SwapScriptRun, AReadOnlyParentFolderLeavesTheOldBundle) {
    const auto before = snapshot(root / "place");
    ::chmod((root / "place").c_str(), 0555);
    EXPECT_EQ(runAsOrdinaryUser(), 1);
    ::chmod((root / "place").c_str(), 0755);
    EXPECT_EQ(snapshot(root / "place"), before);
    EXPECT_TRUE(fs::exists(fresh));
    EXPECT_EQ(started(), "");
}

TEST_F(SwapScriptRun, WaitsForAProcessThatIsSlowToExit) {
    const auto environment = currentEnvironment();
    auto input = makePipe();
    const auto old = spawn({.program = "/bin/cat",
                            .arguments = {},
                            .environment = environment,
                            .standardInput = input->reading.get(),
                            .standardOutput = STDOUT_FILENO,
                            .standardError = STDERR_FILENO});
    ASSERT_TRUE(old);
    const auto before = snapshot(installed);
    writeScript(old->pid);
    SpawnDetachedLauncher launcher;
    ASSERT_TRUE(launcher.start("/bin/sh", {script.string(), fresh.string(), installed.string()}));
    EXPECT_FALSE(waitFor([&] { return !started().empty(); }, std::chrono::milliseconds(700)));
    EXPECT_EQ(snapshot(installed), before);

    input->writing.reset();
    reap(old->pid);
    EXPECT_TRUE(waitFor([&] { return started().starts_with("2.0 "); }));
    EXPECT_FALSE(fs::exists(installed.string() + ".old"));
}

}  // namespace
}  // namespace velmora::test
