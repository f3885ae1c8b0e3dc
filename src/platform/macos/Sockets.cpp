#include "platform/Sockets.h"

#include <fcntl.h>
#include <sys/socket.h>

namespace velmora {

UniqueFd acceptConnection(int listener) {
    UniqueFd connection(::accept(listener, nullptr, nullptr));
    if (connection) {
        ::fcntl(connection.get(), F_SETFD, FD_CLOEXEC);
        ::fcntl(connection.get(), F_SETFL, O_NONBLOCK);
        const int on = 1;
        ::setsockopt(connection.get(), SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
    }
    return connection;
}

long sendBeforeShutdown(int socket, std::string_view bytes) {
    return ::send(socket, bytes.data(), bytes.size(), MSG_DONTWAIT);
}

}  // namespace velmora
