#pragma once

#include "base/Result.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velmora {

/// What the directory of a zip archive says about one entry.
struct ZipEntry {
    std::string name;
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
    std::uint32_t checksum = 0;  ///< CRC-32 of the unpacked bytes
    std::uint64_t packedSize = 0;
    std::uint64_t size = 0;
    std::uint32_t unixMode = 0;    ///< 0 where the archive was not made on a Unix
    std::uint64_t dataOffset = 0;  ///< of the packed bytes, from the start of the archive
};

inline constexpr std::uint16_t zipStored = 0;
inline constexpr std::uint16_t zipDeflated = 8;

/// Reads the directory of a zip archive, and checks that nothing in the archive is outside of it: entries stand one
/// behind another from the first byte on, in the directory's order, each with a header that says the same, and the
/// directory with its end mark is the rest. No encryption, no other packing than deflate, no archive in parts, and
/// none of the extensions for four gigabytes and more. The descriptor is positioned anywhere. Any thread.
Result<std::vector<ZipEntry>, Error> readZipDirectory(int archive, std::size_t mostEntries);

}  // namespace velmora
