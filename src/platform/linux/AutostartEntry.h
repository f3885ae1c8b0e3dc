#pragma once

#include "platform/LaunchAtLogin.h"

#include <filesystem>
#include <string>

namespace velmora {

/// An entry in the folder that every desktop starts programs from.
class AutostartEntry final : public LaunchAtLogin {
public:
    /// The user's configuration folder, and the program that is to be started.
    AutostartEntry(const std::filesystem::path& configuration, std::filesystem::path program);

    /// Also false when the user has switched the entry off with the desktop's own tools.
    [[nodiscard]] bool isEnabled() const override;
    void set(bool enabled) override;

private:
    std::filesystem::path file_;
    std::filesystem::path program_;
};

}  // namespace velmora
