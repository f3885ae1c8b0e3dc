#pragma once

#include "platform/BundleTools.h"
#include "platform/DetachedLauncher.h"
#include "platform/HttpClient.h"
#include "update/UpdateAlert.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velmora::test {

/// Answers as a test says. A download copies a file.
class FakeHttpClient final : public HttpClient {
public:
    std::function<Result<HttpAnswer, Error>()> answer = [] { return Error{"Connection refused"}; };
    std::optional<std::filesystem::path> file;  ///< for a download with status 200
    std::vector<HttpRequest> requests;

    Result<HttpAnswer, Error> get(const HttpRequest& request, const Cancellation&) override {
        requests.push_back(request);
        return answer();
    }

    Result<HttpAnswer, Error> download(const HttpRequest& request, const std::filesystem::path& newFile,
                                       const HttpProgress& progress, const Cancellation&) override {
        requests.push_back(request);
        if (!file) {
            return answer();
        }
        std::filesystem::copy_file(*file, newFile);
        const auto size = std::filesystem::file_size(newFile);
        progress(size / 2, size);
        progress(size, size);
        return HttpAnswer{.status = 200, .body = {}};
    }
};

class RecordingLauncher final : public DetachedLauncher {
public:
    std::optional<Error> failure;
    std::vector<std::pair<std::string, std::vector<std::string>>> started;
    std::function<void()> whenStarted = [] {};

    Result<void, Error> start(const std::string& program, const std::vector<std::string>& arguments) override {
        started.emplace_back(program, arguments);
        whenStarted();
        if (failure) {
            return *failure;
        }
        return {};
    }
};

class RecordingAlert final : public UpdateAlert {
public:
    std::vector<std::pair<std::string, std::string>> shown;
    std::function<void()> dismiss;  ///< what the user does, of the last one

    void show(const std::string& message, const std::string& information, std::function<void()> dismissed) override {
        shown.emplace_back(message, information);
        dismiss = std::move(dismissed);
    }
};

/// Tools that look at nothing: the archive "expands" to what a test wants.
class FakeBundleTools final : public BundleTools {
public:
    std::function<ToolOutput(const std::filesystem::path& folder)> onExpand = [](const auto&) { return ToolOutput{}; };
    ToolOutput signature;

    ToolOutput expand(const std::filesystem::path&, const std::filesystem::path& folder) override {
        return onExpand(folder);
    }
    ToolOutput verifySignature(const std::filesystem::path&) override { return signature; }
    [[nodiscard]] std::string relaunchLines() const override { return "relaunch"; }
};

}  // namespace velmora::test
