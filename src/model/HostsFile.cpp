#include "model/HostsFile.h"

#include "base/AtomicFile.h"
#include "model/HostJson.h"

namespace velmora {

Result<std::vector<SSHHost>, Error> readHostsFile(const std::filesystem::path& file) {
    const auto bytes = readFile(file, maximumHostListSize);
    return bytes ? decodeHosts(*bytes) : bytes.error();
}

}  // namespace velmora
