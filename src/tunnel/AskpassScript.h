#pragma once

#include "base/UniqueFd.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

/// A script that answers ssh's question for a password, for as long as this object lives.
///
/// The file is readable by its owner alone from its first moment and has a name that nobody can guess. A shared lock on
/// it says that its owner is alive.
class AskpassScript final {
public:
    AskpassScript(AskpassScript&& other) noexcept;
    AskpassScript& operator=(AskpassScript&& other) noexcept;
    AskpassScript(const AskpassScript&) = delete;
    AskpassScript& operator=(const AskpassScript&) = delete;
    ~AskpassScript();

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    friend std::optional<AskpassScript> writeAskpassScript(const std::filesystem::path&, std::string_view);
    AskpassScript(std::filesystem::path path, UniqueFd lock);

    std::filesystem::path path_;
    UniqueFd lock_;
};

/// Writes a script that prints the password and a newline. Nothing when the folder does not allow it (silent: ssh then
/// reports that it could not authenticate).
[[nodiscard]] std::optional<AskpassScript> writeAskpassScript(const std::filesystem::path& directory,
                                                              std::string_view password);

/// What the script holds.
[[nodiscard]] std::string askpassScriptText(std::string_view password);

/// Deletes the scripts that a crashed run of this user left in the folder: those that no living process holds. Any
/// thread.
void removeAbandonedAskpassScripts(const std::filesystem::path& directory);

}  // namespace velmora
