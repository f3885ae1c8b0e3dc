#pragma once

#include "base/Observable.h"
#include "ui/SettingsSection.h"

class QLabel;
class QPushButton;

namespace velmora {

struct WindowServices;

/// The served proxy script, what bypasses it, and where patterns come from. Main thread.
class PacProxySection final : public SettingsSection {
    Q_OBJECT

public:
    explicit PacProxySection(WindowServices& services);

private:
    void addUrl();
    void addExceptions();
    void addButtons();
    void importPatterns();
    void showExceptionCount();

    WindowServices& services_;
    QLabel* exceptionCount_;
    QPushButton* import_;
    Subscription exceptions_;
};

}  // namespace velmora
