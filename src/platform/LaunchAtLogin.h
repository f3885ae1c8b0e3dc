#pragma once

namespace velmora {

/// Whether the session starts the program. Main thread.
class LaunchAtLogin {
public:
    LaunchAtLogin() = default;
    LaunchAtLogin(const LaunchAtLogin&) = delete;
    LaunchAtLogin& operator=(const LaunchAtLogin&) = delete;
    virtual ~LaunchAtLogin() = default;

    [[nodiscard]] virtual bool isEnabled() const = 0;
    /// A failure is silent: the switch in the settings keeps what the user chose.
    virtual void set(bool enabled) = 0;
};

}  // namespace velmora
