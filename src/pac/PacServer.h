#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace velmora {

class PacListener;

/// Hands the current PAC text to whoever connects, on a thread of its own. Every connection gets the same answer,
/// whatever was asked. The text and its flag may be read and written from any thread, each by itself.
class PacServer final {
public:
    /// Served until there is another text.
    static constexpr std::string_view fallbackScript = R"(function FindProxyForURL(url, host) { return "DIRECT"; })";

    /// Does not listen yet. Port 0 stands for any free port.
    explicit PacServer(std::uint16_t port);
    PacServer(const PacServer&) = delete;
    PacServer& operator=(const PacServer&) = delete;
    /// Drops what is still connected.
    ~PacServer();

    /// Listens on every interface from now on. Called once. When the port cannot be had nothing is served, and
    /// nobody is told.
    void start();

    /// Where the text is meant to be fetched, listening or not.
    [[nodiscard]] std::string url() const;

    /// The port that is listened on; 0 while none is.
    [[nodiscard]] std::uint16_t listeningPort() const;

    [[nodiscard]] std::string content() const;
    void setContent(std::string content);

    /// Whether an edited text has to be kept as it is: it differs from the generated one by more than white space and
    /// newlines at both ends.
    [[nodiscard]] static bool isHandEdit(std::string_view edited, std::string_view generated);

    /// True while the text is a hand edit that differs from what the hosts would give.
    [[nodiscard]] bool isCustom() const;
    void setCustom(bool custom);

private:
    const std::uint16_t port_;
    mutable std::mutex mutex_;  // guards the next three
    std::string content_;
    std::shared_ptr<const std::string> response_;
    bool isCustom_ = false;
    std::unique_ptr<PacListener> listener_;
};

}  // namespace velmora
