#pragma once

#include "fakes/InlineWorker.h"
#include "ui/FakeDialogs.h"
#include "ui/ManagerStand.h"
#include "ui/WindowServices.h"
#include "update/UpdateFakes.h"

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace velmora {

class RecordingWorkspace final : public Workspace {
public:
    void open(const std::filesystem::path& file) override { opened.push_back(file); }
    std::vector<std::filesystem::path> opened;
};

class RecordingLaunchAtLogin final : public LaunchAtLogin {
public:
    [[nodiscard]] bool isEnabled() const override { return enabled; }
    void set(bool value) override { calls.push_back(value); }
    bool enabled = false;
    std::vector<bool> calls;
};

/// All that a window needs, around a real manager and a real updater.
struct WindowStand : ManagerStand {
    using ManagerStand::ManagerStand;

    InlineWorker worker;
    test::FakeHttpClient http;
    test::FakeBundleTools bundles;
    test::RecordingLauncher detached;
    test::RecordingAlert updateAlert;
    Updater updater{{.scheduler = scheduler,
                     .defaults = defaults,
                     .worker = worker,
                     .http = http,
                     .bundles = bundles,
                     .launcher = detached,
                     .alert = updateAlert,
                     .temporaryFolder = home / "temporary",
                     .runningBundle = {.path = home / "Velmora.app", .isBundle = true, .version = "1.15.0"},
                     .defaultFeedURL = "https://updates.example/velmora/appcast.json",
                     .terminate = [] {}}};
    FakeDialogs dialogs;
    RecordingWorkspace workspace;
    RecordingLaunchAtLogin launchAtLogin;
    int quits = 0;
    std::vector<std::string> opened;  ///< names of the windows that a window has opened
    AppCommands commands{manager.hostListAccess(), dialogs, [this] { ++quits; }};
    WindowServices services{.manager = manager,
                            .updater = updater,
                            .defaults = defaults,
                            .dialogs = dialogs,
                            .workspace = workspace,
                            .launchAtLogin = launchAtLogin,
                            .commands = commands,
                            .openManagedWindow = [this](std::string_view id) { opened.emplace_back(id); },
                            .teamIdentifier = "TEAM123456"};

    /// The feed has this version, and the updater has seen it.
    void offerUpdate(const std::string& version) {
        http.answer = [version] {
            return HttpAnswer{.status = 200,
                              .body = R"({"version": ")" + version + R"(", "url": "https://updates.example/a.zip"})"};
        };
        updater.check(CheckTrigger::manual);
        worker.runAll();
        scheduler.runPosted();
    }
};

}  // namespace velmora
