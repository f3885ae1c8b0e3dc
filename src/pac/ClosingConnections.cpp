#include "pac/ClosingConnections.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace velmora {

namespace {

/// A client that still sends gets this long, and this much, until it is cut off.
constexpr std::chrono::seconds patience{2};
constexpr std::size_t patienceBytes = std::size_t{8} << 20;

/// Between two looks: at first, and at most while nothing happens.
constexpr std::chrono::milliseconds firstPause{20};
constexpr std::chrono::milliseconds longestPause{320};

}  // namespace

void ClosingConnections::add(UniqueFd socket) {
    connections_.push_back({std::move(socket), Clock::now() + patience});
    pause_ = firstPause;
    lookLater();
}

std::size_t ClosingConnections::makeRoom(std::size_t wanted) {
    const auto before = connections_.size();
    closeDone();
    const auto closed = before - connections_.size();
    if (closed < wanted) {
        const auto oldest = std::min(wanted - closed, connections_.size());
        connections_.erase(connections_.begin(), connections_.begin() + static_cast<std::ptrdiff_t>(oldest));
    }
    return before - connections_.size();
}

bool ClosingConnections::isDone(Connection& connection, Clock::time_point now) {
    while (connection.drained < patienceBytes) {
        const auto size = ::recv(connection.socket.get(), scratch_.data(), scratch_.size(), 0);
        if (size <= 0) {
            const bool open = size < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
            return !open || connection.deadline <= now;
        }
        connection.drained += static_cast<std::size_t>(size);
        pause_ = firstPause;
    }
    return true;
}

void ClosingConnections::closeDone() {
    const auto now = Clock::now();
    std::erase_if(connections_, [&](Connection& connection) { return isDone(connection, now); });
}

void ClosingConnections::lookLater() {
    if (timerRuns_) {
        return;
    }
    timerRuns_ = true;
    timer_.expires_after(pause_);
    timer_.async_wait([this](const boost::system::error_code&) {
        timerRuns_ = false;
        pause_ = std::min(pause_ * 2, longestPause);
        closeDone();
        if (!connections_.empty()) {
            lookLater();
        }
    });
}

}  // namespace velmora
