#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace velmora {

/// The bundle that this program runs from.
struct RunningBundle {
    std::filesystem::path path;  ///< "…/Velmora.app", or the program itself where it is installed without a bundle
    bool isBundle = false;       ///< only a bundle can be replaced
    std::string version;         ///< CFBundleShortVersionString, "0" when missing or not text

    /// Looks around a program of this absolute path. A program that is not in a bundle, as packages of the system have
    /// it, has no information file: its version is the one that it was built with.
    static RunningBundle ofProgram(const std::filesystem::path& program, std::string_view builtVersion);
};

}  // namespace velmora
