#include "platform/qt/QtDefaultsStore.h"

#include "platform/qt/SettingValue.h"

#include <utility>

namespace velmora {

QtDefaultsStore::QtDefaultsStore(std::unique_ptr<QSettings> settings) : settings_(std::move(settings)) {}

bool QtDefaultsStore::boolean(std::string_view key) const {
    return settings_->value(settingText(key)).toBool();
}

std::string QtDefaultsStore::string(std::string_view key) const {
    return settingString(settings_->value(settingText(key)));
}

bool QtDefaultsStore::contains(std::string_view key) const {
    return settings_->contains(settingText(key));
}

void QtDefaultsStore::setBoolean(std::string_view key, bool value) {
    settings_->setValue(settingText(key), value);
    write();
}

void QtDefaultsStore::setString(std::string_view key, std::string_view value) {
    settings_->setValue(settingText(key), settingText(value));
    write();
}

void QtDefaultsStore::remove(std::string_view key) {
    settings_->remove(settingText(key));
    write();
}

void QtDefaultsStore::write() {
    settings_->sync();  // a failure is silent: the value holds until the program ends
}

}  // namespace velmora
