#pragma once

#include "base/Result.h"
#include "model/SSHHost.h"

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

namespace velmora {

/// Why a Core Tunnel backup was refused.
enum class ImportError : std::uint8_t { invalidFile };

/// What the user reads.
[[nodiscard]] std::string_view description(ImportError error);

/// Turns the backups of Core Tunnel (`.coretunnel`, JSON inside) into hosts.
namespace CoreTunnelImporter {

/// The hosts in a backup, in its order, each with a fresh id. Required keys must be there, and every known key must be
/// of its type; optional ones may be missing or null; unknown ones are ignored. Size, nesting and encoding have the
/// limits of our own host lists. Pure.
Result<std::vector<SSHHost>, ImportError> decode(std::string_view bytes);

/// The same from a file. The error is the system's when it cannot be read, and else that of `decode`, in words.
Result<std::vector<SSHHost>, Error> importHosts(const std::filesystem::path& file);

}  // namespace CoreTunnelImporter

}  // namespace velmora
