#pragma once

#include "base/UniqueFd.h"
#include "pac/ClosingConnections.h"

#include <boost/asio/basic_socket_acceptor.hpp>
#include <boost/asio/basic_stream_socket.hpp>
#include <boost/asio/basic_waitable_timer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace velmora {

/// Answers every connection to a port with the same bytes, as soon as the client has sent anything or has closed its
/// side. A thread of its own does it all and sleeps while nothing happens.
///
/// Connections take at most a third of the descriptors that the process may have, and at most 10,000, so that clients
/// who say nothing leave it enough to start programs with. A new client is worth more than those that have their answer
/// and then than the one that has waited longest; they are closed for it.
class PacListener final {
public:
    /// Header and body of an answer that starts now. Called on the listener's thread.
    using Source = std::function<std::shared_ptr<const std::string>()>;

    /// Listens on every interface, from now until it is destroyed. None when the port cannot be had. Port 0 stands
    /// for any free port.
    [[nodiscard]] static std::unique_ptr<PacListener> listen(std::uint16_t port, Source source);

    PacListener(const PacListener&) = delete;
    PacListener& operator=(const PacListener&) = delete;
    ~PacListener();

    [[nodiscard]] std::uint16_t port() const { return port_; }

private:
    using Tcp = boost::asio::ip::tcp;
    using Executor = boost::asio::io_context::executor_type;
    using Clock = std::chrono::steady_clock;
    using Timer = boost::asio::basic_waitable_timer<Clock, boost::asio::wait_traits<Clock>, Executor>;

    /// A connection that waits: for the first bytes of the client, or until more of the answer fits.
    struct Waiting {
        explicit Waiting(const Executor& executor) : socket(executor) {}

        boost::asio::basic_stream_socket<Tcp, Executor> socket;
        std::shared_ptr<const std::string> response;
    };
    using Place = std::list<Waiting>::iterator;

    /// Whether more can come from the client.
    enum class ClientSide { open, closed };

    explicit PacListener(Source source);

    [[nodiscard]] bool open(std::uint16_t port);
    void run();
    void waitForConnections();
    void acceptConnections();
    void serveAccepted();
    void closeExcess();
    [[nodiscard]] bool makeRoom(std::size_t wanted);
    void serve(UniqueFd socket);
    void waitForRequest(UniqueFd socket);
    void answer(UniqueFd socket, ClientSide client);
    void sendRest(UniqueFd socket, std::shared_ptr<const std::string> response, std::size_t sent, ClientSide client);
    void finish(UniqueFd socket, ClientSide client);
    [[nodiscard]] Place startWaiting(UniqueFd socket);
    [[nodiscard]] UniqueFd endWaiting(Place place);

    Source source_;
    boost::asio::io_context context_{1};
    boost::asio::basic_socket_acceptor<Tcp, Executor> acceptor_{context_.get_executor()};
    Timer retry_{context_.get_executor()};
    std::uint16_t port_ = 0;
    const std::size_t mostConnections_;
    std::vector<UniqueFd> accepted_;  // a moment ago
    std::list<Waiting> waiting_;      // longest idle first
    std::list<Waiting> closed_;       // until the operation that they waited for has come back
    // One piece of memory takes what every client sends, because nobody reads it.
    std::array<std::byte, 65'536> scratch_{};
    ClosingConnections closing_{context_.get_executor(), scratch_};
    std::thread thread_;
};

}  // namespace velmora
