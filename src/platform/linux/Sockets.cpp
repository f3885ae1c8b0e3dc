#include "platform/Sockets.h"

#include <sys/socket.h>

namespace velmora {

UniqueFd acceptConnection(int listener) {
    return UniqueFd(::accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
}

long sendBeforeShutdown(int socket, std::string_view bytes) {
    return ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT | MSG_MORE);
}

}  // namespace velmora
