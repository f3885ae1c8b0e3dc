#include "sync/Backup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace velmora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

SSHHost hostNamed(const std::string& name) {
    SSHHost host;
    host.name = name;
    return host;
}

std::vector<std::string> namesOf(const std::vector<SSHHost>& hosts) {
    std::vector<std::string> names;
    for (const auto& host : hosts) {
        names.push_back(host.name);
    }
    return names;
}

TEST(HostsToImport, KeepsNewNamesInTheirOrderWithTheirIds) {
    const std::vector existing{hostNamed("b"), hostNamed("d")};
    const std::vector candidates{hostNamed("c"), hostNamed("b"), hostNamed("a")};
    EXPECT_EQ(hostsToImport(candidates, existing), (std::vector{candidates[0], candidates[2]}));
}

TEST(HostsToImport, NamesAreComparedExactly) {
    const auto kept = hostsToImport({hostNamed("Web"), hostNamed("web "), hostNamed("web")}, {hostNamed("web")});
    EXPECT_THAT(namesOf(kept), ElementsAre("Web", "web "));
}

TEST(HostsToImport, AKnownNameIsSkippedEvenWhenEverythingElseDiffers) {
    auto other = hostNamed("web");
    other.hostname = "elsewhere";
    other.port = 2222;
    EXPECT_THAT(hostsToImport({other}, {hostNamed("web")}), IsEmpty());
}

TEST(HostsToImport, TwoOfOneNewNameBothComeIn) {
    EXPECT_THAT(namesOf(hostsToImport({hostNamed("new"), hostNamed("new")}, {})), ElementsAre("new", "new"));
}

TEST(HostsToImport, AnIdThatIsTakenIsReplaced) {
    const auto existing = hostNamed("renamed");
    auto before = existing;
    before.name = "as it was called";
    auto again = before;
    again.name = "once more";
    const auto kept = hostsToImport({before, again}, {existing});
    ASSERT_EQ(namesOf(kept), (std::vector<std::string>{"as it was called", "once more"}));
    EXPECT_NE(kept[0].id, existing.id);
    EXPECT_NE(kept[1].id, existing.id);
    EXPECT_NE(kept[0].id, kept[1].id);
}

}  // namespace
}  // namespace velmora
