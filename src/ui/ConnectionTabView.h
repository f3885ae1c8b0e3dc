#pragma once

#include "base/Observable.h"

#include <QWidget>

#include <string>

class QFormLayout;

namespace velmora {

class Dialogs;
class HostBinding;
class SegmentedControl;

/// How the user of a host proves who they are: by a key or by a password. Main thread.
class ConnectionTabView final : public QWidget {
    Q_OBJECT

public:
    /// The password is changed as it is typed; whoever owns it keeps it or drops it. All of these outlive the tab.
    ConnectionTabView(Dialogs& dialogs, HostBinding& host, Observable<std::string>& password,
                      QWidget* parent = nullptr);

private:
    void addIdentityFile();
    void addPassword();
    void chooseIdentityFile();
    void showMethod();

    Dialogs& dialogs_;
    HostBinding& host_;
    Observable<std::string>& password_;
    QFormLayout* form_;
    SegmentedControl* method_;
    QWidget* identityRow_ = nullptr;
    QWidget* passwordRow_ = nullptr;
    Subscription passwordChanges_;
};

}  // namespace velmora
