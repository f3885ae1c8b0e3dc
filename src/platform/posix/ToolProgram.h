#pragma once

#include "platform/BundleTools.h"
#include "platform/ProcessRunner.h"

#include <filesystem>
#include <string>
#include <vector>

namespace velmora {

/// Runs a tool program to its end and returns its exit status with everything that it said. A program that cannot be
/// started gives a failing status with the system's description.
ToolOutput runTool(ProcessRunner& runner, const std::string& program, const std::vector<std::string>& arguments,
                   const std::filesystem::path& standardInput = "/dev/null");

}  // namespace velmora
