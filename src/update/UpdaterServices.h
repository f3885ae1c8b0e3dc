#pragma once

#include "platform/BackgroundWorker.h"
#include "platform/BundleTools.h"
#include "platform/DefaultsStore.h"
#include "platform/DetachedLauncher.h"
#include "platform/HttpClient.h"
#include "platform/Scheduler.h"
#include "update/RunningBundle.h"
#include "update/UpdateAlert.h"

#include <filesystem>
#include <functional>
#include <string>

namespace velmora {

/// What the updater works with. Everything outlives the updater; the worker ends before the rest.
struct UpdaterServices {
    Scheduler& scheduler;
    DefaultsStore& defaults;
    BackgroundWorker& worker;
    HttpClient& http;
    BundleTools& bundles;
    DetachedLauncher& launcher;
    UpdateAlert& alert;
    std::filesystem::path temporaryFolder;  ///< with room for large files
    RunningBundle runningBundle;
    std::string defaultFeedURL;
    std::function<void()> terminate;  ///< quits the program as its menu does; nothing may cancel that
};

}  // namespace velmora
