#pragma once

#include "platform/HttpClient.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

/// One request from its first byte to its last, on the thread that made it.
class HttpTransfer final : public QObject {
public:
    struct Receiver {
        std::function<Result<void, Error>(std::optional<std::uint64_t> size)> begin;  ///< before the first bytes
        std::function<Result<void, Error>(std::string_view bytes)> take;
        HttpProgress progress;
    };

    HttpTransfer(const HttpRequest& request, Receiver receiver, const Cancellation& cancellation);
    ~HttpTransfer() override;

    /// Waits until the answer is complete. The receiver gets the body of an answer with status 200 or none.
    Result<HttpAnswer, Error> run();

private:
    void readBody();
    void beginBody();
    void finishReply();
    void tellProgress();
    void fail(const std::string& message);
    [[nodiscard]] std::optional<int> status() const;
    [[nodiscard]] std::string networkError() const;

    const HttpRequest& request_;
    Receiver receiver_;
    const Cancellation& cancellation_;
    QEventLoop loop_;
    QNetworkAccessManager manager_;
    std::unique_ptr<QNetworkReply> reply_;
    QTimer idleTimer_;
    QTimer totalTimer_;
    QTimer cancellationTimer_;
    QElapsedTimer sinceProgress_;
    bool begun_ = false;
    std::optional<std::uint64_t> size_;
    std::uint64_t received_ = 0;
    std::optional<Error> error_;
};

}  // namespace velmora
