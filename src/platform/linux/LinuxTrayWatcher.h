#pragma once

#include "platform/TrayWatcher.h"
#include "platform/linux/XEmbedTray.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>
#include <optional>

class QDBusPendingCallWatcher;

namespace velmora {

/// Asks the session bus for a panel that takes status icons, and the X server for one that embeds them.
///
/// Qt asks both only once, when its first icon is made, and stays with the answer. So we ask first, without waiting
/// for the answer, and the icon is made when there is a place for it. From then on Qt follows a panel that restarts.
class LinuxTrayWatcher final : public QObject, public TrayWatcher {
    Q_OBJECT

public:
    LinuxTrayWatcher();

    void start(std::function<void(TrayKind)> found, std::function<void()> missing) override;

private Q_SLOTS:
    void askWatcher();

private:
    void answered(QDBusPendingCallWatcher* call);
    void watcherIsThere(bool there);
    void report(TrayKind kind);

    QDBusConnection bus_;
    std::optional<QDBusServiceWatcher> services_;
    std::optional<XEmbedTray> embedded_;
    std::function<void(TrayKind)> found_;
    std::function<void()> missing_;
};

}  // namespace velmora
