#pragma once

#include <sys/resource.h>

namespace velmora {

/// Holds one of this process's soft limits down while it lives.
class ResourceLimit final {
public:
    ResourceLimit(decltype(RLIMIT_NOFILE) resource, rlim_t most) : resource_(resource) {
        ::getrlimit(resource_, &before_);
        rlimit held = before_;
        held.rlim_cur = most;
        ::setrlimit(resource_, &held);
    }
    ResourceLimit(const ResourceLimit&) = delete;
    ResourceLimit& operator=(const ResourceLimit&) = delete;
    ~ResourceLimit() { ::setrlimit(resource_, &before_); }

private:
    const decltype(RLIMIT_NOFILE) resource_;
    rlimit before_{};
};

}  // namespace velmora
