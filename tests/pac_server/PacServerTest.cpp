#include "PacClient.h"
#include "fakes/Waiting.h"
#include "pac/PacListener.h"
#include "pac/PacServer.h"

#include <gmock/gmock.h>
#include <ifaddrs.h>
#include <netdb.h>
#include <pthread.h>

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmora {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view request = "GET /proxy.pac HTTP/1.1\r\nHost: a\r\n\r\n";

class PacServerTest : public ::testing::Test {
protected:
    void expectScript(const PacClient::Answer& answer, const std::string& script) {
        EXPECT_EQ(answer.error, 0);
        EXPECT_EQ(answer.header, headerFor(script.size()));
        EXPECT_EQ(answer.body, script);
    }
    void expectFallback(const PacClient::Answer& answer) {
        expectScript(answer, std::string(PacServer::fallbackScript));
    }

    PacServer server{0};
    const std::uint16_t port = [this] {
        server.start();
        return server.listeningPort();
    }();
};

TEST_F(PacServerTest, ServesTheFallbackScriptBeforeTheFirstContent) {
    EXPECT_EQ(PacServer::fallbackScript.size(), 56U);
    EXPECT_EQ(server.content(), R"(function FindProxyForURL(url, host) { return "DIRECT"; })");
    EXPECT_FALSE(server.isCustom());
    expectFallback(fetch(port));
}

TEST_F(PacServerTest, AnswersAnyMethodAndAnyPath) {
    const std::string line = " HTTP/1.1\r\nHost: a\r\n\r\n";
    for (const std::string method : {"GET", "HEAD", "POST", "PUT", "DELETE", "OPTIONS", "CONNECT", "BREW"}) {
        for (const std::string path : {"/proxy.pac", "/", "/wpad.dat", "*", "/../../etc/passwd", "http://a.example/"}) {
            SCOPED_TRACE(method + " " + path);
            expectFallback(fetch(port, "127.0.0.1", method + " " + path + line));
        }
    }
}

TEST_F(PacServerTest, AnswersWhatIsNoRequestAtAll) {
    for (const std::string& bytes : {std::string("x"), std::string("\0", 1), std::string("\x16\x03\x01\x02", 4)}) {
        expectFallback(fetch(port, "127.0.0.1", bytes));
    }
}

TEST_F(PacServerTest, ContentLengthCountsTheBytesOfNonAsciiNames) {
    const std::string script = "// Köln, Zürich, 東京, 🚇\n";
    server.setContent(script);
    const auto answer = fetch(port);
    expectScript(answer, script);
    EXPECT_THAT(answer.header, ::testing::HasSubstr("Content-Length: 32\r\n"));
}

TEST_F(PacServerTest, ServesAnEmptyBodyForTextThatIsNotUtf8) {
    server.setContent("return \xff\xfe;");
    expectScript(fetch(port), "");
    EXPECT_EQ(server.content(), "return \xff\xfe;");
}

TEST_F(PacServerTest, ServesEveryChangeInTheNextAnswer) {
    for (const std::string script : {"one", "", "three\r\n\r\nmore"}) {
        server.setContent(script);
        EXPECT_EQ(server.content(), script);
        expectScript(fetch(port), script);
    }
}

TEST_F(PacServerTest, KeepsTheCustomFlagApartFromTheContent) {
    server.setCustom(true);
    server.setContent("edited");
    EXPECT_TRUE(server.isCustom());
    server.setCustom(false);
    EXPECT_EQ(server.content(), "edited");
}

TEST(PacServerHandEditTest, AnEditThatDiffersOnlyByWhiteSpaceAtTheEndsIsNone) {
    const std::string generated = "function f() {\n}";
    for (const std::string edited : {"function f() {\n}", "\n\n function f() {\n}", "function f() {\n}\r\n\t \n"}) {
        EXPECT_FALSE(PacServer::isHandEdit(edited, generated)) << edited;
    }
    for (const std::string edited : {"function f() { \n}", "function f() {}", ""}) {
        EXPECT_TRUE(PacServer::isHandEdit(edited, generated)) << edited;
    }
}

TEST_F(PacServerTest, SilentClientHearsNothingUntilItSends) {
    PacClient client(port);
    expectFallback(fetch(port));
    EXPECT_FALSE(client.hearsWithin(200ms));
    ASSERT_TRUE(client.send("G"));
    expectFallback(client.receiveAll());
}

TEST_F(PacServerTest, SilentClientHearsNothingUntilItClosesItsSide) {
    PacClient client(port);
    EXPECT_FALSE(client.hearsWithin(200ms));
    client.closeSendSide();
    expectFallback(client.receiveAll());
}

TEST_F(PacServerTest, SilentClientGetsTheContentOfTheTimeWhenItSpeaks) {
    PacClient client(port);
    expectFallback(fetch(port));
    server.setContent("later");
    ASSERT_TRUE(client.send(request));
    expectScript(client.receiveAll(), "later");
}

/// The other end of a client's connection, which is in this process too; -1 while it is not there yet.
int serverSideOf(const PacClient& client) {
    constexpr int beyondAny = 1024;
    for (int descriptor = 0; descriptor < beyondAny; ++descriptor) {
        sockaddr_in6 peer{};
        socklen_t size = sizeof peer;
        if (::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
            ntohs(peer.sin6_port) == client.localPort()) {
            return descriptor;
        }
    }
    return -1;
}

TEST_F(PacServerTest, NoticesInTheEndWhenASilentClientHasVanished) {
    const PacClient client(port);
    ASSERT_TRUE(waitFor([&] { return serverSideOf(client) >= 0; }));
    int keepsAlive = 0;
    socklen_t size = sizeof keepsAlive;
    ::getsockopt(serverSideOf(client), SOL_SOCKET, SO_KEEPALIVE, &keepsAlive, &size);
    EXPECT_NE(keepsAlive, 0);
}

TEST_F(PacServerTest, SurvivesClientsThatConnectAndClose) {
    for (int i = 0; i < 100; ++i) {
        PacClient politely(port);
        PacClient rudely(port);
        rudely.abort();
        PacClient rudelyAfterAsking(port);
        ASSERT_TRUE(rudelyAfterAsking.send(request));
        rudelyAfterAsking.abort();
    }
    expectFallback(fetch(port));
}

TEST_F(PacServerTest, RequestLongerThanOneReceiveGetsTheWholeAnswerWithoutReset) {
    const std::string script(100'000, 'x');
    server.setContent(script);
    for (const std::size_t size : {std::size_t{65'536}, std::size_t{65'537}, std::size_t{1} << 20}) {
        SCOPED_TRACE(size);
        PacClient client(port);
        ASSERT_TRUE(client.send(std::string(size, 'a')));
        expectScript(client.receiveAll(), script);
        EXPECT_TRUE(client.send("and more"));
        EXPECT_EQ(client.pendingError(), 0);
    }
}

TEST_F(PacServerTest, RequestInThreeSlowPiecesGetsTheWholeAnswerWithoutReset) {
    PacClient client(port);
    ASSERT_TRUE(client.send("GET /pro"));
    ASSERT_TRUE(client.hearsWithin(20s));
    for (const std::string_view piece : {"xy.pac HTTP/1.1\r\n", "Host: a\r\n\r\n"}) {
        ASSERT_TRUE(client.send(piece));
        EXPECT_FALSE(PacClient(port).hearsWithin(100ms));  // time for a reset to come back
        EXPECT_EQ(client.pendingError(), 0);
    }
    expectFallback(client.receiveAll());
}

TEST_F(PacServerTest, SendsALongAnswerToAClientThatReadsSlowly) {
    std::string script;
    for (int i = 0; i < 1'000'000; ++i) {
        script += std::to_string(i) + '\n';
    }
    server.setContent(script);
    PacClient client(port, "127.0.0.1", 4096);
    ASSERT_TRUE(client.send(request));
    ASSERT_TRUE(client.hearsWithin(20s));
    server.setContent("short");  // what has begun goes on as it was
    expectScript(fetch(port), "short");
    expectScript(client.receiveAll(), script);
}

TEST_F(PacServerTest, ClosesAfterAWhileOnAClientThatNeverDoes) {
    PacClient client(port);
    ASSERT_TRUE(client.send(request));
    expectFallback(client.receiveAll());
    const auto start = std::chrono::steady_clock::now();
    while (client.send("x") && std::chrono::steady_clock::now() - start < 10s) {
        EXPECT_FALSE(PacClient(port).hearsWithin(50ms));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

TEST_F(PacServerTest, AnswersOnBothLoopbackAddresses) {
    expectFallback(fetch(port, "127.0.0.1"));
    expectFallback(fetch(port, "::1"));
}

TEST_F(PacServerTest, AnswersOnEveryInterface) {
    ifaddrs* interfaces = nullptr;
    ASSERT_EQ(::getifaddrs(&interfaces), 0);
    const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(interfaces, ::freeifaddrs);
    int count = 0;
    for (; interfaces != nullptr; interfaces = interfaces->ifa_next) {
        if (interfaces->ifa_addr != nullptr && interfaces->ifa_addr->sa_family == AF_INET) {
            std::array<char, NI_MAXHOST> name{};
            ::getnameinfo(interfaces->ifa_addr, sizeof(sockaddr_in), name.data(), name.size(), nullptr, 0,
                          NI_NUMERICHOST);
            SCOPED_TRACE(name.data());
            expectFallback(fetch(port, name.data()));
            ++count;
        }
    }
    EXPECT_GT(count, 0);
}

TEST_F(PacServerTest, PortInUseIsSilentAndTheUrlIsStillShown) {
    PacServer second(port);
    second.start();
    EXPECT_EQ(second.listeningPort(), 0);
    EXPECT_EQ(second.url(), "http://127.0.0.1:" + std::to_string(port) + "/proxy.pac");
    second.setContent("kept");
    EXPECT_EQ(second.content(), "kept");
    expectFallback(fetch(port));
}

TEST(PacListenerTest, ItsThreadSaysWhatItIs) {
    std::array<char, 64> name{};
    auto listener = PacListener::listen(0, [&] {
        ::pthread_getname_np(::pthread_self(), name.data(), name.size());
        return std::make_shared<const std::string>("answer");
    });
    ASSERT_NE(listener, nullptr);
    EXPECT_EQ(fetch(listener->port()).header, "answer");
    listener.reset();
    EXPECT_THAT(name.data(), ::testing::EndsWith("pac-server"));
}

TEST(PacServerPortTest, UrlNamesThePortBeforeItIsListenedOn) {
    const PacServer server(18087);
    EXPECT_EQ(server.url(), "http://127.0.0.1:18087/proxy.pac");
    EXPECT_EQ(server.listeningPort(), 0);
}

TEST(PacServerPortTest, RestartGetsThePortAtOnceWhileOldConnectionsLinger) {
    std::optional<PacServer> server(std::in_place, std::uint16_t{0});
    server->start();
    const auto port = server->listeningPort();
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(fetch(port).error, 0);  // the server closes first: its side waits for late packets
    }
    PacClient silent(port);
    PacClient answered(port);
    ASSERT_TRUE(answered.send(request));
    ASSERT_TRUE(answered.hearsWithin(20s));

    const auto start = std::chrono::steady_clock::now();
    server.emplace(port);
    server->start();
    EXPECT_EQ(server->listeningPort(), port);
    EXPECT_EQ(fetch(port).body, PacServer::fallbackScript);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);
    EXPECT_TRUE(silent.hearsWithin(20s));
    EXPECT_EQ(answered.receiveAll().body, PacServer::fallbackScript);
}

}  // namespace
}  // namespace velmora
