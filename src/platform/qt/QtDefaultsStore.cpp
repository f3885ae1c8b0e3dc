#include "platform/qt/QtDefaultsStore.h"

#include <QString>
#include <QStringList>
#include <QVariant>

#include <sys/stat.h>

#include <utility>

namespace velmora {

namespace {

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

/// What is created meanwhile is the user's alone, from its first moment.
class PrivateCreation final {
public:
    PrivateCreation() : previous_(::umask(S_IRWXG | S_IRWXO)) {}
    PrivateCreation(const PrivateCreation&) = delete;
    PrivateCreation& operator=(const PrivateCreation&) = delete;
    ~PrivateCreation() { ::umask(previous_); }

private:
    mode_t previous_;
};

}  // namespace

QtDefaultsStore::QtDefaultsStore(std::unique_ptr<QSettings> settings) : settings_(std::move(settings)) {}

std::unique_ptr<QtDefaultsStore> QtDefaultsStore::iniFile(const std::filesystem::path& file) {
    return std::make_unique<QtDefaultsStore>(
        std::make_unique<QSettings>(QString::fromStdString(file.string()), QSettings::IniFormat));
}

bool QtDefaultsStore::boolean(std::string_view key) const {
    return settings_->value(text(key)).toBool();
}

std::string QtDefaultsStore::string(std::string_view key) const {
    const QVariant value = settings_->value(text(key));
    // A comma outside quotation marks, written by hand, makes a list of it.
    const bool list = value.typeId() == QMetaType::QStringList;
    return (list ? value.toStringList().join(QStringLiteral(", ")) : value.toString()).toStdString();
}

bool QtDefaultsStore::contains(std::string_view key) const {
    return settings_->contains(text(key));
}

void QtDefaultsStore::setBoolean(std::string_view key, bool value) {
    settings_->setValue(text(key), value);
    write();
}

void QtDefaultsStore::setString(std::string_view key, std::string_view value) {
    settings_->setValue(text(key), text(value));
    write();
}

void QtDefaultsStore::remove(std::string_view key) {
    settings_->remove(text(key));
    write();
}

void QtDefaultsStore::write() {
    const PrivateCreation privately;
    settings_->sync();  // a failure is silent: the value holds until the program ends
}

}  // namespace velmora
