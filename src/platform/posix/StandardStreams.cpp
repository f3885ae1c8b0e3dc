#include "platform/posix/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

namespace velmora {

void openMissingStandardStreams() {
    for (;;) {
        const int fd = ::open("/dev/null", O_RDWR);  // takes the lowest free number
        if (fd > STDERR_FILENO) {
            ::close(fd);
        }
        if (fd < 0 || fd > STDERR_FILENO) {
            return;
        }
    }
}

void ignoreBrokenPipes() {
    ::signal(SIGPIPE, SIG_IGN);
}

void keepEndedChildren() {
    ::signal(SIGCHLD, SIG_DFL);
}

}  // namespace velmora
