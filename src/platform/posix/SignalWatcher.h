#pragma once

#include "platform/Scheduler.h"
#include "platform/posix/IoThread.h"

#include <boost/asio/signal_set.hpp>

#include <functional>

namespace velmora {

/// Turns the signals that end a program (SIGTERM, SIGINT, SIGHUP) into a call on the main thread. Each signal, each
/// time, also when the program was started with them blocked: the thread that makes the watcher lets them through.
class SignalWatcher final {
public:
    /// The I/O thread and the scheduler outlive the watcher.
    SignalWatcher(IoThread& io, Scheduler& scheduler, std::function<void()> quit);
    SignalWatcher(const SignalWatcher&) = delete;
    SignalWatcher& operator=(const SignalWatcher&) = delete;
    ~SignalWatcher();

private:
    void wait();

    IoThread& io_;
    Scheduler& scheduler_;
    std::function<void()> quit_;
    boost::asio::signal_set signals_;
};

}  // namespace velmora
