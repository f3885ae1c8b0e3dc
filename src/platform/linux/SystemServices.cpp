#include "platform/SystemServices.h"

#include "platform/linux/AutostartEntry.h"
#include "platform/linux/LinuxBundleTools.h"
#include "platform/linux/LinuxTrayWatcher.h"
#include "platform/linux/SecretServiceStore.h"
#include "platform/qt/IniDefaultsStore.h"

namespace velmora {

namespace {

/// A desktop lists programs by their windows; there is nothing to switch.
class WindowsDecide final : public ActivationPolicy {
public:
    void setRegular() override {}
    void setAccessory() override {}
    void activate() override {}
};

}  // namespace

std::unique_ptr<DefaultsStore> makeDefaultsStore(const Paths& paths) {
    return std::make_unique<IniDefaultsStore>(paths.configuration / "com.velmora.app.conf");
}

std::unique_ptr<CredentialStore> makeCredentialStore() {
    return std::make_unique<SecretServiceStore>();
}

std::unique_ptr<TrayWatcher> makeTrayWatcher() {
    return std::make_unique<LinuxTrayWatcher>();
}

std::unique_ptr<ActivationPolicy> makeActivationPolicy() {
    return std::make_unique<WindowsDecide>();
}

std::unique_ptr<LaunchAtLogin> makeLaunchAtLogin(const Paths& paths) {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return std::make_unique<AutostartEntry>(paths.configuration, program);
}

std::unique_ptr<BundleTools> makeBundleTools(ProcessRunner& runner, const BundleTrust& trust, const Paths& paths) {
    return std::make_unique<LinuxBundleTools>(
        runner, LinuxBundleTools::Trust{.signer = trust.teamIdentifier, .publicKey = trust.publicKey}, paths.temporary);
}

}  // namespace velmora
