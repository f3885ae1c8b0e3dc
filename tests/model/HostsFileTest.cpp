#include "fakes/TemporaryDirectory.h"
#include "model/HostJson.h"
#include "model/HostsFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velmora {
namespace {

using testing::HasSubstr;

class HostsFileTest : public testing::Test {
protected:
    std::string errorOf(const std::string& name) const {
        const auto hosts = readHostsFile(directory_ / name);
        return hosts ? "none" : hosts.error().message;
    }

    TemporaryDirectory directory_;
};

TEST_F(HostsFileTest, HoldsWhatWasEncoded) {
    std::vector<SSHHost> hosts(2);
    hosts[0].name = "a";
    hosts[1].name = "b";
    writeContent(directory_ / "hosts.json", *encodeHosts(hosts));
    EXPECT_EQ(*readHostsFile(directory_ / "hosts.json"), hosts);
}

TEST_F(HostsFileTest, ErrorsSayWhetherItCouldNotBeReadOrNotBeDecoded) {
    writeContent(directory_ / "wrong.json", R"([{"port":"22"}])");
    EXPECT_THAT(errorOf("wrong.json"), HasSubstr("[0].port"));
    EXPECT_THAT(errorOf("none.json"), HasSubstr("none.json: No such file"));
    writeContent(directory_ / "huge.json", "");
    std::filesystem::resize_file(directory_ / "huge.json", maximumHostListSize + 1);
    EXPECT_THAT(errorOf("huge.json"), HasSubstr("huge.json: larger than"));
}

}  // namespace
}  // namespace velmora
