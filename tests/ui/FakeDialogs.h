#pragma once

#include "ui/Dialogs.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmora {

/// Answers as a test says, and keeps what it was asked.
class FakeDialogs final : public Dialogs {
public:
    /// What the user chooses, one after the other; nothing left means that they cancel.
    std::deque<std::filesystem::path> choices;
    /// Title, and message or proposed name or folder, of each file dialog.
    std::vector<std::pair<std::string, std::string>> panels;
    std::vector<Alert> alerts;
    std::vector<Question> questions;

    void dismissAlert() { std::exchange(dismissed_, {})(); }
    void answer(bool accepted) { std::exchange(answered_, {})(accepted); }

    std::optional<std::filesystem::path> chooseFileToOpen(std::string_view title, std::string_view message) override {
        return choose(title, message);
    }
    std::optional<std::filesystem::path> chooseFileToSave(std::string_view title, std::string_view name) override {
        return choose(title, name);
    }
    std::optional<std::filesystem::path> chooseFileIn(const QString& title,
                                                      const std::filesystem::path& folder) override {
        return choose(title.toStdString(), folder.string());
    }
    std::optional<std::filesystem::path> chooseFolder(const QString& title, const QString& message) override {
        return choose(title.toStdString(), message.toStdString());
    }
    void alert(const Alert& alert, std::function<void()> dismissed) override {
        alerts.push_back(alert);
        dismissed_ = dismissed ? std::move(dismissed) : [] {};
    }
    void ask(const Question& question, std::function<void(bool)> answered) override {
        questions.push_back(question);
        answered_ = std::move(answered);
    }

private:
    std::optional<std::filesystem::path> choose(std::string_view title, std::string_view words) {
        panels.emplace_back(title, words);
        if (choices.empty()) {
            return std::nullopt;
        }
        auto choice = choices.front();
        choices.pop_front();
        return choice;
    }

    std::function<void()> dismissed_;
    std::function<void(bool)> answered_;
};

}  // namespace velmora
