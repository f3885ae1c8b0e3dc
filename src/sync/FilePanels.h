#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace velmora {

/// Asks the user for a file. Modal; any file may be chosen. Main thread.
class FilePanels {
public:
    FilePanels() = default;
    FilePanels(const FilePanels&) = delete;
    FilePanels& operator=(const FilePanels&) = delete;
    virtual ~FilePanels() = default;

    /// An existing file; nothing when the user cancels.
    virtual std::optional<std::filesystem::path> chooseFileToOpen(std::string_view title, std::string_view message) = 0;
    /// A place for a file, with a name proposed; nothing when the user cancels.
    virtual std::optional<std::filesystem::path> chooseFileToSave(std::string_view title,
                                                                  std::string_view suggestedName) = 0;
};

}  // namespace velmora
