// The program as it is shipped, but it trusts the key that the environment names and installs what it finds. For the
// figures it notes how long the main thread was busy with something at the longest.
#include "app/RunVelmora.h"

#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

/// A timer of one millisecond that notices when it comes late.
class LongestBlock final {
public:
    LongestBlock() {
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
            const auto now = Clock::now();
            longest_ = std::max(longest_, now - last_);
            last_ = now;
        });
    }

    void restart() {
        last_ = Clock::now();
        longest_ = {};
        timer_.start(1);
    }

    /// Milliseconds above the timer's own.
    [[nodiscard]] double stop() {
        timer_.stop();
        return std::chrono::duration<double, std::milli>(std::max(longest_, Clock::now() - last_)).count() - 1;
    }

private:
    QTimer timer_;
    Clock::time_point last_;
    Clock::duration longest_{};
};

/// Installs as soon as something is offered, and writes down how busy the thread was.
class SelfInstaller final {
public:
    void watch(velmora::Updater& updater) {
        updater_ = &updater;
        subscriptions_.push_back(updater.isBusy().observe([this] { busyChanged(); }));
        subscriptions_.push_back(updater.status().observe([this] { statusChanged(); }));
        subscriptions_.push_back(updater.errorMessage().observe([this] {
            if (*updater_->errorMessage()) {
                note("error", **updater_->errorMessage());
            }
        }));
    }

private:
    void busyChanged() {
        if (*updater_->isBusy() && !*updater_->available()) {
            phase_ = "check";
            block_.restart();
        } else if (!*updater_->isBusy()) {
            endPhase();
            if (*updater_->available() && !installed_) {
                installed_ = true;
                const int delay = std::atoi(environment("VELMORA_TEST_INSTALL_DELAY").c_str());
                QTimer::singleShot(delay, &context_, [this] { updater_->install(); });
            }
        }
    }

    void statusChanged() {
        const auto& status = *updater_->status();
        if (!status) {
            return;
        }
        endPhase();
        phase_ = *status;
        block_.restart();
        note("status", *status);
    }

    void endPhase() {
        if (!phase_.empty()) {
            note("blocked", phase_ + " " + std::to_string(block_.stop()));
            phase_.clear();
        }
    }

    static void note(const std::string& what, const std::string& text) {
        const auto file = environment("VELMORA_TEST_NOTES");
        if (!file.empty()) {
            std::ofstream(file, std::ios::app) << what << " " << text << "\n";
        }
    }

    velmora::Updater* updater_ = nullptr;
    QObject context_;
    LongestBlock block_;
    std::string phase_;
    bool installed_ = false;
    std::vector<velmora::Subscription> subscriptions_;
};

}  // namespace

int main(int argc, char** argv) {
    std::unique_ptr<SelfInstaller> installer;  // made when there is an application
    velmora::ProgramOptions options;
    options.pacPort = 0;
    options.updateIdentity.publicKey = environment("VELMORA_TEST_UPDATE_KEY");
    options.beforeLoop = [&](velmora::TunnelManager&, velmora::Updater& updater) {
        installer = std::make_unique<SelfInstaller>();
        installer->watch(updater);
    };
    return velmora::runVelmora(argc, argv, options);
}
