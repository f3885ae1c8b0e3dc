#include "fakes/TemporaryDirectory.h"
#include "model/HostJson.h"

#include <gtest/gtest.h>

#include <string>

namespace velmora {
namespace {

/// What users copy out of the documentation has to work.
TEST(DocumentedExample, IsAHostsFileThatNamesEveryKey) {
    const std::string page = contentOf(VELMORA_HOSTS_FILE_PAGE);
    const std::string opening = "```json\n";
    const auto start = page.find(opening);
    ASSERT_NE(start, std::string::npos);
    const std::string example =
        page.substr(start + opening.size(), page.find("```", start + 3) - start - opening.size());

    const auto hosts = decodeHosts(example);
    ASSERT_TRUE(hosts) << hosts.error().message;
    ASSERT_EQ(hosts->size(), 1U);
    EXPECT_EQ(hosts->front().forwardingRules.size(), 3U);

    // Every key that the program writes appears in the example, by its very name.
    const auto written = encodeHosts(*hosts);
    ASSERT_TRUE(written);
    for (auto at = written->find("\":"); at != std::string::npos; at = written->find("\":", at + 1)) {
        const auto nameStart = written->rfind('"', at - 1);
        const std::string key = written->substr(nameStart, at - nameStart + 1);
        EXPECT_NE(example.find(key + ": "), std::string::npos) << key;
    }
}

}  // namespace
}  // namespace velmora
