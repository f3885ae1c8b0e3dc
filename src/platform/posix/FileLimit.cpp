#include "platform/posix/FileLimit.h"

#include <sys/resource.h>

#include <algorithm>

namespace velmora {

void raiseFileLimit() {
    constexpr rlim_t modest = 10240;  // where "unlimited" is not taken at its word
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= limit.rlim_max) {
        return;
    }
    const rlim_t before = limit.rlim_cur;
    limit.rlim_cur = limit.rlim_max;
    if (::setrlimit(RLIMIT_NOFILE, &limit) != 0 && before < modest) {
        limit.rlim_cur = std::min(modest, limit.rlim_max);
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

}  // namespace velmora
