#pragma once

#include "platform/ActivationPolicy.h"
#include "ui/Dialogs.h"

#include <QMessageBox>

#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

class QFileDialog;

namespace velmora {

/// The dialogs of the platform. Main thread.
class SystemDialogs final : public Dialogs {
public:
    explicit SystemDialogs(ActivationPolicy& policy) : policy_(policy) {}

    std::optional<std::filesystem::path> chooseFileToOpen(std::string_view title, std::string_view message) override;
    std::optional<std::filesystem::path> chooseFileToSave(std::string_view title,
                                                          std::string_view suggestedName) override;
    std::optional<std::filesystem::path> chooseFileIn(const QString& title,
                                                      const std::filesystem::path& folder) override;
    std::optional<std::filesystem::path> chooseFolder(const QString& title, const QString& message) override;
    void alert(const Alert& alert, std::function<void()> dismissed) override;
    void ask(const Question& question, std::function<void(bool accepted)> answered) override;

private:
    [[nodiscard]] std::optional<std::filesystem::path> choose(QFileDialog& dialog);
    void show(QMessageBox& box);

    ActivationPolicy& policy_;
};

}  // namespace velmora
