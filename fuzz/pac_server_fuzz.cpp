#include "Fuzz.h"
#include "base/Text.h"
#include "pac/PacServer.h"
#include "pac_server/PacClient.h"

#include <list>
#include <string>

// Clients of the PAC server. A line of the input is one of them; its letter says how the client behaves, the rest is
// what the client sends, or, behind a "C", the script that is served from there on.

namespace {

using namespace velmora;

std::uint16_t runningPort(PacServer& server) {
    server.start();
    require(server.listeningPort() != 0, "a free port can be had");
    return server.listeningPort();
}

class Clients final {
public:
    explicit Clients(PacServer& server) : server_(server) {}

    void run(std::string_view line) {
        const char behaviour = line.front();
        const auto bytes = line.substr(1);
        if (behaviour == 'C') {
            server_.setContent(std::string(bytes));
            return;
        }
        PacClient client(port());
        switch (behaviour) {
            case 'A':
                (void)client.send(bytes);
                client.abort();
                break;
            case 'I':
                (void)client.send(bytes.substr(0, 0));
                idle_.push_back(std::move(client));
                break;
            case 'L':
                (void)client.send(bytes);  // and never reads
                idle_.push_back(std::move(client));
                break;
            case 'E':
                require(client.send(bytes), "what a client sends first arrives");
                client.closeSendSide();
                check(client.receiveAll());
                break;
            case 'P':
                require(client.send(bytes.substr(0, bytes.size() / 2)), "what a client sends first arrives");
                (void)client.send(bytes.substr(bytes.size() / 2));
                client.closeSendSide();
                check(client.receiveAll());
                break;
            default:
                require(client.send(line), "what a client sends first arrives");
                check(client.receiveAll());
        }
    }

    void checkOne() { check(fetch(port())); }

private:
    [[nodiscard]] std::uint16_t port() const { return server_.listeningPort(); }

    void check(const PacClient::Answer& answer) const {
        const auto content = server_.content();
        const std::string_view body = isValidUtf8(content) ? std::string_view(content) : std::string_view();
        require(answer.error == 0, "a connection ends well");
        require(answer.header == headerFor(body.size()) && answer.body == body, "everybody gets the same answer");
    }

    PacServer& server_;
    std::list<PacClient> idle_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int mostClients = 12;
    static PacServer server(0);
    static const auto port = runningPort(server);
    require(server.listeningPort() == port, "the port stays");

    Clients clients(server);
    int count = 0;
    for (const auto line : split(textOf(data, size), '\n')) {
        if (!line.empty() && ++count <= mostClients) {
            clients.run(line);
        }
    }
    clients.checkOne();
    return 0;
}
