#pragma once

#include "base/Observable.h"
#include "base/Result.h"
#include "platform/Scheduler.h"
#include "update/Installation.h"
#include "update/UpdateError.h"
#include "update/UpdateManifest.h"
#include "update/UpdaterServices.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace velmora {

/// Bytes of the archive.
struct DownloadProgress {
    std::uint64_t received = 0;
    std::optional<std::uint64_t> total;

    bool operator==(const DownloadProgress&) const = default;
};

enum class CheckTrigger { manual, automatic };

/// Keeps the program up to date: looks for a newer version now and then, and installs it when the user says so. Waits
/// for nothing. Main thread.
class Updater final {
public:
    using Time = std::chrono::system_clock::time_point;

    explicit Updater(UpdaterServices services);
    Updater(const Updater&) = delete;
    Updater& operator=(const Updater&) = delete;
    ~Updater() = default;

    /// Arms the automatic checks: 5 seconds from now and every 6 hours, or never when `autoUpdate` is off.
    void start();

    /// Asks the feed. An automatic check says nothing when it fails, and does nothing within a minute of the last one.
    void check(CheckTrigger trigger);

    /// Installs what is available and ends the program. A failure is shown by `errorMessage` and an alert.
    void install();

    void setAutoUpdate(bool enabled);
    void setFeedURL(const std::string& url);

    /// Of the running program.
    [[nodiscard]] const std::string& currentVersion() const { return services_.runningBundle.version; }

    [[nodiscard]] Observable<bool>& autoUpdate() { return autoUpdate_; }
    [[nodiscard]] Observable<std::string>& feedURL() { return feedURL_; }
    /// The newer version that was found last.
    [[nodiscard]] Observable<std::optional<UpdateManifest>>& available() { return available_; }
    /// While a check or an installation runs.
    [[nodiscard]] Observable<bool>& isBusy() { return isBusy_; }
    /// What goes on, or how the last check ended.
    [[nodiscard]] Observable<std::optional<std::string>>& status() { return status_; }
    /// The last failure of something that the user asked for.
    [[nodiscard]] Observable<std::optional<std::string>>& errorMessage() { return errorMessage_; }
    [[nodiscard]] Observable<std::optional<Time>>& lastCheck() { return lastCheck_; }
    /// While an archive is downloaded.
    [[nodiscard]] Observable<std::optional<DownloadProgress>>& progress() { return progress_; }

private:
    [[nodiscard]] bool hasJustChecked() const;
    void finishCheck(CheckTrigger trigger, const Result<UpdateManifest, UpdateError>& result);
    void offer(const UpdateManifest& manifest, CheckTrigger trigger);
    [[nodiscard]] Installation::Events installationEvents();
    void finishInstallation(const Result<void, UpdateError>& result);

    /// Makes a function for any thread out of one for the main thread; it does nothing once the updater is gone.
    template <typename... Args>
    [[nodiscard]] std::function<void(Args...)> onMainThread(void (Updater::*method)(Args...));
    void showProgress(std::uint64_t received, std::optional<std::uint64_t> total);
    void showStage(Installation::Stage stage);

    UpdaterServices services_;
    Observable<bool> autoUpdate_;
    Observable<std::string> feedURL_;
    Observable<std::optional<UpdateManifest>> available_;
    Observable<bool> isBusy_{false};
    Observable<std::optional<std::string>> status_;
    Observable<std::optional<std::string>> errorMessage_;
    Observable<std::optional<Time>> lastCheck_;
    Observable<std::optional<DownloadProgress>> progress_;
    Scheduler::TimerHandle firstCheck_;
    Scheduler::TimerHandle timer_;
    std::shared_ptr<Updater*> self_ = std::make_shared<Updater*>(this);  ///< gone with the updater
};

}  // namespace velmora
