#include "platform/posix/SignalWatcher.h"

#include <boost/asio/post.hpp>

#include <csignal>
#include <future>

namespace velmora {

SignalWatcher::SignalWatcher(IoThread& io, Scheduler& scheduler, std::function<void()> quit)
    : io_(io), scheduler_(scheduler), quit_(std::move(quit)), signals_(io.context()) {
    sigset_t watched;
    ::sigemptyset(&watched);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        signals_.add(number);
        ::sigaddset(&watched, number);
    }
    ::pthread_sigmask(SIG_UNBLOCK, &watched, nullptr);  // whoever started the program may have had them blocked
    boost::asio::post(io_.context(), [this] { wait(); });
}

SignalWatcher::~SignalWatcher() {
    std::promise<void> stopped;
    boost::asio::post(io_.context(), [this, &stopped] {
        signals_.clear();
        signals_.cancel();
        stopped.set_value();
    });
    stopped.get_future().wait();
}

void SignalWatcher::wait() {
    signals_.async_wait([this](const boost::system::error_code& error, int) {
        if (error) {
            return;
        }
        scheduler_.post(quit_);
        wait();
    });
}

}  // namespace velmora
