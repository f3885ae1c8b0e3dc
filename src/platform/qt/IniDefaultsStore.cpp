#include "platform/qt/IniDefaultsStore.h"

#include "base/AtomicFile.h"
#include "platform/qt/SettingValue.h"
#include "platform/qt/SettingsText.h"

#include <QSettings>
#include <QTemporaryDir>

#include <cstddef>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

constexpr std::size_t largest = std::size_t{64} << 20;

QString text(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

/// What Qt reads in a file that holds nothing dangerous.
std::map<QString, QVariant> harmless(const std::filesystem::path& file) {
    const QSettings settings(text(file), QSettings::IniFormat);
    std::map<QString, QVariant> values;
    const QStringList keys = settings.allKeys();
    for (const QString& key : keys) {
        if (key.isEmpty()) {
            continue;
        }
        const QVariant value = settings.value(key);
        // We have no lists, and Qt cannot read back each that it writes, nor a half of a character.
        const bool isText = isSettingList(value) || value.typeId() == QMetaType::QString;
        values[key] = isText ? settingText(settingString(value)) : value;
    }
    return values;
}

/// What Qt reads back as it is. In a text it would leave out a byte order mark that comes first or behind line breaks.
QVariant writable(const QVariant& value) {
    const bool isAtRisk = value.typeId() == QMetaType::QString && value.toString().contains(QChar::ByteOrderMark);
    return isAtRisk ? value.toString().toUtf8() : value;
}

/// What can be read of a file; lines that cannot are left out.
std::map<QString, QVariant> readable(const std::filesystem::path& file) {
    const auto text = readFile(file, largest);
    if (!text) {
        return {};
    }
    const auto kept = withoutObjects(*text);
    if (kept == *text) {
        return harmless(file);
    }
    const QTemporaryDir scratch;
    const std::filesystem::path copy = scratch.filePath(QStringLiteral("harmless")).toStdString();
    if (!scratch.isValid() || !writeFileAtomically(copy, kept)) {
        return {};
    }
    return harmless(copy);
}

}  // namespace

IniDefaultsStore::IniDefaultsStore(std::filesystem::path file) : file_(std::move(file)), values_(readable(file_)) {}

bool IniDefaultsStore::boolean(std::string_view key) const {
    const auto entry = values_.find(settingText(key));
    return entry != values_.end() && entry->second.toBool();
}

std::string IniDefaultsStore::string(std::string_view key) const {
    const auto entry = values_.find(settingText(key));
    return entry != values_.end() ? settingString(entry->second) : std::string();
}

bool IniDefaultsStore::contains(std::string_view key) const {
    return values_.contains(settingText(key));
}

void IniDefaultsStore::setBoolean(std::string_view key, bool value) {
    values_[settingText(key)] = value;
    change(settingText(key), value);
}

void IniDefaultsStore::setString(std::string_view key, std::string_view value) {
    values_[settingText(key)] = settingText(value);
    change(settingText(key), settingText(value));
}

void IniDefaultsStore::remove(std::string_view key) {
    values_.erase(settingText(key));
    change(settingText(key), {});
}

void IniDefaultsStore::change(const QString& key, const QVariant& value) {
    unwritten_[key] = value;
    write();
}

/// The format is Qt's own, so Qt reads a copy of the file and writes another one, which then takes the file's place. Qt
/// would change the copy as well, but after a line that it cannot read it no longer tells whether that worked.
void IniDefaultsStore::write() {
    const QTemporaryDir scratch;
    if (!scratch.isValid()) {
        return;  // silent: the value holds until the program ends
    }
    const std::filesystem::path copy = scratch.filePath(QStringLiteral("before")).toStdString();
    const std::filesystem::path written = scratch.filePath(QStringLiteral("after")).toStdString();
    std::error_code error;
    if (const auto current = readFile(file_, largest)) {
        if (!writeFileAtomically(copy, *current)) {
            return;
        }
    } else if (std::filesystem::exists(file_, error) || error) {
        return;  // what stands in it must not be lost; the next change tries again
    }
    if (!writeFileAtomically(written, {})) {  // Qt makes none when there is nothing left to write
        return;
    }
    {
        QSettings settings(text(written), QSettings::IniFormat);
        for (const auto& [key, value] : readable(copy)) {
            settings.setValue(key, writable(value));
        }
        for (const auto& [key, value] : unwritten_) {
            if (value.isValid()) {
                settings.setValue(key, writable(value));
            } else {
                settings.remove(key);
            }
        }
        settings.sync();
        if (settings.status() != QSettings::NoError) {
            return;
        }
    }
    const auto changed = readFile(written, largest);
    if (changed && createPrivateDirectory(file_.parent_path()) && writeFileAtomically(file_, *changed)) {
        unwritten_.clear();
    }
}

}  // namespace velmora
