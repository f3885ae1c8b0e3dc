#pragma once

// What sockets have on macOS beyond the headers that stand in for its own.

#include_next <sys/socket.h>

#define SO_NOSIGPIPE 0x1022
#undef MSG_NOSIGNAL
#undef SOCK_CLOEXEC
#undef SOCK_NONBLOCK
