#include "platform/linux/XEmbedTray.h"

#include <QGuiApplication>
#include <QMetaObject>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace velmora {

namespace {

template <typename Reply>
using XcbReply = std::unique_ptr<Reply, decltype(&std::free)>;

template <typename Reply>
XcbReply<Reply> take(Reply* reply) {
    return {reply, &std::free};
}

xcb_intern_atom_cookie_t askForAtom(xcb_connection_t* connection, std::string_view name) {
    return xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
}

std::uint32_t atom(xcb_connection_t* connection, xcb_intern_atom_cookie_t cookie) {
    const auto reply = take(xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : std::uint32_t{XCB_ATOM_NONE};
}

int screenOfDisplay() {
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    const bool parsed = xcb_parse_display(nullptr, &host, &display, &screen) != 0;
    std::free(host);
    return parsed ? screen : 0;
}

}  // namespace

XEmbedTray::XEmbedTray(std::function<void()> appeared) : appeared_(std::move(appeared)) {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr) {
        return;
    }
    connection_ = x11->connection();
    const auto selection = askForAtom(connection_, "_NET_SYSTEM_TRAY_S" + std::to_string(screenOfDisplay()));
    const auto manager = askForAtom(connection_, "MANAGER");
    selection_ = atom(connection_, selection);
    manager_ = atom(connection_, manager);
    qGuiApp->installNativeEventFilter(this);
}

XEmbedTray::~XEmbedTray() {
    if (connection_ != nullptr && qGuiApp != nullptr) {
        qGuiApp->removeNativeEventFilter(this);
    }
}

bool XEmbedTray::isThere() const {
    if (connection_ == nullptr) {
        return false;
    }
    const auto cookie = xcb_get_selection_owner(connection_, selection_);
    const auto reply = take(xcb_get_selection_owner_reply(connection_, cookie, nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

bool XEmbedTray::nativeEventFilter(const QByteArray& /*eventType*/, void* message, qintptr* /*result*/) {
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    constexpr std::uint8_t sentFlag = 0x80;
    if ((event->response_type & ~sentFlag) == XCB_CLIENT_MESSAGE) {
        const auto* announcement = reinterpret_cast<const xcb_client_message_event_t*>(event);
        if (announcement->type == manager_ && announcement->data.data32[1] == selection_) {
            // Qt has to see this event first: it looks for the tray too.
            QMetaObject::invokeMethod(&queue_, appeared_, Qt::QueuedConnection);
        }
    }
    return false;
}

}  // namespace velmora
