#pragma once

#include "model/SSHHost.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace velmora {

inline ForwardingRule dynamicRule(std::int64_t port, std::string patterns) {
    ForwardingRule rule;
    rule.type = ForwardingType::dynamic;
    rule.bindPort = port;
    rule.pacPatterns = std::move(patterns);
    return rule;
}

inline SSHHost hostWith(std::string name, std::vector<ForwardingRule> rules) {
    SSHHost host;
    host.name = std::move(name);
    host.forwardingRules = std::move(rules);
    return host;
}

}  // namespace velmora
