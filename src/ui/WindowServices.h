#pragma once

#include "manager/TunnelManager.h"
#include "platform/DefaultsStore.h"
#include "platform/LaunchAtLogin.h"
#include "platform/Workspace.h"
#include "ui/AppCommands.h"
#include "ui/Dialogs.h"
#include "update/Updater.h"

#include <functional>
#include <string>
#include <string_view>

namespace velmora {

/// The names of the windows.
namespace windows {
inline constexpr std::string_view main = "main";
inline constexpr std::string_view settings = "settings";
inline constexpr std::string_view about = "about";
inline constexpr std::string_view pacEditor = "pac-editor";
inline constexpr std::string_view exceptionsEditor = "exceptions-editor";
inline constexpr std::string_view quickException = "quick-exception";
}  // namespace windows

/// What the windows work with. All of it outlives them.
struct WindowServices {
    TunnelManager& manager;
    Updater& updater;
    DefaultsStore& defaults;  ///< also of the windows' places and sizes
    Dialogs& dialogs;
    Workspace& workspace;
    LaunchAtLogin& launchAtLogin;
    AppCommands& commands;
    std::function<void(std::string_view id)> openManagedWindow;
    std::string teamIdentifier;  ///< of the builds that the updater installs
};

}  // namespace velmora
