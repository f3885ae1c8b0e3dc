#pragma once

#include "base/Result.h"

#include <filesystem>

namespace velmora {

/// The private folder of one installation. It goes with everything in it unless it is handed over.
class WorkArea final {
public:
    /// Makes "VelmoraUpdate-" and a new UUID in a folder, mode 0700. Fails where other users could exchange it: the
    /// folder above must be ours or root's, and nobody else's to rename in.
    static Result<WorkArea, Error> create(const std::filesystem::path& temporaryFolder);

    WorkArea(WorkArea&& other) noexcept;
    WorkArea(const WorkArea&) = delete;
    WorkArea& operator=(const WorkArea&) = delete;
    WorkArea& operator=(WorkArea&&) = delete;
    ~WorkArea();

    [[nodiscard]] std::filesystem::path archive() const { return path_ / "update.zip"; }
    [[nodiscard]] std::filesystem::path unpacked() const { return path_ / "unpacked"; }

    /// From now on it stays: somebody else needs what is in it.
    void handOver() { path_.clear(); }

private:
    explicit WorkArea(std::filesystem::path path) : path_(std::move(path)) {}

    std::filesystem::path path_;
};

}  // namespace velmora
