#pragma once

#include <filesystem>

namespace velmora {

/// Files as the user sees them. Main thread.
class Workspace {
public:
    Workspace() = default;
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;
    virtual ~Workspace() = default;

    /// Shows a file in the program that the user has for its kind. Does not wait for it.
    virtual void open(const std::filesystem::path& file) = 0;
};

}  // namespace velmora
