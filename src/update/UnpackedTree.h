#pragma once

#include "base/Result.h"
#include "update/ArchiveListing.h"

#include <filesystem>
#include <optional>

namespace velmora {

/// Checks what a program has expanded against what the archive lists: nothing else may be there, everything is ours,
/// and no file has a second name. Then takes away every right of others to write, and set-user-id bits.
/// The error names the first thing that is wrong.
Result<void, Error> secureUnpackedTree(const std::filesystem::path& folder, const ArchiveListing& listing);

/// The first folder, by name, directly in this one whose extension is "app".
[[nodiscard]] std::optional<std::filesystem::path> findBundle(const std::filesystem::path& folder);

}  // namespace velmora
