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

/// A comma outside quotation marks, written by hand, makes a list of a text; its items are variants where one begins
/// with an @.
[[nodiscard]] inline bool isSettingList(const QVariant& value) {
    return value.typeId() == QMetaType::QStringList || value.typeId() == QMetaType::QVariantList;
}

[[nodiscard]] inline std::string settingString(const QVariant& value) {
    return (isSettingList(value) ? value.toStringList().join(QStringLiteral(", ")) : value.toString()).toStdString();
}

}  // namespace velmora
