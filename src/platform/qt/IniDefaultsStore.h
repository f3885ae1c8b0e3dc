#pragma once

#include "platform/DefaultsStore.h"

#include <QString>
#include <QVariant>

#include <filesystem>
#include <map>

namespace velmora {

/// The settings in one INI file. The file is made 0600 and missing directories 0700, on the first write. Each write
/// replaces the file as a whole, so that it is the old or the new one whatever happens, and keeps what others have
/// written to it meanwhile. No lock is taken: one that a crash left behind would hold the program up.
class IniDefaultsStore final : public DefaultsStore {
public:
    explicit IniDefaultsStore(std::filesystem::path file);

    [[nodiscard]] bool boolean(std::string_view key) const override;
    [[nodiscard]] std::string string(std::string_view key) const override;
    [[nodiscard]] bool contains(std::string_view key) const override;

    void setBoolean(std::string_view key, bool value) override;
    void setString(std::string_view key, std::string_view value) override;
    void remove(std::string_view key) override;

private:
    void change(const QString& key, const QVariant& value);
    void write();

    std::filesystem::path file_;
    std::map<QString, QVariant> values_;
    std::map<QString, QVariant> unwritten_;  ///< an invalid value removes the key
};

}  // namespace velmora
