#pragma once

#include "ui/SettingsSection.h"

class QPushButton;

namespace velmora {

class ElidedLabel;
struct WindowServices;

/// The folder that the hosts are shared through. Main thread.
class SyncSection final : public SettingsSection {
    Q_OBJECT

public:
    explicit SyncSection(WindowServices& services);

private:
    void changeEvent(QEvent* event) override;
    void chooseFolder();
    void disable();
    void refresh();

    WindowServices& services_;
    ElidedLabel* folder_;
    QPushButton* disable_;
};

}  // namespace velmora
