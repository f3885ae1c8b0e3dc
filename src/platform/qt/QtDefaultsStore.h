#pragma once

#include "platform/DefaultsStore.h"

#include <QSettings>

#include <filesystem>
#include <memory>

namespace velmora {

/// The settings in whatever QSettings keeps them in.
class QtDefaultsStore final : public DefaultsStore {
public:
    explicit QtDefaultsStore(std::unique_ptr<QSettings> settings);

    /// One INI file. The file is made 0600 and missing directories 0700, on the first write.
    static std::unique_ptr<QtDefaultsStore> iniFile(const std::filesystem::path& file);

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
