#include "sync/ReplacedHosts.h"

#include "base/AtomicFile.h"
#include "model/HostJson.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <unordered_set>

namespace velmora {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::system_clock;

bool isFromDayOf(const fs::path& file, Clock::time_point now) {
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 &&
           std::chrono::floor<std::chrono::days>(Clock::from_time_t(status.st_mtime)) ==
               std::chrono::floor<std::chrono::days>(now);
}

/// The file's date is compared with the program's clock, so it is taken from that clock too.
void setDate(const fs::path& file, Clock::time_point date) {
    const timespec time{.tv_sec = Clock::to_time_t(date), .tv_nsec = 0};
    std::ignore = ::utimensat(AT_FDCWD, file.c_str(), std::array{time, time}.data(), 0);
}

fs::path withSuffix(fs::path file, const char* suffix) {
    file += suffix;
    return file;
}

bool write(const fs::path& file, const std::vector<SSHHost>& hosts) {
    const auto json = encodeHosts(hosts);
    return json && writeFileAtomically(file, *json);
}

}  // namespace

std::vector<Uuid> removedIds(const std::vector<SSHHost>& current, const std::vector<SSHHost>& received) {
    std::unordered_set<Uuid> known;
    for (const auto& host : received) {
        known.insert(host.id);
    }
    std::vector<Uuid> removed;
    for (const auto& host : current) {
        if (known.insert(host.id).second) {
            removed.push_back(host.id);
        }
    }
    return removed;
}

fs::path replacedHostsFile(const fs::path& hostsFile) {
    return withSuffix(hostsFile, ".before-sync");
}

fs::path removedHostsFile(const fs::path& hostsFile) {
    return withSuffix(hostsFile, ".before-removal");
}

void keepReplacedHosts(const fs::path& hostsFile, const std::vector<SSHHost>& current,
                       const std::vector<SSHHost>& received, Clock::time_point now) {
    if (current.empty() || current == received) {
        return;
    }
    const auto firstOfDay = replacedHostsFile(hostsFile);
    if (!isFromDayOf(firstOfDay, now)) {
        if (write(firstOfDay, current)) {
            setDate(firstOfDay, now);
        }
    } else if (!removedIds(current, received).empty()) {
        std::ignore = write(removedHostsFile(hostsFile), current);
    }
}

}  // namespace velmora
