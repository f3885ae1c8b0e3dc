#pragma once

#include "base/UniqueFd.h"

#include <boost/asio/basic_waitable_timer.hpp>
#include <boost/asio/io_context.hpp>

#include <chrono>
#include <cstddef>
#include <span>
#include <vector>

namespace velmora {

/// Connections that have their answer and whose send side is shut. They are kept until the client closes its side,
/// because a reset in answer to what it still sends might cost it the answer, but not for ever.
///
/// Nearly every client closes at once, so these are looked at now and then, which costs less than being told about
/// each; and when there are none, nothing wakes up. All on the thread of the executor.
class ClosingConnections final {
public:
    using Executor = boost::asio::io_context::executor_type;

    /// The memory takes what the clients still send. Nobody reads it, so others may use it likewise.
    ClosingConnections(const Executor& executor, std::span<std::byte> scratch) : timer_(executor), scratch_(scratch) {}

    /// The socket does not wait.
    void add(UniqueFd socket);

    [[nodiscard]] std::size_t size() const { return connections_.size(); }

    /// Closes those that can be closed, and when that were fewer than wanted also the oldest. How many.
    std::size_t makeRoom(std::size_t wanted);

private:
    using Clock = std::chrono::steady_clock;
    using Timer = boost::asio::basic_waitable_timer<Clock, boost::asio::wait_traits<Clock>, Executor>;

    struct Connection {
        UniqueFd socket;
        Clock::time_point deadline;
        std::size_t drained = 0;
    };

    [[nodiscard]] bool isDone(Connection& connection, Clock::time_point now);
    void closeDone();
    void lookLater();

    Timer timer_;
    std::span<std::byte> scratch_;
    bool timerRuns_ = false;
    std::chrono::milliseconds pause_{};
    std::vector<Connection> connections_;  // oldest first
};

}  // namespace velmora
