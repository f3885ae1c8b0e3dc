#pragma once

#include "model/SSHHost.h"

#include <QDialog>

#include <functional>

namespace velmora {

struct WindowServices;

/// Asks for a new host, over the window that it belongs to. Main thread.
class NewHostSheet final : public QDialog {
    Q_OBJECT

public:
    using OnCreate = std::function<void(const SSHHost&)>;

    /// Calls back when the user creates the host; its password is in the keychain by then.
    NewHostSheet(WindowServices& services, OnCreate onCreate, QWidget* parent);

private:
    WindowServices& services_;
    OnCreate onCreate_;
};

}  // namespace velmora
