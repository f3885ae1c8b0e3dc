#include "FakeKqueue.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace {

int refused(int reason) {
    errno = reason;
    return -1;
}

}  // namespace

namespace velmora {

FakeKqueue& fakeKqueue() {
    static FakeKqueue queue;
    return queue;
}

}  // namespace velmora

extern "C" {

int kqueue(void) {
    const int reason = velmora::fakeKqueue().queueRefusal;
    return reason != 0 ? refused(reason) : ::eventfd(0, EFD_CLOEXEC);
}

int kevent(int queue, const struct kevent* changes, int changeCount, struct kevent* /*events*/, int eventCount,
           const struct timespec* /*timeout*/) {
    if (changeCount != 1 || eventCount != 0 || changes->flags != EV_ADD) {
        return refused(EINVAL);
    }
    velmora::fakeKqueue().changes.push_back(*changes);
    if (changes->filter == EVFILT_USER && changes->fflags == NOTE_TRIGGER) {
        return ::eventfd_write(queue, 1);
    }
    if (changes->filter != EVFILT_PROC || changes->fflags != NOTE_EXIT) {
        return refused(EINVAL);
    }
    if (const int reason = velmora::fakeKqueue().watchRefusal; reason != 0) {
        return refused(reason);
    }
    const auto process = static_cast<int>(::syscall(SYS_pidfd_open, changes->ident, 0));
    ::dup3(process, queue, O_CLOEXEC);
    return ::close(process);
}

int posix_spawnattr_setflags(posix_spawnattr_t* attributes, short flags) {
    velmora::fakeKqueue().spawnFlags = flags;
    using Real = int (*)(posix_spawnattr_t*, short);
    static const auto real = reinterpret_cast<Real>(::dlsym(RTLD_NEXT, "posix_spawnattr_setflags"));
    return real(attributes, static_cast<short>(flags & ~POSIX_SPAWN_CLOEXEC_DEFAULT));
}

}  // extern "C"
