#pragma once

#include <string>

namespace velmora {

/// What a program that is not the real one may want otherwise.
struct ProgramOptions {
    std::string sshProgram = "/usr/bin/ssh";
};

/// The whole program: puts the parts together, runs, and returns the exit status.
int runVelmora(int argc, char** argv, const ProgramOptions& options);

}  // namespace velmora
