// Folders that really are full or read-only: permissions would not hold for root.
#include "sync/FolderSyncFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

/// A file system of 64 KiB, seen by this process alone and gone with it.
class SmallFileSystem final {
public:
    explicit SmallFileSystem(fs::path where) : where_(std::move(where)) {
        fs::create_directory(where_);
        mounted_ = mayMount() && ::unshare(CLONE_NEWNS) == 0 &&
                   ::mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) == 0 &&
                   ::mount("none", where_.c_str(), "tmpfs", 0, "size=64k") == 0;
    }
    SmallFileSystem(const SmallFileSystem&) = delete;
    SmallFileSystem& operator=(const SmallFileSystem&) = delete;
    ~SmallFileSystem() { ::umount2(where_.c_str(), MNT_DETACH); }

    [[nodiscard]] bool isMounted() const { return mounted_; }
    [[nodiscard]] bool makeReadOnly() const {
        return ::mount("none", where_.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, "size=64k") == 0;
    }

private:
    /// Root may; anybody else becomes root of a user namespace of its own.
    static bool mayMount() {
        const auto user = ::geteuid();
        const auto group = ::getegid();
        if (user == 0) {
            return true;
        }
        if (::unshare(CLONE_NEWUSER) != 0) {
            return false;
        }
        writeContent("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
        writeContent("/proc/self/setgroups", "deny");
        writeContent("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
        return ::geteuid() == 0;
    }

    fs::path where_;
    bool mounted_ = false;
};

using FolderSyncMountTest = FolderSyncFixture;

TEST_F(FolderSyncMountTest, AFullFolderKeepsTheFileThatWasThere) {
    const SmallFileSystem fileSystem(folder());
    ASSERT_TRUE(fileSystem.isMounted());
    sync_.setFolder(folder());
    sync_.push(hosts_);
    const auto before = contentOf(file());
    ASSERT_EQ(before, *encodeHosts(hosts_));
    const std::vector<SSHHost> tooMany(1000, syncedHost("one of many"));
    sync_.push(tooMany);
    EXPECT_EQ(contentOf(file()), before);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder()), fs::directory_iterator()), 1) << "nothing half written";
    poll();
    EXPECT_THAT(received_, IsEmpty());
    sync_.push({});
    EXPECT_EQ(contentOf(file()), "[]") << "and goes on with what fits";
}

TEST_F(FolderSyncMountTest, AReadOnlyFolderIsReadAndNotWritten) {
    const SmallFileSystem fileSystem(folder());
    ASSERT_TRUE(fileSystem.isMounted());
    writeFromElsewhere(*encodeHosts(hosts_), 0);
    ASSERT_TRUE(fileSystem.makeReadOnly());
    sync_.setFolder(folder());
    poll();
    EXPECT_THAT(received_, ElementsAre(hosts_));
    sync_.push({});
    EXPECT_EQ(contentOf(file()), *encodeHosts(hosts_));
    poll();
    EXPECT_THAT(received_, ElementsAre(hosts_));
}

}  // namespace
}  // namespace velmora
