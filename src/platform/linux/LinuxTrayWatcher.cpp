#include "platform/linux/LinuxTrayWatcher.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QMetaObject>

#include <utility>

namespace velmora {

namespace {

constexpr int answerTimeout = 2000;  // milliseconds; a panel that hangs must not keep the program out of reach

QString service() {
    return QStringLiteral("org.kde.StatusNotifierWatcher");
}
QString path() {
    return QStringLiteral("/StatusNotifierWatcher");
}

}  // namespace

LinuxTrayWatcher::LinuxTrayWatcher() : bus_(QDBusConnection::sessionBus()) {}

void LinuxTrayWatcher::start(std::function<void(TrayKind)> found, std::function<void()> missing) {
    found_ = std::move(found);
    missing_ = std::move(missing);
    embedded_.emplace([this] { report(TrayKind::embedded); });
    if (!bus_.isConnected()) {
        QMetaObject::invokeMethod(
            this, [this] { watcherIsThere(false); }, Qt::QueuedConnection);
        return;
    }
    askWatcher();
    services_.emplace(service(), bus_, QDBusServiceWatcher::WatchForRegistration);
    connect(&*services_, &QDBusServiceWatcher::serviceRegistered, this, &LinuxTrayWatcher::askWatcher);
    // A watcher alone shows nothing: a panel has to announce itself to it.
    bus_.connect(service(), path(), service(), QStringLiteral("StatusNotifierHostRegistered"), this,
                 SLOT(askWatcher()));
}

void LinuxTrayWatcher::askWatcher() {
    auto question = QDBusMessage::createMethodCall(service(), path(), QStringLiteral("org.freedesktop.DBus.Properties"),
                                                   QStringLiteral("Get"));
    question.setAutoStartService(false);
    question << service() << QStringLiteral("IsStatusNotifierHostRegistered");
    auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(question, answerTimeout), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, &LinuxTrayWatcher::answered);
}

void LinuxTrayWatcher::answered(QDBusPendingCallWatcher* call) {
    call->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *call;
    watcherIsThere(reply.isValid() && reply.value().variant().toBool());
}

void LinuxTrayWatcher::watcherIsThere(bool there) {
    if (!found_) {
        return;
    }
    if (there) {
        report(TrayKind::statusNotifier);
    } else if (embedded_->isThere()) {
        report(TrayKind::embedded);
    } else if (const auto missing = std::exchange(missing_, {})) {
        missing();
    }
}

void LinuxTrayWatcher::report(TrayKind kind) {
    missing_ = {};
    if (const auto found = std::exchange(found_, {})) {
        found(kind);
    }
}

}  // namespace velmora
