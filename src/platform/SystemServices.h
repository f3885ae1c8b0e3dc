#pragma once

#include "platform/ActivationPolicy.h"
#include "platform/BundleTools.h"
#include "platform/CredentialStore.h"
#include "platform/DefaultsStore.h"
#include "platform/HttpClient.h"
#include "platform/LaunchAtLogin.h"
#include "platform/Paths.h"
#include "platform/ProcessRunner.h"
#include "platform/TrayWatcher.h"

#include <memory>
#include <string>

namespace velmora {

// What every system has in its own way. Each function is there once for each system. Main thread, with a QApplication.

std::unique_ptr<DefaultsStore> makeDefaultsStore(const Paths& paths);
std::unique_ptr<CredentialStore> makeCredentialStore();
std::unique_ptr<HttpClient> makeHttpClient();
std::unique_ptr<TrayWatcher> makeTrayWatcher();
std::unique_ptr<ActivationPolicy> makeActivationPolicy();
std::unique_ptr<LaunchAtLogin> makeLaunchAtLogin(const Paths& paths);

/// Whom an update must be signed by, in the terms of each system.
struct BundleTrust {
    std::string teamIdentifier;
    std::string publicKey;        ///< OpenSSH
    std::string codeRequirement;  ///< of macOS's code signing
};
std::unique_ptr<BundleTools> makeBundleTools(ProcessRunner& runner, const BundleTrust& trust, const Paths& paths);

}  // namespace velmora
