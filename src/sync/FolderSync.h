#pragma once

#include "model/SSHHost.h"
#include "platform/DefaultsStore.h"
#include "platform/Scheduler.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velmora {

/// The name of the file that machines share, directly inside the chosen folder.
inline constexpr auto syncFileName = "velmora-sync.json";

/// Shares the host list with other machines through one file in a folder that some outside service keeps in step.
/// The last writer wins. Every failure is silent: a folder or a file that cannot be used changes nothing.
///
/// Main thread only. Files are read and written on it, so a folder that hangs makes the caller wait.
class FolderSync final {
public:
    using ChangeHandler = std::function<void(std::vector<SSHHost>)>;

    /// Takes the folder from the settings. Does not start polling and touches no file. Both outlive this object.
    FolderSync(Scheduler& scheduler, DefaultsStore& defaults);
    FolderSync(const FolderSync&) = delete;
    FolderSync& operator=(const FolderSync&) = delete;
    ~FolderSync() = default;

    /// Who gets the hosts of a file that somebody else has changed. May call back, also to disable.
    void setOnChange(ChangeHandler handler) { onChange_ = std::move(handler); }

    [[nodiscard]] bool isEnabled() const { return folder_.has_value(); }
    /// The chosen folder; nothing while disabled.
    [[nodiscard]] const std::optional<std::filesystem::path>& folder() const { return folder_; }
    /// The folder's own name; nothing while disabled.
    [[nodiscard]] std::optional<std::string> folderDisplayName() const;

    /// Remembers the folder in the settings and polls it from now on. Reads and writes no file.
    void setFolder(const std::filesystem::path& folder);
    /// Stops polling and forgets the folder. The file stays.
    void disable();

    /// Writes the hosts for the others to find; nothing while disabled.
    void push(const std::vector<SSHHost>& hosts);
    /// The hosts in the file; nothing while disabled and when it cannot be read and decoded whole.
    [[nodiscard]] std::optional<std::vector<SSHHost>> pull() const;

    /// Looks at the file every five seconds, for the first time in five.
    void startPollingIfEnabled();

private:
    using FileTime = std::filesystem::file_time_type;

    void startPolling();
    void checkForExternalChange();
    [[nodiscard]] std::filesystem::path syncFile() const { return *folder_ / syncFileName; }

    Scheduler& scheduler_;
    DefaultsStore& defaults_;
    ChangeHandler onChange_;
    std::optional<std::filesystem::path> folder_;
    std::optional<FileTime> lastModDate_;  ///< of the file as we last wrote or read it; nothing is unknown
    Scheduler::TimerHandle pollTimer_;
};

}  // namespace velmora
