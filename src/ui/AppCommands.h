#pragma once

#include "base/Observable.h"
#include "sync/ImportExportCommands.h"
#include "sync/ImportResult.h"
#include "ui/Dialogs.h"

#include <QObject>

#include <functional>
#include <optional>

namespace velmora {

/// The commands of the File menu. Main thread.
class AppCommands final : public QObject {
    Q_OBJECT

public:
    /// The name by which the request for a new tunnel is known.
    static constexpr auto addTunnelNotification = "com.velmora.addTunnel";

    AppCommands(HostListAccess hosts, Dialogs& dialogs, std::function<void()> quit);

    void newTunnel() { Q_EMIT addTunnel(); }
    void importVelmoraFile();
    void importCoreTunnelFile();
    void exportTunnels();
    void quit() { quit_(); }

    /// Set when an import is done, for as long as the user is shown what it brought.
    [[nodiscard]] Observable<std::optional<ImportResult>>& importResult() { return importResult_; }

Q_SIGNALS:
    /// Asks the main window for the sheet of a new host.
    void addTunnel();

private:
    HostListAccess hosts_;
    Dialogs& dialogs_;
    std::function<void()> quit_;
    Observable<std::optional<ImportResult>> importResult_;
};

}  // namespace velmora
