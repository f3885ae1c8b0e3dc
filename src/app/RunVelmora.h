#pragma once

#include <cstdint>
#include <string>

namespace velmora {

/// What a program that is not the real one may want otherwise.
struct ProgramOptions {
    std::string sshProgram = "/usr/bin/ssh";
    std::uint16_t pacPort = 18087;  ///< 0 is any free port
};

/// The whole program: puts the parts together, runs, and returns the exit status.
int runVelmora(int argc, char** argv, const ProgramOptions& options);

}  // namespace velmora
