#include "update/Updater.h"

#include "base/Localized.h"
#include "update/FetchManifest.h"
#include "update/VersionOrder.h"

#include <utility>

namespace velmora {

namespace {

constexpr std::string_view autoUpdateKey = "autoUpdate";
constexpr std::string_view feedUrlKey = "updateFeedURL";
constexpr auto delayAfterStart = std::chrono::seconds(5);
constexpr auto checkInterval = std::chrono::hours(6);
constexpr auto quietTime = std::chrono::seconds(60);

/// On unless the settings hold a boolean that says otherwise; a text that was written there by hand is none.
bool readAutoUpdate(const DefaultsStore& defaults) {
    const auto text = defaults.string(autoUpdateKey);
    const bool isBoolean = text.empty() || text == "true" || text == "false";
    return !defaults.contains(autoUpdateKey) || !isBoolean || defaults.boolean(autoUpdateKey);
}

std::string readFeedUrl(const UpdaterServices& services) {
    return services.defaults.contains(feedUrlKey) ? services.defaults.string(feedUrlKey) : services.defaultFeedURL;
}

}  // namespace

Updater::Updater(UpdaterServices services)
    : services_(std::move(services)),
      autoUpdate_(readAutoUpdate(services_.defaults)),
      feedURL_(readFeedUrl(services_)) {}

void Updater::start() {
    firstCheck_.reset();
    timer_.reset();
    if (!*autoUpdate_) {
        return;
    }
    const auto checkNow = [this] { check(CheckTrigger::automatic); };
    firstCheck_ = services_.scheduler.after(delayAfterStart, checkNow);
    timer_ = services_.scheduler.every(checkInterval, checkNow);
}

void Updater::setAutoUpdate(bool enabled) {
    autoUpdate_.set(enabled);
    services_.defaults.setBoolean(autoUpdateKey, enabled);
    start();
}

void Updater::setFeedURL(const std::string& url) {
    feedURL_.set(url);
    services_.defaults.setString(feedUrlKey, url);
}

bool Updater::hasJustChecked() const {
    if (!*lastCheck_) {
        return false;
    }
    // A clock that was set back must not silence the checks until it has caught up.
    const auto passed = services_.scheduler.now() - **lastCheck_;
    return passed >= Time::duration::zero() && passed < quietTime;
}

void Updater::check(CheckTrigger trigger) {
    if (*isBusy_ || (trigger == CheckTrigger::automatic && hasJustChecked())) {
        return;
    }
    isBusy_.set(true);
    errorMessage_.set(std::nullopt);
    if (trigger == CheckTrigger::manual) {
        status_.set(localized("velmora::Updater", "Checking…"));
    }
    services_.worker.run([&http = services_.http, url = *feedURL_, trigger,
                          finish = onMainThread(&Updater::finishCheck)](const Cancellation& cancellation) {
        finish(trigger, fetchManifest(http, url, cancellation));
    });
}

void Updater::finishCheck(CheckTrigger trigger, const Result<UpdateManifest, UpdateError>& result) {
    lastCheck_.set(services_.scheduler.now());
    if (result) {
        offer(*result, trigger);
    } else {
        status_.set(std::nullopt);
        if (trigger == CheckTrigger::manual) {
            errorMessage_.set(result.error().description());
        }
    }
    isBusy_.set(false);
}

void Updater::offer(const UpdateManifest& manifest, CheckTrigger trigger) {
    if (isNewerVersion(manifest.version, currentVersion())) {
        available_.set(manifest);
        status_.set(std::nullopt);
        return;
    }
    available_.set(std::nullopt);
    if (trigger == CheckTrigger::manual) {
        status_.set(filled(localized("velmora::Updater", "You're on the latest version (v%1)."), {currentVersion()}));
    } else {
        status_.set(std::nullopt);
    }
}

void Updater::install() {
    if (!*available_ || *isBusy_) {
        return;
    }
    errorMessage_.set(std::nullopt);
    isBusy_.set(true);
    status_.set(filled(localized("velmora::Updater", "Downloading v%1…"), {(*available_)->version}));
    services_.worker.run([tools = Installation::Tools{services_.http, services_.bundles, services_.launcher},
                          folder = services_.temporaryFolder, bundle = services_.runningBundle,
                          events = installationEvents(), manifest = **available_,
                          finish = onMainThread(&Updater::finishInstallation)](const Cancellation& cancellation) {
        finish(Installation(tools, folder, bundle, events, cancellation).run(manifest));
    });
}

Installation::Events Updater::installationEvents() {
    return {.downloaded = onMainThread(&Updater::showProgress), .reached = onMainThread(&Updater::showStage)};
}

void Updater::showProgress(std::uint64_t received, std::optional<std::uint64_t> total) {
    progress_.set(DownloadProgress{received, total});
}

void Updater::showStage(Installation::Stage stage) {
    progress_.set(std::nullopt);
    status_.set(stage == Installation::Stage::verifying ? localized("velmora::Updater", "Verifying…")
                                                        : localized("velmora::Updater", "Installing…"));
}

void Updater::finishInstallation(const Result<void, UpdateError>& result) {
    if (result) {
        services_.terminate();  // busy to the end: the script has the say now
        return;
    }
    const auto description = result.error().description();
    progress_.set(std::nullopt);
    status_.set(std::nullopt);
    errorMessage_.set(description);
    services_.alert.show(localized("velmora::Updater", "Update failed"), description, [self = std::weak_ptr(self_)] {
        if (const auto updater = self.lock()) {
            (*updater)->isBusy_.set(false);
        }
    });
}

template <typename... Args>
std::function<void(Args...)> Updater::onMainThread(void (Updater::*method)(Args...)) {
    return [&scheduler = services_.scheduler, self = std::weak_ptr(self_), method](Args... args) {
        scheduler.post([self, method, ... values = args] {
            if (const auto updater = self.lock()) {
                ((**updater).*method)(values...);
            }
        });
    };
}

}  // namespace velmora
