#pragma once

#include <cstdint>
#include <functional>

namespace velmora {

/// Where status icons go on this desktop.
enum class TrayKind : std::uint8_t {
    menuBar,         ///< the system's own menu bar, which tints icons itself
    statusNotifier,  ///< a panel that takes icon and menu over D-Bus and draws both
    embedded,        ///< a panel that embeds our window; the menu is ours
};

/// Finds out whether there is a place for a status icon, and waits for one. Main thread.
class TrayWatcher {
public:
    TrayWatcher() = default;
    TrayWatcher(const TrayWatcher&) = delete;
    TrayWatcher& operator=(const TrayWatcher&) = delete;
    virtual ~TrayWatcher() = default;

    /// Looks once and then waits without waking up. `found` is called at most once, now or later, never from within
    /// this call; `missing` at most once and before it, when there is no place yet. Call once.
    virtual void start(std::function<void(TrayKind)> found, std::function<void()> missing) = 0;
};

}  // namespace velmora
