#include "Fuzz.h"
#include "base/Text.h"
#include "model/HostJson.h"

// A list of hosts: hosts.json, and what all other files hold that hosts are written to.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace velmora;

    const auto hosts = decodeHosts(textOf(data, size));
    if (!hosts) {
        require(!hosts.error().message.empty(), "a refusal has a reason");
        require(isValidUtf8(hosts.error().message), "a reason can be shown");
        return 0;
    }
    const auto written = encodeHosts(*hosts);
    require(static_cast<bool>(written), "what was read can be written");
    const auto again = decodeHosts(*written);
    require(again && *again == *hosts, "what was written reads back as the same hosts");
    require(encodeHosts(*again).value() == *written, "the same hosts are written in the same way");
    for (const auto& host : *hosts) {
        for (const auto& rule : host.forwardingRules) {
            const auto arguments = rule.sshArguments();
            require(arguments.empty() || arguments.size() == 2, "a rule adds a flag and its argument, or nothing");
        }
    }
    return 0;
}
