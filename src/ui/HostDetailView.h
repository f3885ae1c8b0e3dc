#pragma once

#include "base/Uuid.h"

#include <QWidget>

namespace velmora {

struct WindowServices;

/// The editor of one host. Main thread.
class HostDetailView final : public QWidget {
    Q_OBJECT

public:
    /// The host is one of the manager's. When it leaves the list the editor does nothing more.
    HostDetailView(WindowServices& services, const Uuid& host, QWidget* parent = nullptr);

    [[nodiscard]] const Uuid& hostId() const { return id_; }

private:
    WindowServices& services_;
    Uuid id_;
};

}  // namespace velmora
