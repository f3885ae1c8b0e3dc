#include "Fuzz.h"
#include "base/Text.h"
#include "model/HostJson.h"
#include "sync/Backup.h"
#include "sync/CoreTunnelImporter.h"

#include <unordered_set>

// A backup of Core Tunnel.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace velmora;

    const auto hosts = CoreTunnelImporter::decode(textOf(data, size));
    if (!hosts) {
        return 0;
    }
    std::unordered_set<Uuid> ids;
    for (const auto& host : *hosts) {
        require(ids.insert(host.id).second, "each host has an id of its own");
        require(host.authMethod == AuthMethod::key && host.customOptions.empty() && host.proxyJump.empty() &&
                    host.noSessionRequest,
                "what a backup cannot say stays as it is");
        require(!host.useSSHConfigAlias || (host.port == 22 && host.username.empty()),
                "an alias leaves port and user to ssh");
        require(!host.useSSHConfigAlias || host.hostname.find_first_of(".:") == std::string::npos,
                "neither address nor full name is an alias");
        for (const auto& rule : host.forwardingRules) {
            require(ids.insert(rule.id).second, "each rule has an id of its own");
            require(rule.pacPatterns.empty(), "a backup has no patterns");
        }
    }
    const auto written = encodeHosts(*hosts);
    require(static_cast<bool>(written), "what was read can be written");
    const auto again = decodeHosts(*written);
    require(again && *again == *hosts, "what was written reads back as the same hosts");
    require(hostsToImport(*hosts, {}) == *hosts, "all come into an empty list");
    require(hostsToImport(*hosts, *hosts).empty(), "none comes in twice");
    return 0;
}
