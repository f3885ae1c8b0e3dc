#include "tunnel/SshArguments.h"

#include "base/Text.h"

#include <string_view>

namespace velmora {

namespace {

using Arguments = std::vector<std::string>;

void addOption(Arguments& arguments, std::string option) {
    arguments.emplace_back("-o");
    arguments.push_back(std::move(option));
}

/// Only "~" and "~/…" are ours to expand; ssh itself knows what "~someone/…" means.
std::string expandTilde(const std::string& path, const std::string& home) {
    if (path == "~" || path.starts_with("~/")) {
        return home + path.substr(1);
    }
    return path;
}

void addJumpHost(Arguments& arguments, const SSHHost& host, const SshSettings& settings) {
    if (!host.proxyJump.empty()) {
        arguments.insert(arguments.end(), {"-J", host.proxyJump});
    } else if (settings.globalProxyJumpEnabled && !settings.globalProxyJump.empty()) {
        arguments.insert(arguments.end(), {"-J", settings.globalProxyJump});
    }
}

/// What an alias of the user's ssh configuration supplies itself.
void addServerOptions(Arguments& arguments, const SSHHost& host, const SshSettings& settings,
                      const std::string& identityFile) {
    arguments.insert(arguments.end(), {"-p", std::to_string(host.port)});
    if (host.authMethod == AuthMethod::key && !identityFile.empty()) {
        arguments.insert(arguments.end(), {"-i", identityFile});
    }
    if (!host.strictHostKeyChecking) {
        addOption(arguments, "StrictHostKeyChecking=no");
        addOption(arguments, "UserKnownHostsFile=/dev/null");
    }
    addJumpHost(arguments, host, settings);
}

void addPerformanceOptions(Arguments& arguments) {
    addOption(arguments, "GSSAPIAuthentication=no");
    addOption(arguments, "Ciphers=aes128-gcm@openssh.com,chacha20-poly1305@openssh.com,aes256-gcm@openssh.com");
    addOption(arguments, "IPQoS=lowdelay throughput");
}

void addCustomOptions(Arguments& arguments, const std::string& customOptions) {
    for (const auto line : split(customOptions, '\n')) {
        if (const auto option = trimWhitespace(line); !option.empty()) {
            addOption(arguments, std::string(option));
        }
    }
}

std::string destination(const SSHHost& host) {
    if (host.useSSHConfigAlias || host.username.empty()) {
        return host.hostname;
    }
    return host.username + "@" + host.hostname;
}

void addConnectionArguments(Arguments& arguments, const SSHHost& host, const SshSettings& settings,
                            const std::string& identityFile) {
    if (host.noSessionRequest) {
        arguments.emplace_back("-N");
    }
    if (!host.useSSHConfigAlias) {
        addServerOptions(arguments, host, settings, identityFile);
    }
    addOption(arguments, "ServerAliveInterval=" + std::to_string(host.serverAliveInterval));
    addOption(arguments, "ServerAliveCountMax=" + std::to_string(host.serverAliveCountMax));
    addOption(arguments, "ConnectTimeout=" + std::to_string(host.connectTimeout));
    if (host.compression) {
        arguments.emplace_back("-C");
    }
    if (settings.performanceMode) {
        addPerformanceOptions(arguments);
    }
    for (const auto& rule : host.forwardingRules) {
        for (auto& argument : rule.sshArguments()) {
            arguments.push_back(std::move(argument));
        }
    }
    addCustomOptions(arguments, host.customOptions);
    arguments.push_back(destination(host));
}

}  // namespace

std::vector<std::string> sshArguments(const SSHHost& host, const SshSettings& settings, const std::string& home,
                                      AskpassPrepared askpass) {
    Arguments arguments;
    if (askpass == AskpassPrepared::yes) {
        addOption(arguments, "IdentitiesOnly=yes");
        addOption(arguments, "NumberOfPasswordPrompts=1");
    }
    addConnectionArguments(arguments, host, settings, expandTilde(host.identityFile, home));
    return arguments;
}

std::string sshCommand(const SSHHost& host, const SshSettings& settings) {
    Arguments arguments{"ssh"};
    addConnectionArguments(arguments, host, settings, host.identityFile);
    return join(arguments, " ");
}

}  // namespace velmora
