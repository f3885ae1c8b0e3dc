#include "fakes/TemporaryDirectory.h"
#include "platform/Paths.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace velmora {

namespace {

using Directories = std::set<std::filesystem::path>;

/// Starts from an environment that names none of the directories, and puts it back afterwards.
class PathsTest : public ::testing::Test {
protected:
    PathsTest() {
        for (const char* name : names) {
            const char* value = std::getenv(name);
            before_[name] = value != nullptr ? std::optional<std::string>(value) : std::nullopt;
            ::unsetenv(name);
        }
        set("HOME", "/home/someone");
    }
    ~PathsTest() override {
        for (const auto& [name, value] : before_) {
            value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
        }
    }
    static void set(const char* name, const std::string& value) { ::setenv(name, value.c_str(), 1); }

private:
    static constexpr std::array names{"HOME",   "XDG_DATA_HOME",  "XDG_STATE_HOME", "XDG_CONFIG_HOME",
                                      "TMPDIR", "XDG_RUNTIME_DIR"};
    std::map<std::string, std::optional<std::string>> before_;
};

TEST_F(PathsTest, StandBelowTheHomeDirectory) {
    const Paths paths = Paths::ofThisUser();
    EXPECT_EQ(paths.home, "/home/someone");
    EXPECT_EQ(paths.applicationSupport, "/home/someone/.local/share");
    EXPECT_EQ(paths.library, "/home/someone/.local/state");
    EXPECT_EQ(paths.configuration, "/home/someone/.config");
    EXPECT_EQ(paths.temporary, "/tmp");
    EXPECT_EQ(paths.largeTemporary, "/tmp");
}

TEST_F(PathsTest, FollowTheEnvironment) {
    set("XDG_DATA_HOME", "/data");
    set("XDG_STATE_HOME", "/state");
    set("XDG_CONFIG_HOME", "/config");
    set("TMPDIR", "/scratch");
    const Paths paths = Paths::ofThisUser();
    EXPECT_EQ(paths.applicationSupport, "/data");
    EXPECT_EQ(paths.library, "/state");
    EXPECT_EQ(paths.configuration, "/config");
    EXPECT_EQ(paths.temporary, "/scratch");
    EXPECT_EQ(paths.largeTemporary, "/scratch");
}

TEST_F(PathsTest, IgnoreRelativeAndEmptyDirectories) {
    set("XDG_DATA_HOME", "data");
    set("XDG_STATE_HOME", "");
    set("XDG_CONFIG_HOME", "./config");
    set("TMPDIR", "scratch");
    set("XDG_RUNTIME_DIR", "run");
    const Paths paths = Paths::ofThisUser();
    EXPECT_EQ(paths.applicationSupport, "/home/someone/.local/share");
    EXPECT_EQ(paths.library, "/home/someone/.local/state");
    EXPECT_EQ(paths.configuration, "/home/someone/.config");
    EXPECT_EQ(paths.temporary, "/tmp");
}

TEST_F(PathsTest, WithoutHomeTheUserDatabaseTells) {
    ::unsetenv("HOME");
    EXPECT_TRUE(Paths::ofThisUser().home.is_absolute());
    EXPECT_TRUE(std::filesystem::exists(Paths::ofThisUser().home));
}

TEST_F(PathsTest, ScriptsGoIntoThePrivateRuntimeDirectory) {
    const TemporaryDirectory runtime;
    set("XDG_RUNTIME_DIR", runtime.path().string());
    EXPECT_EQ(Paths::ofThisUser().temporary, runtime.path());
    EXPECT_EQ(Paths::ofThisUser().largeTemporary, "/tmp");
}

TEST_F(PathsTest, KnowWhereTheScriptsOfARunWithAnotherEnvironmentMayBe) {
    const TemporaryDirectory runtime;
    const auto usual = "/run/user/" + std::to_string(::getuid());
    EXPECT_EQ(Paths::ofThisUser().otherTemporaries, Directories({usual}));
    set("TMPDIR", "/scratch");
    EXPECT_EQ(Paths::ofThisUser().otherTemporaries, Directories({usual, "/tmp"}));
    set("XDG_RUNTIME_DIR", runtime.path().string());
    EXPECT_EQ(Paths::ofThisUser().otherTemporaries, Directories({"/scratch", "/tmp"}));
}

TEST_F(PathsTest, ARuntimeDirectoryThatOthersMayEnterIsNotUsed) {
    const TemporaryDirectory runtime;
    set("XDG_RUNTIME_DIR", runtime.path().string());
    for (const mode_t mode : {0755U, 0701U, 0740U, 0500U, 01700U}) {
        ASSERT_EQ(::chmod(runtime.path().c_str(), mode), 0);
        EXPECT_EQ(Paths::ofThisUser().temporary, "/tmp") << std::oct << mode;
    }
}

TEST_F(PathsTest, ARuntimeDirectoryThatIsMissingOrAFileIsNotUsed) {
    const TemporaryDirectory directory;
    set("XDG_RUNTIME_DIR", (directory / "missing").string());
    EXPECT_EQ(Paths::ofThisUser().temporary, "/tmp");
    writeContent(directory / "file", "");
    set("XDG_RUNTIME_DIR", (directory / "file").string());
    EXPECT_EQ(Paths::ofThisUser().temporary, "/tmp");
}

bool forbidsPrograms(const std::filesystem::path& directory) {
    struct statvfs mount {};
    return ::statvfs(directory.c_str(), &mount) == 0 && (mount.f_flag & ST_NOEXEC) != 0;
}

/// In a process that sees a file system of its own there.
int temporaryIsElsewhereWhen(const std::filesystem::path& runtime) {
    if (::unshare(CLONE_NEWNS) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
        return 2;
    }
    ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr);
    if (::mount("tmpfs", runtime.c_str(), "tmpfs", MS_NOEXEC, "mode=700") != 0) {
        return 3;
    }
    return Paths::ofThisUser().temporary == "/tmp" ? 0 : 1;
}

TEST_F(PathsTest, ARuntimeDirectoryWhereNoProgramMayRunIsNotUsed) {
    if (forbidsPrograms("/dev/shm")) {
        std::string name = "/dev/shm/velmora-test-XXXXXX";
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        set("XDG_RUNTIME_DIR", name);
        EXPECT_EQ(Paths::ofThisUser().temporary, "/tmp");
        std::filesystem::remove(name);
        return;
    }
    const TemporaryDirectory runtime;
    set("XDG_RUNTIME_DIR", runtime.path().string());
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(temporaryIsElsewhereWhen(runtime.path()));
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace

}  // namespace velmora
