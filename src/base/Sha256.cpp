#include "base/Sha256.h"

#include "base/UniqueFd.h"

#include <QCryptographicHash>

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace velmora {

namespace {

Error systemError(const std::filesystem::path& path, int code) {
    return {path.string() + ": " + std::generic_category().message(code)};
}

QByteArrayView view(std::string_view bytes) {
    return {bytes.data(), static_cast<qsizetype>(bytes.size())};
}

}  // namespace

std::string sha256(std::string_view bytes) {
    return QCryptographicHash::hash(view(bytes), QCryptographicHash::Sha256).toHex().toStdString();
}

Result<std::string, Error> sha256OfFile(const std::filesystem::path& path, const Cancellation& cancellation) {
    const UniqueFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (!file) {
        return systemError(path, errno);
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    std::array<char, 65536> buffer{};
    while (!cancellation.isRequested()) {
        const auto count = ::read(file.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return systemError(path, errno);
        }
        if (count == 0) {
            return hash.result().toHex().toStdString();
        }
        hash.addData(view({buffer.data(), static_cast<std::size_t>(count)}));
    }
    return systemError(path, ECANCELED);
}

}  // namespace velmora
