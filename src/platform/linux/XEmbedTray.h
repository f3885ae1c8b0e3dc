#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <cstdint>
#include <functional>

struct xcb_connection_t;

namespace velmora {

/// The tray of an X11 panel that embeds windows. Without an X server there is none and never will be.
class XEmbedTray final : private QAbstractNativeEventFilter {
public:
    /// Calls `appeared` from the event loop whenever a tray announces itself.
    explicit XEmbedTray(std::function<void()> appeared);
    XEmbedTray(const XEmbedTray&) = delete;
    XEmbedTray& operator=(const XEmbedTray&) = delete;
    ~XEmbedTray() override;

    [[nodiscard]] bool isThere() const;

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    xcb_connection_t* connection_ = nullptr;  ///< Qt's own; null without an X server
    std::uint32_t selection_ = 0;
    std::uint32_t manager_ = 0;
    std::function<void()> appeared_;
    QObject queue_;
};

}  // namespace velmora
