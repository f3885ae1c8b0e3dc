#include "pac/PacListener.h"

#include "platform/Sockets.h"
#include "platform/ThreadName.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/write.hpp>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <utility>

namespace velmora {

namespace asio = boost::asio;
using ErrorCode = boost::system::error_code;

namespace {

/// How many connections are taken in one go before those that are there get their turn.
constexpr std::size_t acceptBatch = 64;

/// What connections may take of all that this process may open.
constexpr rlim_t shareOfDescriptors = 3;
constexpr rlim_t enoughConnections = 10'000;

/// The wait for a descriptor when none of ours could be given up.
constexpr std::chrono::milliseconds retryDelay{100};

/// After a turn with something to do the thread looks again so much later instead of waiting to be woken. When many
/// clients come at once this saves them the price of waking it, and a client that comes alone waits for nothing.
constexpr std::chrono::microseconds busyPause{50};

bool ranOut(int error) {
    return error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM;
}

std::size_t connectionLimit() {
    rlimit descriptors{};
    ::getrlimit(RLIMIT_NOFILE, &descriptors);
    return static_cast<std::size_t>(
        std::clamp<rlim_t>(descriptors.rlim_cur / shareOfDescriptors, 1, enoughConnections));
}

}  // namespace

std::unique_ptr<PacListener> PacListener::listen(std::uint16_t port, Source source) {
    try {
        std::unique_ptr<PacListener> listener(new PacListener(std::move(source)));
        if (!listener->open(port)) {
            return nullptr;
        }
        listener->waitForConnections();
        listener->thread_ = std::thread([listener = listener.get()] { listener->run(); });
        return listener;
    } catch (const std::exception&) {
        return nullptr;  // out of descriptors or threads: the same as a port that cannot be had
    }
}

PacListener::PacListener(Source source) : source_(std::move(source)), mostConnections_(connectionLimit()) {}

PacListener::~PacListener() {
    context_.stop();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void PacListener::run() {
    nameThread("com.velmora.pac-server");
    while (context_.run_one() > 0) {
        do {
            std::this_thread::sleep_for(busyPause);
        } while (context_.poll() > 0);
    }
}

bool PacListener::open(std::uint16_t port) {
    ErrorCode error;
    acceptor_.open(Tcp::v6(), error);
    const bool bothFamilies = !error;
    if (bothFamilies) {
        acceptor_.set_option(asio::ip::v6_only(false), error);
    } else {
        acceptor_.open(Tcp::v4(), error);  // a system without IPv6
    }
    if (!error) {
        ::fcntl(acceptor_.native_handle(), F_SETFD, FD_CLOEXEC);
        // Or connections of a program that has just ended would keep the port for a minute.
        acceptor_.set_option(asio::socket_base::reuse_address(true), error);
    }
    if (!error) {
        // For its connections, which take it over: a client that vanished without a word is noticed in the end.
        acceptor_.set_option(asio::socket_base::keep_alive(true), error);
    }
    if (!error) {
        acceptor_.native_non_blocking(true, error);
    }
    if (!error) {
        acceptor_.bind({bothFamilies ? Tcp::v6() : Tcp::v4(), port}, error);
    }
    if (!error) {
        acceptor_.listen(asio::socket_base::max_listen_connections, error);
    }
    if (!error) {
        port_ = acceptor_.local_endpoint(error).port();
    }
    return !error;
}

void PacListener::waitForConnections() {
    acceptor_.async_wait(asio::socket_base::wait_read, [this](const ErrorCode& error) {
        if (!error) {
            acceptConnections();
        }
    });
}

void PacListener::acceptConnections() {
    while (accepted_.size() < std::min(acceptBatch, mostConnections_)) {
        UniqueFd socket = acceptConnection(acceptor_.native_handle());
        if (socket) {
            accepted_.push_back(std::move(socket));
        } else if (ranOut(errno)) {
            serveAccepted();
            if (!makeRoom(1)) {
                retry_.expires_after(retryDelay);
                retry_.async_wait([this](const ErrorCode&) { waitForConnections(); });
                return;
            }
        } else if (errno != ECONNABORTED && errno != EINTR) {
            break;
        }
    }
    waitForConnections();
    serveAccepted();
}

void PacListener::serveAccepted() {
    for (auto& socket : accepted_) {
        serve(std::move(socket));
    }
    accepted_.clear();
    closeExcess();
}

void PacListener::closeExcess() {
    const auto open = waiting_.size() + closing_.size();
    if (open > mostConnections_) {
        (void)makeRoom(open - mostConnections_);
    }
}

/// False when nothing could be closed.
bool PacListener::makeRoom(std::size_t wanted) {
    auto closed = closing_.makeRoom(wanted);  // they have their answer
    for (; closed < wanted && !waiting_.empty(); ++closed) {
        ErrorCode error;
        waiting_.front().socket.close(error);
        closed_.splice(closed_.end(), waiting_, waiting_.begin());
    }
    return closed > 0;
}

void PacListener::serve(UniqueFd socket) {
    const auto size = ::recv(socket.get(), scratch_.data(), scratch_.size(), 0);
    if (size < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
        waitForRequest(std::move(socket));
    } else {
        answer(std::move(socket), size > 0 ? ClientSide::open : ClientSide::closed);
    }
}

void PacListener::waitForRequest(UniqueFd socket) {
    const auto place = startWaiting(std::move(socket));
    place->socket.async_receive(asio::buffer(scratch_), [this, place](const ErrorCode& error, std::size_t) {
        if (UniqueFd owner = endWaiting(place)) {
            answer(std::move(owner), error ? ClientSide::closed : ClientSide::open);
        }
    });
}

void PacListener::answer(UniqueFd socket, ClientSide client) {
    auto response = source_();
    const long sent = sendBeforeShutdown(socket.get(), *response);
    if (sent == static_cast<long>(response->size())) {
        finish(std::move(socket), client);
    } else if (sent >= 0) {
        sendRest(std::move(socket), std::move(response), static_cast<std::size_t>(sent), client);
    }
    // Else the client is gone. The send buffer of a new connection is never full.
}

void PacListener::sendRest(UniqueFd socket, std::shared_ptr<const std::string> response, std::size_t sent,
                           ClientSide client) {
    const auto place = startWaiting(std::move(socket));
    place->response = std::move(response);
    asio::async_write(place->socket, asio::buffer(*place->response) + sent,
                      [this, place, client](const ErrorCode& error, std::size_t) {
                          UniqueFd owner = endWaiting(place);
                          if (owner && !error) {
                              finish(std::move(owner), client);
                          }
                      });
}

void PacListener::finish(UniqueFd socket, ClientSide client) {
    if (client == ClientSide::open) {
        ::shutdown(socket.get(), SHUT_WR);
        closing_.add(std::move(socket));
    }
}

PacListener::Place PacListener::startWaiting(UniqueFd socket) {
    const auto place = waiting_.emplace(waiting_.end(), context_.get_executor());
    ErrorCode error;
    place->socket.assign(Tcp::v6(), socket.get(), error);
    if (error) {
        closed_.splice(closed_.end(), waiting_, place);  // what it is to wait for fails at once
    } else {
        (void)socket.release();
    }
    return place;
}

UniqueFd PacListener::endWaiting(Place place) {
    if (!place->socket.is_open()) {
        closed_.erase(place);
        return {};
    }
    ErrorCode error;
    UniqueFd socket(place->socket.release(error));
    waiting_.erase(place);
    return socket;
}

}  // namespace velmora
