#pragma once

#include "base/Result.h"
#include "model/SSHHost.h"

#include <filesystem>
#include <vector>

namespace velmora {

/// Reads a file that holds a list of hosts: our own, one that machines share, or a backup. The error is that of reading
/// it (`readFile`, with `maximumHostListSize`) or of decoding it (`decodeHosts`).
Result<std::vector<SSHHost>, Error> readHostsFile(const std::filesystem::path& file);

}  // namespace velmora
