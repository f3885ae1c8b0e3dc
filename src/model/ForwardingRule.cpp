#include "model/ForwardingRule.h"

namespace velmora {

namespace {

constexpr std::string_view sshFlag(ForwardingType type) {
    switch (type) {
        case ForwardingType::local:
            return "-L";
        case ForwardingType::remote:
            return "-R";
        case ForwardingType::dynamic:
            return "-D";
    }
    return {};
}

}  // namespace

std::string_view rawValue(ForwardingType type) {
    switch (type) {
        case ForwardingType::local:
            return "Local";
        case ForwardingType::remote:
            return "Remote";
        case ForwardingType::dynamic:
            return "Dynamic";
    }
    return {};
}

std::optional<ForwardingType> forwardingTypeFrom(std::string_view text) {
    for (const auto type : allForwardingTypes) {
        if (rawValue(type) == text) {
            return type;
        }
    }
    return std::nullopt;
}

std::vector<std::string> ForwardingRule::sshArguments() const {
    if (!enabled || bindPort < 1) {
        return {};
    }
    auto argument = bindAddress.empty() ? std::to_string(bindPort) : bindAddress + ":" + std::to_string(bindPort);
    if (type != ForwardingType::dynamic) {
        if (targetAddress.empty() || targetPort < 1) {
            return {};
        }
        argument += ":" + targetAddress + ":" + std::to_string(targetPort);
    }
    return {std::string(sshFlag(type)), std::move(argument)};
}

}  // namespace velmora
