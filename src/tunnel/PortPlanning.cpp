#include "tunnel/PortPlanning.h"

#include <unordered_map>
#include <unordered_set>

namespace velmora {

namespace {

constexpr std::int64_t firstSuggestedPort = 21000;

/// Remote rules bind at the server.
bool bindsHere(const ForwardingRule& rule) {
    return rule.enabled && rule.type != ForwardingType::remote && rule.bindPort > 0;
}

std::string withRemainder(std::int64_t large, char largeUnit, std::int64_t small, char smallUnit) {
    auto text = std::to_string(large) + largeUnit;
    if (small != 0) {
        text += " " + std::to_string(small) + smallUnit;
    }
    return text;
}

}  // namespace

std::int64_t suggestedDynamicPort(const std::vector<SSHHost>& hosts) {
    std::unordered_set<std::int64_t> taken;
    for (const auto& host : hosts) {
        for (const auto& rule : host.forwardingRules) {
            taken.insert(rule.bindPort);
        }
    }
    auto port = firstSuggestedPort;
    while (taken.contains(port)) {
        ++port;
    }
    return port;
}

std::vector<PortConflict> portConflicts(const SSHHost& host, const std::vector<SSHHost>& hosts) {
    std::unordered_map<std::int64_t, std::string> elsewhere;
    for (const auto& other : hosts) {
        if (other.id == host.id) {
            continue;
        }
        for (const auto& rule : other.forwardingRules) {
            if (bindsHere(rule)) {
                elsewhere[rule.bindPort] = other.name;  // the last host that binds a port is the one that is named
            }
        }
    }

    std::vector<PortConflict> conflicts;
    std::unordered_set<std::int64_t> seen;
    for (const auto& rule : host.forwardingRules) {
        if (!bindsHere(rule)) {
            continue;
        }
        const bool isRepeat = !seen.insert(rule.bindPort).second;
        if (const auto other = elsewhere.find(rule.bindPort); other != elsewhere.end()) {
            conflicts.push_back({rule.bindPort, other->second});
        } else if (isRepeat) {
            conflicts.push_back({rule.bindPort, host.name});
        }
    }
    return conflicts;
}

std::string uptimeText(std::chrono::seconds uptime) {
    constexpr std::int64_t minute = 60;
    constexpr std::int64_t hour = 60 * minute;
    constexpr std::int64_t day = 24 * hour;
    const std::int64_t seconds = uptime.count();
    if (seconds < minute) {
        return "< 1m";
    }
    if (seconds < hour) {
        return std::to_string(seconds / minute) + "m";
    }
    if (seconds < day) {
        return withRemainder(seconds / hour, 'h', seconds / minute % 60, 'm');
    }
    return withRemainder(seconds / day, 'd', seconds / hour % 24, 'h');
}

}  // namespace velmora
