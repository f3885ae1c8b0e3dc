#include "platform/qt/QtHttpClient.h"

#include "base/DiskRoom.h"
#include "base/UniqueFd.h"
#include "platform/qt/HttpTransfer.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// A file that is written from its beginning. It goes again unless it is kept.
class NewFile final {
public:
    explicit NewFile(const fs::path& path)
        : path_(path),
          fd_(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR)),
          error_(fd_ ? 0 : errno),
          kept_(!fd_) {}
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        if (!kept_) {
            ::unlink(path_.c_str());
        }
    }

    Result<void, Error> append(std::string_view bytes) {
        while (fd_ && !bytes.empty()) {
            const auto count = ::write(fd_.get(), bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count < 0) {
                error_ = errno;
                break;
            }
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        return state();
    }

    [[nodiscard]] Result<void, Error> state() const {
        if (error_ != 0) {
            return Error{path_.string() + ": " + std::generic_category().message(error_)};
        }
        return {};
    }

    void keep() { kept_ = true; }

private:
    fs::path path_;
    UniqueFd fd_;
    int error_ = 0;
    bool kept_ = false;
};

bool holdsBody(const Result<HttpAnswer, Error>& answer) {
    constexpr int statusOk = 200;
    return answer && answer->status.value_or(statusOk) == statusOk;
}

}  // namespace

Result<HttpAnswer, Error> QtHttpClient::get(const HttpRequest& request, const Cancellation& cancellation) {
    std::string body;
    HttpTransfer transfer(request,
                          {.begin = [](auto) { return Result<void, Error>(); },
                           .take =
                               [&body](std::string_view bytes) {
                                   body += bytes;
                                   return Result<void, Error>();
                               },
                           .progress = [](auto, auto) {}},
                          cancellation);
    auto answer = transfer.run();
    if (holdsBody(answer)) {
        answer->body = std::move(body);
    }
    return answer;
}

Result<HttpAnswer, Error> QtHttpClient::download(const HttpRequest& request, const fs::path& newFile,
                                                 const HttpProgress& progress, const Cancellation& cancellation) {
    NewFile file(newFile);
    if (const auto opened = file.state(); !opened) {
        return opened.error();
    }
    HttpTransfer transfer(
        request,
        {.begin = [&newFile](auto size) { return requireRoom(newFile.parent_path(), size.value_or(0)); },
         .take = [&file](std::string_view bytes) { return file.append(bytes); },
         .progress = progress},
        cancellation);
    auto answer = transfer.run();
    if (holdsBody(answer)) {
        file.keep();
    }
    return answer;
}

}  // namespace velmora
