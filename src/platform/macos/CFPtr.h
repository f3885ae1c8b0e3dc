#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

namespace velmora {

struct CFReleaser {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

/// Owns one reference of a Core Foundation object; `Ref` is its reference type, as in CFPtr<CFStringRef>.
template <typename Ref>
using CFPtr = std::unique_ptr<std::remove_pointer_t<Ref>, CFReleaser>;

}  // namespace velmora
