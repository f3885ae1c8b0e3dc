#pragma once

#include "model/SSHHost.h"

#include <QObject>

#include <functional>

namespace velmora {

/// The host that an editor works on, wherever it is kept. Main thread.
class HostBinding : public QObject {
    Q_OBJECT

public:
    using Edit = std::function<void(SSHHost&)>;

    /// As it is now; as it was last when it is gone.
    [[nodiscard]] virtual const SSHHost& host() const = 0;
    [[nodiscard]] virtual bool exists() const = 0;

    /// Changes the host where it is kept, at once. Nothing happens when it is gone.
    virtual void edit(const Edit& change) = 0;

Q_SIGNALS:
    /// The host is not what it was: by an edit, from elsewhere, or it went or came back.
    void changed();
};

}  // namespace velmora
