#include "update/Url.h"

#include <QUrl>

namespace velmora {

std::optional<std::string> parseUrl(std::string_view text) {
    const QUrl url(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())), QUrl::StrictMode);
    const bool needsHost = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (!url.isValid() || url.isRelative() || (needsHost && url.host().isEmpty())) {
        return std::nullopt;
    }
    return url.toEncoded().toStdString();
}

}  // namespace velmora
