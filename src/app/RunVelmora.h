#pragma once

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
    std::function<void(Updater&)> beforeLoop = [](Updater&) {};  ///< everything is there, nothing has happened yet
};

/// The whole program: puts the parts together, runs, and returns the exit status.
int runVelmora(int argc, char** argv, const ProgramOptions& options);

}  // namespace velmora
