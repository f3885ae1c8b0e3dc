#include "sync/FolderSync.h"

#include "base/AtomicFile.h"
#include "model/HostJson.h"
#include "model/HostsFile.h"

#include <chrono>
#include <string_view>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view folderKey = "syncFolderPath";
constexpr std::chrono::seconds pollInterval{5};

/// One look at the file's attributes, as exact as the file system keeps the time.
std::optional<fs::file_time_type> modificationDate(const fs::path& file) {
    std::error_code error;
    const auto date = fs::last_write_time(file, error);
    return error ? std::nullopt : std::optional(date);
}

/// The hosts in a file that had the given date before. A file that is being changed meanwhile counts as undecodable:
/// its beginning and its end may not belong together.
std::optional<std::vector<SSHHost>> readHosts(const fs::path& file, fs::file_time_type date) {
    auto hosts = readHostsFile(file);
    return hosts && modificationDate(file) == date ? std::optional(*std::move(hosts)) : std::nullopt;
}

fs::path withoutTrailingSeparator(const fs::path& folder) {
    return folder.has_filename() ? folder : folder.parent_path();
}

}  // namespace

FolderSync::FolderSync(Scheduler& scheduler, DefaultsStore& defaults) : scheduler_(scheduler), defaults_(defaults) {
    if (auto path = defaults_.string(folderKey); !path.empty()) {
        folder_ = withoutTrailingSeparator(std::move(path));
    }
}

std::optional<std::string> FolderSync::folderDisplayName() const {
    if (!folder_) {
        return std::nullopt;
    }
    return folder_->has_filename() ? folder_->filename().string() : folder_->string();
}

void FolderSync::setFolder(const fs::path& folder) {
    folder_ = withoutTrailingSeparator(folder);
    defaults_.setString(folderKey, folder_->string());
    lastModDate_.reset();
    startPolling();
}

void FolderSync::disable() {
    pollTimer_.reset();
    folder_.reset();
    lastModDate_.reset();
    defaults_.remove(folderKey);
}

void FolderSync::push(const std::vector<SSHHost>& hosts) {
    if (!folder_) {
        return;
    }
    const auto json = encodeHosts(hosts);
    if (!json) {
        return;  // silent: the others keep what they have
    }
    std::ignore = writeFileAtomically(syncFile(), *json);  // silent: the file stays as it was
    lastModDate_ = modificationDate(syncFile());           // so that the next poll does not take our own write for news
}

std::optional<std::vector<SSHHost>> FolderSync::pull() const {
    if (!folder_) {
        return std::nullopt;
    }
    const auto date = modificationDate(syncFile());
    return date ? readHosts(syncFile(), *date) : std::nullopt;
}

void FolderSync::startPollingIfEnabled() {
    if (isEnabled()) {
        startPolling();
    }
}

void FolderSync::startPolling() {
    pollTimer_ = scheduler_.every(pollInterval, [this] { checkForExternalChange(); });
}

void FolderSync::checkForExternalChange() {
    if (!folder_) {
        return;
    }
    const auto date = modificationDate(syncFile());
    if (!date || date == lastModDate_) {
        return;
    }
    lastModDate_ = date;  // before reading: what cannot be decoded is not tried again until it changes
    auto hosts = readHosts(syncFile(), *date);
    if (hosts && onChange_) {
        onChange_(*std::move(hosts));
    }
}

}  // namespace velmora
