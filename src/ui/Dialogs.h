#pragma once

#include "sync/FilePanels.h"

#include <QString>

#include <filesystem>
#include <functional>
#include <optional>

namespace velmora {

/// Everything that asks the user or tells them something in a window of its own. Each dialog brings the application to
/// the front, and stands over the window that the user works in. Main thread.
class Dialogs : public FilePanels {
public:
    struct Alert {
        QString message;
        QString informativeText;
    };
    struct Question {
        QString message;
        QString informativeText;
        QString acceptButton;  ///< does something that cannot be undone; beside it stands "Cancel"
    };

    /// An existing file, looked for in this folder first; nothing when the user cancels. Modal.
    virtual std::optional<std::filesystem::path> chooseFileIn(const QString& title,
                                                              const std::filesystem::path& folder) = 0;
    /// An existing folder or one that the user makes; nothing when the user cancels. Modal.
    virtual std::optional<std::filesystem::path> chooseFolder(const QString& title, const QString& message) = 0;

    /// Returns at once. Calls back when the user has closed the alert by its button "OK" or otherwise.
    virtual void alert(const Alert& alert, std::function<void()> dismissed = {}) = 0;
    /// Returns at once. Calls back with the answer; to close the dialog otherwise is to cancel.
    virtual void ask(const Question& question, std::function<void(bool accepted)> answered) = 0;
};

}  // namespace velmora
