#pragma once

#include "base/Observable.h"
#include "ui/SettingsSection.h"

#include <vector>

class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace velmora {

class ElidedLabel;
class Updater;
struct WindowServices;

/// Where updates come from, and the one that is there. Main thread.
class UpdatesSection final : public SettingsSection {
    Q_OBJECT

public:
    explicit UpdatesSection(WindowServices& services);

Q_SIGNALS:
    /// There is something new to be seen of what the user asked for here.
    void answered();

private:
    void addFeed(WindowServices& services);
    void addCheck();
    void addOffer();
    void follow();
    void showSettings();
    void showBusy();
    void showOffer();
    void showProgress();
    void showMessages();

    Updater& updater_;
    QCheckBox* autoUpdate_;
    QLineEdit* feedUrl_;
    QPushButton* check_;
    QWidget* offer_;
    ElidedLabel* available_;
    QPushButton* install_;
    QProgressBar* progress_;
    QLabel* status_;
    QLabel* error_;
    bool isAsked_ = false;                ///< the user has pressed a button here
    QWidget* focusAfterwards_ = nullptr;  ///< of the buttons, the one that was used
    std::vector<Subscription> subscriptions_;
};

}  // namespace velmora
