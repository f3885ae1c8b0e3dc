#include "platform/SystemServices.h"

#include "platform/macos/DockPolicy.h"
#include "platform/macos/KeychainCredentialStore.h"
#include "platform/macos/LoginItem.h"
#include "platform/macos/MacBundleTools.h"
#include "platform/qt/QtDefaultsStore.h"
#include "platform/qt/QtHttpClient.h"

#include <QObject>
#include <QSettings>
#include <QTimer>

#include <utility>

namespace velmora {

namespace {

/// The menu bar is always there.
class MenuBarTray final : public TrayWatcher {
public:
    void start(std::function<void(TrayKind)> found, std::function<void()> /*missing*/) override {
        QTimer::singleShot(0, &queue_, [found = std::move(found)] { found(TrayKind::menuBar); });
    }

private:
    QObject queue_;
};

}  // namespace

std::unique_ptr<DefaultsStore> makeDefaultsStore(const Paths& /*paths*/) {
    auto settings = std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope,
                                                QStringLiteral("velmora.com"), QStringLiteral("app"));
    settings->setFallbacksEnabled(false);
    return std::make_unique<QtDefaultsStore>(std::move(settings));
}

std::unique_ptr<CredentialStore> makeCredentialStore() {
    return std::make_unique<KeychainCredentialStore>();
}

std::unique_ptr<HttpClient> makeHttpClient() {
    return std::make_unique<QtHttpClient>();
}

std::unique_ptr<TrayWatcher> makeTrayWatcher() {
    return std::make_unique<MenuBarTray>();
}

std::unique_ptr<ActivationPolicy> makeActivationPolicy() {
    return std::make_unique<DockPolicy>();
}

std::unique_ptr<LaunchAtLogin> makeLaunchAtLogin(const Paths& /*paths*/) {
    return std::make_unique<LoginItem>();
}

std::unique_ptr<BundleTools> makeBundleTools(ProcessRunner& runner, const BundleTrust& trust, const Paths& /*paths*/) {
    return std::make_unique<MacBundleTools>(runner, trust.codeRequirement);
}

}  // namespace velmora
