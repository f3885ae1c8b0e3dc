#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>

#include <chrono>
#include <functional>

namespace velmora {

/// Lets events happen until something holds; false when it does not in time.
inline bool runUntil(const std::function<bool()>& condition,
                     std::chrono::milliseconds patience = std::chrono::seconds(20)) {
    const QDeadlineTimer deadline(patience);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    }
    return true;
}

/// Lets events happen for a while.
inline void runFor(std::chrono::milliseconds time) {
    const QDeadlineTimer deadline(time);
    while (!deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
}

}  // namespace velmora
