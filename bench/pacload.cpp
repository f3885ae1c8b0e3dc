// Fetches one address over and over, with a new connection for each request, and prints the requests a second. Every
// answer must be as long as the first one.
//
//   pacload port requests concurrency
#include "base/UniqueFd.h"

#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::string_view request =
    "GET /proxy.pac HTTP/1.1\r\n"
    "Host: 127.0.0.1\r\n"
    "User-Agent: pacload\r\n"
    "Accept: */*\r\n"
    "\r\n";

[[noreturn]] void give(const char* reason) {
    std::perror(reason);
    std::exit(1);
}

struct Client {
    velmora::UniqueFd socket;
    bool asked = false;
    std::size_t received = 0;
};

class Load final {
public:
    Load(int port, long requests) : port_(port), left_(requests) {}

    void run(std::size_t concurrency) {
        std::vector<Client> clients(concurrency);
        for (auto& client : clients) {
            next(client);
        }
        std::array<epoll_event, 64> events{};
        while (active_ > 0) {
            const int count = ::epoll_wait(epoll_.get(), events.data(), events.size(), 10'000);
            if (count <= 0) {
                give("no answer");
            }
            for (int i = 0; i < count; ++i) {
                proceed(*static_cast<Client*>(events[static_cast<std::size_t>(i)].data.ptr));
            }
        }
    }

private:
    void next(Client& client) {
        client = Client();
        if (left_ == 0) {
            return;
        }
        --left_;
        ++active_;
        client.socket.reset(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port_));
        // Several addresses, or the ports that wait for late packets of the last connection would run out.
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK + static_cast<std::uint32_t>(left_ % 32));
        if (::connect(client.socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 &&
            errno != EINPROGRESS) {
            give("connect");
        }
        ask(client);
        epoll_event event{};
        event.events = EPOLLIN | EPOLLRDHUP | (client.asked ? 0U : EPOLLOUT);
        event.data.ptr = &client;
        ::epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, client.socket.get(), &event);
    }

    static void ask(Client& client) {
        if (::send(client.socket.get(), request.data(), request.size(), MSG_NOSIGNAL) > 0) {
            client.asked = true;
        } else if (errno != EAGAIN) {
            give("send");
        }
    }

    void proceed(Client& client) {
        if (!client.asked) {
            ask(client);
            epoll_event event{};
            event.events = EPOLLIN | EPOLLRDHUP;
            event.data.ptr = &client;
            ::epoll_ctl(epoll_.get(), EPOLL_CTL_MOD, client.socket.get(), &event);
            return;
        }
        for (;;) {
            const auto size = ::recv(client.socket.get(), buffer_.data(), buffer_.size(), 0);
            if (size > 0) {
                client.received += static_cast<std::size_t>(size);
            } else if (size < 0 && errno == EAGAIN) {
                return;
            } else if (size < 0) {
                give("recv");
            } else {
                break;
            }
        }
        if (expected_ == 0) {
            expected_ = client.received;
        }
        if (client.received != expected_ || expected_ == 0) {
            std::fprintf(stderr, "an answer of %zu bytes, not %zu\n", client.received, expected_);
            std::exit(1);
        }
        --active_;
        next(client);
    }

    int port_;
    long left_;
    long active_ = 0;
    std::size_t expected_ = 0;
    std::array<char, 65'536> buffer_{};
    velmora::UniqueFd epoll_{::epoll_create1(EPOLL_CLOEXEC)};
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: pacload port requests concurrency\n");
        return 2;
    }
    const long requests = std::atol(argv[2]);
    const auto start = std::chrono::steady_clock::now();
    Load(std::atoi(argv[1]), requests).run(static_cast<std::size_t>(std::atol(argv[3])));
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::printf("%.0f\n", static_cast<double>(requests) / took.count());
}
