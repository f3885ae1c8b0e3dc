#pragma once

#include "base/Observable.h"
#include "model/SSHHost.h"
#include "ui/DraftHost.h"

#include <QDialog>

#include <functional>
#include <string>

class QPushButton;

namespace velmora {

class HostTabsView;
struct WindowServices;

/// Asks for a new host, over the window that it belongs to. Main thread.
class NewHostSheet final : public QDialog {
    Q_OBJECT

public:
    using OnCreate = std::function<void(const SSHHost&)>;

    /// Calls back when the user creates the host; its password is in the keychain by then.
    NewHostSheet(WindowServices& services, OnCreate onCreate, QWidget* parent);

private:
    [[nodiscard]] QWidget* buttons();
    void create();
    void showState();

    WindowServices& services_;
    OnCreate onCreate_;
    DraftHost host_;
    Observable<std::string> password_;
    HostTabsView* tabs_;
    QPushButton* create_;
};

}  // namespace velmora
