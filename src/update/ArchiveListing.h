#pragma once

#include "base/Cancellation.h"
#include "base/Result.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace velmora {

/// One thing in an archive.
struct ArchiveEntry {
    enum class Kind { file, folder, link };

    Kind kind = Kind::file;
    std::uint64_t size = 0;  ///< of a file, unpacked
    std::string target;      ///< of a link

    bool operator==(const ArchiveEntry&) const = default;
};

/// By path, without a slash at the end.
using ArchiveListing = std::map<std::string, ArchiveEntry>;

struct ArchiveLimits {
    std::uint64_t unpackedBytes = 0;  ///< of all files together
    std::size_t entries = 0;

    /// What an archive of this size may unpack to.
    static ArchiveLimits forArchiveOf(std::uint64_t bytes);
};

/// Looks through a zip archive before any program may expand it: unpacks every entry in memory, a little at a time,
/// and writes nothing.
///
/// Only an archive that can be read in one way passes: entries stand one behind another from the first byte to the
/// directory at the end, both headers of an entry agree, and its bytes have the size and the checksum that are
/// promised. Paths are plain ASCII, relative, never lead upwards or through a link, and differ in more than their case;
/// links stay inside. Files, folders and links are all there may be. The error is a reason in a few words.
Result<ArchiveListing, Error> listArchive(const std::filesystem::path& archive, const ArchiveLimits& limits,
                                          const Cancellation& cancellation);

}  // namespace velmora
