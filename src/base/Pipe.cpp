#include "base/Pipe.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace velmora {

Result<Pipe, Error> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        return Error{std::generic_category().message(errno)};
    }
    for (const int end : ends) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    }
    return Pipe{UniqueFd(ends[0]), UniqueFd(ends[1])};
}

}  // namespace velmora
