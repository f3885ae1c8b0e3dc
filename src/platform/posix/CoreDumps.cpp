#include "platform/posix/CoreDumps.h"

#include <sys/resource.h>

namespace velmora {

void disableCoreDumps() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_CORE, &limit) == 0) {
        limit.rlim_cur = 0;  // the hard limit stays, for whoever wants a dump of a program that we only opened
        ::setrlimit(RLIMIT_CORE, &limit);
    }
}

}  // namespace velmora
