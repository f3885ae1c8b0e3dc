#include "platform/SystemServices.h"

#include "platform/linux/AutostartEntry.h"
#include "platform/linux/LateCredentialStore.h"
#include "platform/linux/LateHttpClient.h"
#include "platform/linux/LinuxBundleTools.h"
#include "platform/linux/LinuxTrayWatcher.h"
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

std::filesystem::path runningProgram() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

/// The program's own libraries have the same place beside its folder wherever it is: in a build, a package, a bundle.
std::filesystem::path moduleFile(const char* name) {
    return runningProgram().parent_path().parent_path() / VELMORA_MODULE_FOLDER / name;
}

}  // namespace

std::unique_ptr<DefaultsStore> makeDefaultsStore(const Paths& paths) {
    return std::make_unique<IniDefaultsStore>(paths.configuration / "com.velmora.app.conf");
}

std::unique_ptr<CredentialStore> makeCredentialStore() {
    return std::make_unique<LateCredentialStore>(moduleFile("keyring.so"));
}

std::unique_ptr<HttpClient> makeHttpClient() {
    return std::make_unique<LateHttpClient>(moduleFile("network.so"));
}

std::unique_ptr<TrayWatcher> makeTrayWatcher() {
    return std::make_unique<LinuxTrayWatcher>();
}

std::unique_ptr<ActivationPolicy> makeActivationPolicy() {
    return std::make_unique<WindowsDecide>();
}

std::unique_ptr<LaunchAtLogin> makeLaunchAtLogin(const Paths& paths) {
    return std::make_unique<AutostartEntry>(paths.configuration, runningProgram());
}

std::unique_ptr<BundleTools> makeBundleTools(ProcessRunner& runner, const BundleTrust& trust, const Paths& paths) {
    return std::make_unique<LinuxBundleTools>(
        runner, LinuxBundleTools::Trust{.signer = trust.teamIdentifier, .publicKey = trust.publicKey}, paths.temporary);
}

}  // namespace velmora
