#pragma once

#include "platform/LaunchAtLogin.h"

namespace velmora {

/// The login items of the user, from macOS 13 on; before that it is never enabled.
class LoginItem final : public LaunchAtLogin {
public:
    [[nodiscard]] bool isEnabled() const override;
    void set(bool enabled) override;
};

}  // namespace velmora
