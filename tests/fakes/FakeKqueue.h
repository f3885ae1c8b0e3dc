#pragma once

#include <sys/event.h>

#include <vector>

namespace velmora {

/// Stands behind the kernel's queue of events and one function of posix_spawn, over what Linux has: real processes are
/// started and watched.
struct FakeKqueue {
    std::vector<struct kevent> changes;  ///< all that were asked for
    int queueRefusal = 0;                ///< errno of kqueue, unless it is 0
    int watchRefusal = 0;                ///< errno for watching a process, unless it is 0
    int spawnFlags = 0;                  ///< of the last process
};

FakeKqueue& fakeKqueue();

}  // namespace velmora
