#include "sync/CoreTunnelImporter.h"

#include "base/AtomicFile.h"
#include "base/Text.h"
#include "model/HostJson.h"
#include "model/JsonDocument.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace velmora {

namespace {

namespace json = boost::json;

// ---- the file as it is; texts stay in the document ----

using Options = std::map<std::string_view, std::string_view>;

struct CTForwarding {
    std::string_view type;
    std::optional<std::string_view> bindAddress;
    std::optional<std::int64_t> bindPort;
    std::optional<std::string_view> targetAddress;
    std::optional<std::string_view> targetHost;
    std::optional<std::int64_t> targetPort;
    std::optional<bool> enabled;
};

struct CTProfile {
    std::string_view name;
    std::string_view address;
    std::optional<std::int64_t> port;
    std::optional<std::string_view> user;
    std::optional<bool> autoConnect;
    std::optional<std::vector<CTForwarding>> forwardings;
    std::optional<Options> options;
    std::optional<std::string_view> identityFile;
};

struct CTBackup {
    std::vector<CTProfile> profiles;
};

// Each reader is false when the value is not of the type.

bool read(const json::value& value, std::string_view& out) {
    const auto text = stringFrom(value);
    out = text.value_or(std::string_view());
    return text.has_value();
}

bool read(const json::value& value, bool& out) {
    const auto flag = booleanFrom(value);
    out = flag.value_or(false);
    return flag.has_value();
}

bool read(const json::value& value, std::int64_t& out) {
    const auto number = integerFrom(value);
    out = number.value_or(0);
    return number.has_value();
}

bool read(const json::value& value, Options& out) {
    const auto* object = value.if_object();
    if (object == nullptr) {
        return false;
    }
    for (const auto& option : *object) {
        if (!read(option.value(), out[option.key()])) {
            return false;
        }
    }
    return true;
}

bool read(const json::value& value, CTForwarding& out);
bool read(const json::value& value, CTProfile& out);

template <typename Element>
bool read(const json::value& value, std::vector<Element>& out) {
    const auto* array = value.if_array();
    if (array == nullptr) {
        return false;
    }
    out.reserve(array->size());
    for (const auto& element : *array) {
        if (!read(element, out.emplace_back())) {
            return false;
        }
    }
    return true;
}

template <typename T>
bool readRequired(const json::object& object, std::string_view key, T& out) {
    const auto* value = object.if_contains(key);
    return value != nullptr && read(*value, out);
}

template <typename T>
bool readOptional(const json::object& object, std::string_view key, std::optional<T>& out) {
    const auto* value = object.if_contains(key);
    return value == nullptr || value->is_null() || read(*value, out.emplace());
}

bool read(const json::value& value, CTForwarding& out) {
    const auto* object = value.if_object();
    return object != nullptr && readRequired(*object, "type", out.type) &&
           readOptional(*object, "bindAddress", out.bindAddress) && readOptional(*object, "bindPort", out.bindPort) &&
           readOptional(*object, "targetAddress", out.targetAddress) &&
           readOptional(*object, "targetHost", out.targetHost) && readOptional(*object, "targetPort", out.targetPort) &&
           readOptional(*object, "enabled", out.enabled);
}

bool read(const json::value& value, CTProfile& out) {
    const auto* object = value.if_object();
    return object != nullptr && readRequired(*object, "name", out.name) &&
           readRequired(*object, "address", out.address) && readOptional(*object, "port", out.port) &&
           readOptional(*object, "user", out.user) && readOptional(*object, "autoConnect", out.autoConnect) &&
           readOptional(*object, "forwardings", out.forwardings) && readOptional(*object, "options", out.options) &&
           readOptional(*object, "identityFile", out.identityFile);
}

bool read(const json::value& value, CTBackup& out) {
    const auto* object = value.if_object();
    return object != nullptr && readRequired(*object, "profiles", out.profiles);
}

// ---- what it means ----

constexpr char asciiLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalInAnyCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char left, char right) { return asciiLower(left) == asciiLower(right); });
}

/// Any capitalisation counts. (No other script has letters whose other case is one of the names' letters.)
ForwardingType forwardingType(std::string_view text) {
    for (const auto type : allForwardingTypes) {
        if (equalInAnyCase(text, rawValue(type))) {
            return type;
        }
    }
    return ForwardingType::dynamic;
}

ForwardingRule convertRule(const CTForwarding& forwarding) {
    ForwardingRule rule;
    rule.type = forwardingType(forwarding.type);
    rule.bindAddress = forwarding.bindAddress.value_or("");
    rule.bindPort = forwarding.bindPort.value_or(0);
    const auto& target = forwarding.targetAddress ? forwarding.targetAddress : forwarding.targetHost;
    rule.targetAddress = target.value_or("");
    rule.targetPort = forwarding.targetPort.value_or(0);
    rule.enabled = forwarding.enabled.value_or(true);
    return rule;
}

/// Neither a name with dots nor an address: something that the user's ssh configuration explains.
bool isAlias(std::string_view address) {
    return !address.empty() && address.find_first_of(".:") == std::string_view::npos &&
           !isNumeric(characters(address).front());
}

/// A whole decimal number of 64 bits, with or without a sign.
std::optional<std::int64_t> integerFromText(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) {
            return std::nullopt;
        }
    }
    std::int64_t number = 0;
    const auto* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(number) : std::nullopt;
}

std::int64_t integerOption(const Options& options, std::string_view name, std::int64_t otherwise) {
    const auto option = options.find(name);
    return option == options.end() ? otherwise : integerFromText(option->second).value_or(otherwise);
}

SSHHost convert(const CTProfile& profile) {
    SSHHost host;
    host.name = profile.name;
    host.hostname = profile.address;
    host.useSSHConfigAlias = isAlias(host.hostname);
    if (!host.useSSHConfigAlias) {  // an alias takes both from the ssh configuration
        host.port = profile.port.value_or(host.port);
        host.username = profile.user.value_or("");
    }
    host.connectOnStartup = profile.autoConnect.value_or(false);
    host.identityFile = profile.identityFile.value_or("");
    if (profile.options) {
        host.serverAliveInterval = integerOption(*profile.options, "ServerAliveInterval", host.serverAliveInterval);
        host.serverAliveCountMax = integerOption(*profile.options, "ServerAliveCountMax", host.serverAliveCountMax);
    }
    if (profile.forwardings) {
        host.forwardingRules.reserve(profile.forwardings->size());
        for (const auto& forwarding : *profile.forwardings) {
            host.forwardingRules.push_back(convertRule(forwarding));
        }
    }
    return host;
}

}  // namespace

std::string_view description(ImportError) {
    return "Could not read the .coretunnel file.";
}

Result<std::vector<SSHHost>, ImportError> CoreTunnelImporter::decode(std::string_view bytes) {
    const auto document = JsonDocument::parse(bytes, maximumHostListSize);
    CTBackup backup;
    if (!document || !read(document->root(), backup)) {
        return ImportError::invalidFile;
    }
    std::vector<SSHHost> hosts;
    hosts.reserve(backup.profiles.size());
    for (const auto& profile : backup.profiles) {
        hosts.push_back(convert(profile));
    }
    return hosts;
}

Result<std::vector<SSHHost>, Error> CoreTunnelImporter::importHosts(const std::filesystem::path& file) {
    const auto bytes = readFile(file, maximumHostListSize);
    if (!bytes) {
        return bytes.error();
    }
    auto hosts = decode(*bytes);
    if (!hosts) {
        return Error{std::string(description(hosts.error()))};
    }
    return *std::move(hosts);
}

}  // namespace velmora
