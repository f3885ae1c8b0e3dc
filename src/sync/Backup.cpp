#include "sync/Backup.h"

#include <string_view>
#include <unordered_set>

namespace velmora {

std::vector<SSHHost> hostsToImport(std::vector<SSHHost> candidates, const std::vector<SSHHost>& existing) {
    std::unordered_set<std::string_view> names;
    std::unordered_set<Uuid> ids;
    for (const auto& host : existing) {
        names.insert(host.name);
        ids.insert(host.id);
    }
    std::erase_if(candidates, [&](const SSHHost& host) { return names.contains(host.name); });
    for (auto& host : candidates) {
        if (!ids.insert(host.id).second) {
            host.id = Uuid::random();
            ids.insert(host.id);
        }
    }
    return candidates;
}

}  // namespace velmora
