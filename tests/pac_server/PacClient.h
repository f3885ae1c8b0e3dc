#pragma once

#include "base/UniqueFd.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

namespace velmora {

/// A client that shows what a browser would notice: the bytes of the answer, and whether it ended well.
class PacClient final {
public:
    struct Answer {
        std::string header;  // with the empty line
        std::string body;
        int error = 0;  // ECONNRESET and the like; 0 when the server closed its side
    };

    /// To a numeric address of either family. Throws when nobody listens.
    explicit PacClient(std::uint16_t port, const std::string& address = "127.0.0.1", int receiveBuffer = 0) {
        sockaddr_in v4{};
        v4.sin_family = AF_INET;
        v4.sin_port = htons(port);
        sockaddr_in6 v6{};
        v6.sin6_family = AF_INET6;
        v6.sin6_port = htons(port);
        if (::inet_pton(AF_INET, address.c_str(), &v4.sin_addr) == 1) {
            connect(v4, receiveBuffer);
        } else if (::inet_pton(AF_INET6, address.c_str(), &v6.sin6_addr) == 1) {
            connect(v6, receiveBuffer);
        } else {
            throw std::runtime_error("not an address");
        }
    }

    /// False when the server has cut us off.
    [[nodiscard]] bool send(std::string_view bytes) {
        while (!bytes.empty()) {
            const auto sent = ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            if (sent < 0 && errno == EINTR) {
                continue;
            }
            if (sent < 0) {
                return false;
            }
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        }
        return true;
    }

    void closeSendSide() { ::shutdown(socket_.get(), SHUT_WR); }

    /// Leaves with a reset.
    void abort() {
        const linger atOnce{1, 0};
        ::setsockopt(socket_.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
        socket_.reset();
    }

    /// Whether anything, the end included, arrives in time.
    [[nodiscard]] bool hearsWithin(std::chrono::milliseconds time) {
        pollfd descriptor{socket_.get(), POLLIN, 0};
        return ::poll(&descriptor, 1, static_cast<int>(time.count())) > 0;
    }

    /// Everything up to the end.
    [[nodiscard]] Answer receiveAll() {
        Answer answer;
        std::string bytes;
        std::array<char, 65'536> buffer{};
        for (;;) {
            const auto size = ::recv(socket_.get(), buffer.data(), buffer.size(), 0);
            if (size < 0 && errno == EINTR) {
                continue;
            }
            if (size <= 0) {
                answer.error = size < 0 ? errno : 0;
                break;
            }
            bytes.append(buffer.data(), static_cast<std::size_t>(size));
        }
        const auto end = bytes.find("\r\n\r\n");
        answer.header = end == std::string::npos ? bytes : bytes.substr(0, end + 4);
        answer.body = bytes.substr(answer.header.size());
        return answer;
    }

    [[nodiscard]] std::uint16_t localPort() const {
        sockaddr_in6 address{};  // the port of either family is in the same place
        socklen_t size = sizeof address;
        ::getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&address), &size);
        return ntohs(address.sin6_port);
    }

    /// The error that waits on the connection, if any.
    [[nodiscard]] int pendingError() const {
        int error = 0;
        socklen_t size = sizeof error;
        ::getsockopt(socket_.get(), SOL_SOCKET, SO_ERROR, &error, &size);
        return error;
    }

private:
    template <typename Address>
    void connect(const Address& address, int receiveBuffer) {
        const auto* generic = reinterpret_cast<const sockaddr*>(&address);
        socket_.reset(::socket(generic->sa_family, SOCK_STREAM, 0));
        const timeval patience{20, 0};
        ::setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        ::setsockopt(socket_.get(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
        if (receiveBuffer > 0) {
            ::setsockopt(socket_.get(), SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
        }
        int error = ::connect(socket_.get(), generic, sizeof address) == 0 ? 0 : errno;
        if (error == EINTR) {
            error = endOfConnecting();
        }
        if (error != 0) {
            throw std::runtime_error(std::strerror(error));
        }
    }

    /// A signal ends the wait only: the connection is still being made. What came of it.
    [[nodiscard]] int endOfConnecting() const {
        pollfd descriptor{socket_.get(), POLLOUT, 0};
        while (::poll(&descriptor, 1, -1) < 0 && errno == EINTR) {
        }
        return pendingError();
    }

    UniqueFd socket_;
};

inline PacClient::Answer fetch(std::uint16_t port, const std::string& address = "127.0.0.1",
                               std::string_view request = "GET /proxy.pac HTTP/1.1\r\nHost: a\r\n\r\n") {
    PacClient client(port, address);
    if (!client.send(request)) {
        return {.header = {}, .body = {}, .error = EPIPE};
    }
    return client.receiveAll();
}

/// The header that belongs to a body of this many bytes.
inline std::string headerFor(std::size_t bytes) {
    return "HTTP/1.1 200 OK\r\nContent-Type: application/x-ns-proxy-autoconfig\r\nContent-Length: " +
           std::to_string(bytes) + "\r\nConnection: close\r\n\r\n";
}

}  // namespace velmora
