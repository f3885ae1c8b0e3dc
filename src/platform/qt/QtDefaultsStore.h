#pragma once

#include "platform/DefaultsStore.h"

#include <QSettings>

#include <memory>

namespace velmora {

/// The settings in what the system has for them, as QSettings knows it.
class QtDefaultsStore final : public DefaultsStore {
public:
    explicit QtDefaultsStore(std::unique_ptr<QSettings> settings);

    [[nodiscard]] bool boolean(std::string_view key) const override;
    [[nodiscard]] std::string string(std::string_view key) const override;
    [[nodiscard]] bool contains(std::string_view key) const override;

    void setBoolean(std::string_view key, bool value) override;
    void setString(std::string_view key, std::string_view value) override;
    void remove(std::string_view key) override;

private:
    void write();

    std::unique_ptr<QSettings> settings_;
};

}  // namespace velmora
