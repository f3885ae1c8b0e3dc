#pragma once

#include <string>
#include <string_view>

namespace velmora {

/// The user's settings, a flat table. What is set is on disk at once; an unreadable store reads as empty and a failing
/// write is silent. Main thread.
class DefaultsStore {
public:
    DefaultsStore() = default;
    DefaultsStore(const DefaultsStore&) = delete;
    DefaultsStore& operator=(const DefaultsStore&) = delete;
    virtual ~DefaultsStore() = default;

    /// False when absent.
    [[nodiscard]] virtual bool boolean(std::string_view key) const = 0;
    /// Empty when absent.
    [[nodiscard]] virtual std::string string(std::string_view key) const = 0;
    [[nodiscard]] virtual bool contains(std::string_view key) const = 0;

    virtual void setBoolean(std::string_view key, bool value) = 0;
    virtual void setString(std::string_view key, std::string_view value) = 0;
    virtual void remove(std::string_view key) = 0;
};

}  // namespace velmora
