#pragma once

#include "base/UniqueFd.h"

#include <QSocketNotifier>

#include <filesystem>
#include <functional>
#include <memory>

namespace velmora {

/// Lets one program run for a directory, whoever's display it is on. The first holds a lock that the system releases
/// when it ends, however it ends, and listens at a named pipe; a later one knocks there. Main thread.
class SingleInstance final {
public:
    enum class Role {
        first,  ///< ours is the one; also where the directory takes no lock
        later   ///< another one runs and has been told
    };

    /// Makes the directory (0700) when it is missing.
    explicit SingleInstance(const std::filesystem::path& directory);
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    ~SingleInstance();

    [[nodiscard]] Role role() const { return role_; }

    /// Nobody is told any more. Whoever comes from now on waits for this one to go, and takes its place.
    void stopListening();

    /// From now on calls the function whenever a later one has knocked, also if that was before.
    void onKnock(std::function<void()> knocked);

private:
    [[nodiscard]] bool lock(const std::filesystem::path& file);
    void listen();
    [[nodiscard]] bool knock() const;
    [[nodiscard]] bool drain() const;

    std::filesystem::path pipePath_;
    Role role_ = Role::first;
    UniqueFd lock_;
    UniqueFd pipe_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace velmora
