#pragma once

#include "ui/ManagedWindow.h"

namespace velmora {

struct WindowServices;

/// What this program is, and what has changed from version to version. Main thread.
class AboutView final : public ManagedWindow {
    Q_OBJECT

public:
    explicit AboutView(WindowServices& services);

private:
    WindowServices& services_;
};

}  // namespace velmora
