#pragma once

#include "ui/SettingsSection.h"

namespace velmora {

struct WindowServices;

/// Main thread.
class GeneralSection final : public SettingsSection {
    Q_OBJECT

public:
    explicit GeneralSection(WindowServices& services);
};

}  // namespace velmora
