#include "platform/qt/HttpTransfer.h"

#include "base/Localized.h"

#include <QNetworkRequest>
#include <QSslError>
#include <QUrl>

#include <array>
#include <utility>

namespace velmora {

namespace {

constexpr qint64 readBuffer = qint64{256} * 1024;
constexpr auto cancellationInterval = std::chrono::milliseconds(100);
constexpr qint64 progressInterval = 100;  // milliseconds
constexpr int mostRedirects = 10;
constexpr int statusOk = 200;

bool isRedirect(int status) {
    constexpr int firstRedirect = 300;
    constexpr int behindRedirects = 400;
    return status >= firstRedirect && status < behindRedirects;
}

QNetworkRequest makeRequest(const HttpRequest& request) {
    QNetworkRequest made(QUrl::fromEncoded(QByteArray::fromStdString(request.url)));
    made.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    made.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    made.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    made.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    made.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    // The next version of HTTP takes in more than the buffer holds.
    made.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    made.setMaximumRedirectsAllowed(mostRedirects);
    made.setRawHeader("Accept-Encoding", "identity");  // what is counted and written is what was sent
    made.setRawHeader("Cache-Control", "no-cache");
    made.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Velmora"));
    return made;
}

}  // namespace

HttpTransfer::HttpTransfer(const HttpRequest& request, Receiver receiver, const Cancellation& cancellation)
    : request_(request), receiver_(std::move(receiver)), cancellation_(cancellation) {
    manager_.setAutoDeleteReplies(false);
    idleTimer_.setSingleShot(true);
    totalTimer_.setSingleShot(true);
    const auto timedOut = [this] { fail(localized("velmora::HttpTransfer", "The request timed out.")); };
    connect(&idleTimer_, &QTimer::timeout, this, timedOut);
    connect(&totalTimer_, &QTimer::timeout, this, timedOut);
    connect(&cancellationTimer_, &QTimer::timeout, this, [this] {
        if (cancellation_.isRequested()) {
            fail(localized("velmora::HttpTransfer", "The request was cancelled."));
        }
    });
}

HttpTransfer::~HttpTransfer() {
    if (reply_) {
        reply_->disconnect(this);
    }
}

Result<HttpAnswer, Error> HttpTransfer::run() {
    reply_.reset(manager_.get(makeRequest(request_)));
    reply_->setReadBufferSize(readBuffer);
    connect(reply_.get(), &QNetworkReply::readyRead, this, &HttpTransfer::readBody);
    connect(reply_.get(), &QNetworkReply::finished, this, &HttpTransfer::finishReply);
    connect(reply_.get(), &QNetworkReply::redirected, this, [this] { idleTimer_.start(); });
    idleTimer_.start(request_.idleLimit);
    if (request_.totalLimit.count() > 0) {
        totalTimer_.start(request_.totalLimit);
    }
    cancellationTimer_.start(cancellationInterval);
    sinceProgress_.start();
    if (reply_->isFinished()) {
        finishReply();
    } else {
        loop_.exec();
    }
    if (error_) {
        return *error_;
    }
    return HttpAnswer{.status = status(), .body = {}};
}

std::optional<int> HttpTransfer::status() const {
    const auto value = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    const bool isHttp = reply_->url().scheme().startsWith(QLatin1String("http"));  // Qt has a status for files, too
    return isHttp && value.isValid() ? std::optional(value.toInt()) : std::nullopt;
}

void HttpTransfer::readBody() {
    idleTimer_.start();
    const int code = status().value_or(statusOk);
    if (isRedirect(code)) {
        reply_->readAll();
        return;
    }
    if (code != statusOk) {
        loop_.quit();  // the status is all that anybody wants to know
        return;
    }
    beginBody();
    std::array<char, 65536> buffer{};
    while (!error_) {
        const auto count = reply_->read(buffer.data(), buffer.size());
        if (count <= 0) {
            break;
        }
        received_ += static_cast<std::uint64_t>(count);
        if (received_ > request_.largestBody) {
            fail(filled(localized("velmora::HttpTransfer", "The answer is larger than %1 bytes."),
                        {std::to_string(request_.largestBody)}));
            return;
        }
        if (const auto taken = receiver_.take({buffer.data(), static_cast<std::size_t>(count)}); !taken) {
            fail(taken.error().message);
        }
    }
    tellProgress();
}

void HttpTransfer::beginBody() {
    if (std::exchange(begun_, true)) {
        return;
    }
    bool isNumber = false;
    const auto length = reply_->header(QNetworkRequest::ContentLengthHeader).toULongLong(&isNumber);
    if (isNumber) {
        size_ = length;
    }
    if (size_.value_or(0) > request_.largestBody) {
        fail(filled(localized("velmora::HttpTransfer", "The answer is larger than %1 bytes."),
                    {std::to_string(request_.largestBody)}));
    } else if (const auto ready = receiver_.begin(size_); !ready) {
        fail(ready.error().message);
    }
}

void HttpTransfer::tellProgress() {
    if (!error_ && sinceProgress_.elapsed() >= progressInterval) {
        sinceProgress_.restart();
        receiver_.progress(received_, size_);
    }
}

void HttpTransfer::finishReply() {
    if (error_) {
        return;
    }
    const int code = status().value_or(statusOk);
    if (code != statusOk && !isRedirect(code)) {
        loop_.quit();
        return;
    }
    if (reply_->error() != QNetworkReply::NoError) {
        fail(networkError());
        return;
    }
    if (code == statusOk) {
        readBody();
        if (!error_ && size_ && received_ != *size_) {
            fail(localized("velmora::HttpTransfer", "The connection was lost before the answer was complete."));
        }
    }
    if (!error_ && code == statusOk) {
        receiver_.progress(received_, size_);
    }
    loop_.quit();
}

std::string HttpTransfer::networkError() const {
    return reply_->errorString().toStdString();
}

void HttpTransfer::fail(const std::string& message) {
    if (!error_) {
        error_ = Error{message};
    }
    loop_.quit();
}

}  // namespace velmora
