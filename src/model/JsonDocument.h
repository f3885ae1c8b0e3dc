#pragma once

#include "base/Result.h"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/value.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

/// A parsed JSON text. Of a repeated key the last counts.
class JsonDocument final {
public:
    /// Fails on anything that is not one JSON value, on invalid UTF-8, on nesting beyond 64 levels and on more than
    /// `maximumSize` bytes; the error says which.
    static Result<JsonDocument, Error> parse(std::string_view text, std::size_t maximumSize);

    /// Valid as long as the document.
    [[nodiscard]] const boost::json::value& root() const { return root_; }

private:
    using Memory = std::unique_ptr<boost::json::monotonic_resource>;

    JsonDocument(Memory memory, boost::json::value root) : memory_(std::move(memory)), root_(std::move(root)) {}

    Memory memory_;  // outlives the values in it
    boost::json::value root_;
};

// The value when it is of the asked type; nothing is converted.

[[nodiscard]] std::optional<std::string_view> stringFrom(const boost::json::value& value);
[[nodiscard]] std::optional<bool> booleanFrom(const boost::json::value& value);
/// Also a number written with a fraction or an exponent, as long as it is a whole one of 64 bits.
[[nodiscard]] std::optional<std::int64_t> integerFrom(const boost::json::value& value);

}  // namespace velmora
