#pragma once

#include "manager/TunnelManager.h"
#include "update/UpdateIdentity.h"
#include "update/Updater.h"

#include <cstdint>
#include <functional>
#include <string>

namespace velmora {

/// What a program that is not the real one may want otherwise.
struct ProgramOptions {
    std::string sshProgram = "/usr/bin/ssh";
    std::uint16_t pacPort = 18087;  ///< 0 is any free port
    UpdateIdentity updateIdentity = UpdateIdentity::ofThisBuild();
    /// Called when everything is there and before anything happens.
    std::function<void(TunnelManager&, Updater&)> beforeLoop = [](TunnelManager&, Updater&) {};
};

/// The whole program: puts the parts together, runs, and returns the exit status.
int runVelmora(int argc, char** argv, const ProgramOptions& options);

}  // namespace velmora
