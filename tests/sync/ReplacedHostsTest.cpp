#include "fakes/TemporaryDirectory.h"
#include "model/HostJson.h"
#include "sync/ReplacedHosts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

SSHHost hostNamed(const std::string& name) {
    SSHHost host;
    host.name = name;
    return host;
}

TEST(RemovedIds, AreThoseOfTheCurrentListInItsOrder) {
    const auto a = hostNamed("a");
    const auto b = hostNamed("b");
    const auto c = hostNamed("c");
    const auto d = hostNamed("d");
    EXPECT_THAT(removedIds({a, b, c}, {d, b}), ElementsAre(a.id, c.id));
    EXPECT_THAT(removedIds({a, b}, {b, a, c}), IsEmpty());
    EXPECT_THAT(removedIds({c, a}, {}), ElementsAre(c.id, a.id));
    EXPECT_THAT(removedIds({}, {a}), IsEmpty());
    EXPECT_THAT(removedIds({a, a}, {}), ElementsAre(a.id)) << "each once";
    auto changed = a;
    changed.name = "renamed";
    EXPECT_THAT(removedIds({a}, {changed}), IsEmpty()) << "only the id counts";
}

class ReplacedHostsTest : public testing::Test {
protected:
    void keep(const std::vector<SSHHost>& current, const std::vector<SSHHost>& received) const {
        keepReplacedHosts(hostsFile_, current, received, now_);
    }
    static std::vector<SSHHost> hostsIn(const std::filesystem::path& file) {
        auto hosts = decodeHosts(contentOf(file));
        return hosts ? *std::move(hosts) : std::vector<SSHHost>();
    }
    std::vector<SSHHost> kept() const { return hostsIn(replacedHostsFile(hostsFile_)); }
    std::vector<SSHHost> keptBeforeRemoval() const { return hostsIn(removedHostsFile(hostsFile_)); }

    TemporaryDirectory directory_;
    std::filesystem::path hostsFile_ = directory_ / "hosts.json";
    std::chrono::system_clock::time_point now_ = std::chrono::sys_days{2026y / 3 / 14} + 9h;
    const std::vector<SSHHost> mine_{hostNamed("mine")};
    const std::vector<SSHHost> theirs_{hostNamed("theirs")};
};

TEST_F(ReplacedHostsTest, TheListStandsBesideTheHostsFileForItsOwnerOnly) {
    keep(mine_, theirs_);
    EXPECT_EQ(kept(), mine_);
    EXPECT_EQ(modeOf(directory_ / "hosts.json.before-sync"), 0600);
}

TEST_F(ReplacedHostsTest, TheFirstListOfADayIsKept) {
    keep(mine_, theirs_);
    now_ += 14h;
    keep(theirs_, mine_);
    EXPECT_EQ(kept(), mine_);
    now_ += 2h;
    keep(theirs_, mine_);
    EXPECT_EQ(kept(), theirs_) << "the next day";
}

TEST_F(ReplacedHostsTest, AListThatLosesHostsLaterOnTheDayIsKeptToo) {
    keep(mine_, theirs_);
    EXPECT_FALSE(std::filesystem::exists(directory_ / "hosts.json.before-removal")) << "one file holds it";
    now_ += 1h;
    auto more = theirs_;
    more.push_back(hostNamed("made since"));
    keep(more, theirs_);
    EXPECT_EQ(kept(), mine_);
    EXPECT_EQ(keptBeforeRemoval(), more);
    EXPECT_EQ(modeOf(directory_ / "hosts.json.before-removal"), 0600);
    now_ += 1h;
    const std::vector evenLater{hostNamed("made even later")};
    keep(evenLater, {});
    EXPECT_EQ(kept(), mine_);
    EXPECT_EQ(keptBeforeRemoval(), evenLater) << "the latest";
}

TEST_F(ReplacedHostsTest, AListThatLosesNoHostIsKeptOnceADay) {
    keep(mine_, theirs_);
    keep(theirs_, mine_);
    auto changed = mine_;
    changed[0].name = "renamed";
    changed.push_back(hostNamed("another"));
    keep(mine_, changed);
    EXPECT_EQ(keptBeforeRemoval(), theirs_) << "names change and hosts are added: nothing is removed";
    now_ += std::chrono::days(1);
    keep(changed, {});
    EXPECT_EQ(kept(), changed);
    EXPECT_EQ(keptBeforeRemoval(), theirs_) << "the first of the day has a file of its own";
}

TEST_F(ReplacedHostsTest, AClockThatWasSetBackKeepsAgain) {
    keep(mine_, theirs_);
    now_ -= std::chrono::days(2);
    keep(theirs_, mine_);
    EXPECT_EQ(kept(), theirs_);
}

TEST_F(ReplacedHostsTest, EqualListsAndAnEmptyOneLeaveTheFileAlone) {
    keep(mine_, mine_);
    keep({}, theirs_);
    EXPECT_FALSE(std::filesystem::exists(directory_ / "hosts.json.before-sync"));
    keep(mine_, {});
    EXPECT_EQ(kept(), mine_) << "the day was not used up";
    keep(mine_, mine_);
    keep({}, theirs_);
    EXPECT_FALSE(std::filesystem::exists(directory_ / "hosts.json.before-removal"));
}

TEST_F(ReplacedHostsTest, FailuresAreSilent) {
    std::filesystem::create_directory(directory_ / "hosts.json.before-sync");
    now_ += std::chrono::days(1);
    keep(mine_, theirs_);
    EXPECT_TRUE(std::filesystem::is_empty(directory_ / "hosts.json.before-sync"));
    auto broken = mine_;
    broken[0].name = "\xFF";
    keepReplacedHosts(directory_ / "other.json", broken, theirs_, now_);
    keepReplacedHosts(directory_ / "none" / "hosts.json", mine_, theirs_, now_);
    EXPECT_FALSE(std::filesystem::exists(directory_ / "other.json.before-sync"));
    hostsFile_ = directory_ / "third.json";
    keep(mine_, theirs_);
    std::filesystem::create_directory(directory_ / "third.json.before-removal");
    keep(theirs_, mine_);
    EXPECT_TRUE(std::filesystem::is_empty(directory_ / "third.json.before-removal"));
    EXPECT_EQ(kept(), mine_);
}

}  // namespace
}  // namespace velmora
