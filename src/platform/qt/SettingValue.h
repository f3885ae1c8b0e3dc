#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

#include <string>
#include <string_view>

namespace velmora {

/// Any UTF-8 text, a key or a value.
[[nodiscard]] inline QString settingText(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

[[nodiscard]] inline std::string settingString(const QVariant& value) {
    // A comma outside quotation marks, written by hand, makes a list of it.
    const bool list = value.typeId() == QMetaType::QStringList;
    return (list ? value.toStringList().join(QStringLiteral(", ")) : value.toString()).toStdString();
}

}  // namespace velmora
