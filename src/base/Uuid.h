#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

/// The identity of a host or a rule: 128 bits, written as 36 characters in 8-4-4-4-12 groups.
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    bool operator==(const Uuid&) const = default;
    std::strong_ordering operator<=>(const Uuid& other) const {
        return std::memcmp(bytes.data(), other.bytes.data(), bytes.size()) <=> 0;
    }

    /// A fresh version 4 identifier from the system's entropy; nobody can guess it.
    static Uuid random();

    /// Reads the canonical text, in either case. Nothing else is an identifier.
    static std::optional<Uuid> parse(std::string_view text);

    /// The canonical text in upper case.
    [[nodiscard]] std::string toString() const;
};

}  // namespace velmora

template <>
struct std::hash<velmora::Uuid> {
    std::size_t operator()(const velmora::Uuid& id) const noexcept {
        std::size_t value = 0;
        std::memcpy(&value, id.bytes.data(), sizeof value);
        return value;
    }
};
