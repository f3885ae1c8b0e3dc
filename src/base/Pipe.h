#pragma once

#include "base/Result.h"
#include "base/UniqueFd.h"

namespace velmora {

/// Both ends of a pipe, closed in programs that are started.
struct Pipe {
    UniqueFd reading;
    UniqueFd writing;
};

/// The error is the system's own description.
Result<Pipe, Error> makePipe();

}  // namespace velmora
