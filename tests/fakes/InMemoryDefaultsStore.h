#pragma once

#include "platform/DefaultsStore.h"

#include <map>
#include <string>
#include <string_view>
#include <variant>

namespace velmora {

class InMemoryDefaultsStore final : public DefaultsStore {
public:
    [[nodiscard]] bool boolean(std::string_view key) const override {
        const auto* value = find<bool>(key);
        return value != nullptr && *value;
    }
    [[nodiscard]] std::string string(std::string_view key) const override {
        const auto* value = find<std::string>(key);
        return value != nullptr ? *value : std::string();
    }
    [[nodiscard]] bool contains(std::string_view key) const override { return values_.contains(std::string(key)); }

    void setBoolean(std::string_view key, bool value) override { values_[std::string(key)] = value; }
    void setString(std::string_view key, std::string_view value) override {
        values_[std::string(key)] = std::string(value);
    }
    void remove(std::string_view key) override { values_.erase(std::string(key)); }

private:
    template <typename T>
    [[nodiscard]] const T* find(std::string_view key) const {
        const auto entry = values_.find(std::string(key));
        return entry != values_.end() ? std::get_if<T>(&entry->second) : nullptr;
    }

    std::map<std::string, std::variant<bool, std::string>> values_;
};

}  // namespace velmora
