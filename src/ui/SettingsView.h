#pragma once

#include "ui/ManagedWindow.h"

namespace velmora {

struct WindowServices;

/// The settings, in one column of titled groups. Main thread.
class SettingsView final : public ManagedWindow {
    Q_OBJECT

public:
    explicit SettingsView(WindowServices& services);

private:
    WindowServices& services_;
};

}  // namespace velmora
