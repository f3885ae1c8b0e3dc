#include "pac/PacServer.h"

#include "base/Text.h"
#include "pac/PacListener.h"

#include <utility>

namespace velmora {

namespace {

/// The whole answer, header and body. It never changes, so that it is made once for a text and not for every request.
std::shared_ptr<const std::string> makeResponse(std::string_view content) {
    const std::string_view body = isValidUtf8(content) ? content : std::string_view();
    std::string bytes =
        "HTTP/1.1 200 OK\r\n"
        "Content-Type: application/x-ns-proxy-autoconfig\r\n"
        "Content-Length: " +
        std::to_string(body.size()) +
        "\r\n"
        "Connection: close\r\n"
        "\r\n";
    bytes += body;
    return std::make_shared<const std::string>(std::move(bytes));
}

}  // namespace

PacServer::PacServer(std::uint16_t port)
    : port_(port), content_(fallbackScript), response_(makeResponse(fallbackScript)) {}

PacServer::~PacServer() = default;

void PacServer::start() {
    listener_ = PacListener::listen(port_, [this] {
        const std::lock_guard lock(mutex_);
        return response_;
    });
}

std::string PacServer::url() const {
    return "http://127.0.0.1:" + std::to_string(port_) + "/proxy.pac";
}

std::uint16_t PacServer::listeningPort() const {
    return listener_ ? listener_->port() : std::uint16_t{0};
}

std::string PacServer::content() const {
    const std::lock_guard lock(mutex_);
    return content_;
}

void PacServer::setContent(std::string content) {
    auto response = makeResponse(content);
    // What was there before goes when the lock has been given back.
    const std::lock_guard lock(mutex_);
    content_.swap(content);
    response_.swap(response);
}

bool PacServer::isHandEdit(std::string_view edited, std::string_view generated) {
    return trimWhitespaceAndNewlines(edited) != trimWhitespaceAndNewlines(generated);
}

bool PacServer::isCustom() const {
    const std::lock_guard lock(mutex_);
    return isCustom_;
}

void PacServer::setCustom(bool custom) {
    const std::lock_guard lock(mutex_);
    isCustom_ = custom;
}

}  // namespace velmora
