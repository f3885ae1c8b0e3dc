#pragma once

#include "ui/ManagedWindow.h"

#include <array>

namespace velmora {

class SettingsSection;
struct WindowServices;

/// The settings, in one column of titled groups. Main thread.
class SettingsView final : public ManagedWindow {
    Q_OBJECT

public:
    explicit SettingsView(WindowServices& services);

private:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void alignLabels();

    std::array<SettingsSection*, 5> sections_;
};

}  // namespace velmora
