#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>

namespace velmora {

/// Reads exactly so many bytes from a place in a file. False when they are not there.
inline bool readRange(int file, std::uint64_t offset, void* target, std::size_t length) {
    auto* bytes = static_cast<char*>(target);
    while (length > 0) {
        const auto count = ::pread(file, bytes, length, static_cast<off_t>(offset));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        bytes += count;
        offset += static_cast<std::uint64_t>(count);
        length -= static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace velmora
