#pragma once

#include "base/Result.h"

#include <cstdint>
#include <filesystem>

namespace velmora {

/// Fails when a file system cannot take so many bytes and keep a little for others.
Result<void, Error> requireRoom(const std::filesystem::path& folder, std::uint64_t bytes);

}  // namespace velmora
