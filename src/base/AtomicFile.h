#pragma once

#include "base/Result.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace velmora {

/// Replaces the content of a file as a whole: whatever happens on the way, the path holds the old or the new bytes.
///
/// A temporary file in the same folder is written, synced and renamed over the target, then the folder is synced.
/// An existing file keeps its mode, a new one gets 0600; where the file system refuses to change a mode, the file is
/// what that makes it, as long as that gives others than its owner no more. A symbolic link stays one: what it points
/// to is replaced. On failure the target is untouched, the temporary file is gone and the error names the path and the
/// reason.
Result<void, Error> writeFileAtomically(const std::filesystem::path& path, std::string_view bytes);

/// Reads a regular file whole. Anything else than a regular file, a file above `maximumSize`, and a file that changes
/// its size while it is read fail; the error names the path and the reason. Never blocks on a FIFO.
Result<std::string, Error> readFile(const std::filesystem::path& path, std::size_t maximumSize);

/// Creates a directory of mode 0700 with what is missing above it. An existing one is left as it is.
Result<void, Error> createPrivateDirectory(const std::filesystem::path& path);

}  // namespace velmora
