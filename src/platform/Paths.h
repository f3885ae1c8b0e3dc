#pragma once

#include <filesystem>
#include <set>

namespace velmora {

/// Where the user's files go. Absolute paths; nothing is created here.
struct Paths {
    std::filesystem::path home;
    std::filesystem::path applicationSupport;  ///< profiles stand in "Velmora" below it
    std::filesystem::path library;             ///< logs stand in "Logs/Velmora" below it
    std::filesystem::path configuration;       ///< the defaults store and autostart entries (Linux)
    std::filesystem::path temporary;           ///< for askpass scripts: private to the user, programs may run from it
    std::filesystem::path largeTemporary;      ///< for downloads
    std::set<std::filesystem::path> otherTemporaries{};  ///< where `temporary` may be for a run of another environment

    /// As this system has it.
    static Paths ofThisUser();
};

}  // namespace velmora
