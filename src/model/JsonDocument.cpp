#include "model/JsonDocument.h"

#include <boost/json/parser.hpp>

#include <cmath>
#include <utility>

namespace velmora {

namespace json = boost::json;

namespace {

constexpr std::size_t deepestNesting = 64;

}  // namespace

Result<JsonDocument, Error> JsonDocument::parse(std::string_view text, std::size_t maximumSize) {
    if (text.size() > maximumSize) {
        return Error{"larger than " + std::to_string(maximumSize) + " bytes"};
    }
    auto memory = std::make_unique<json::monotonic_resource>(text.size() + 1024);
    json::parse_options options;
    options.max_depth = deepestNesting;
    json::parser parser(memory.get(), options);
    boost::system::error_code error;
    parser.write(text.data(), text.size(), error);
    if (error) {
        return Error{"not JSON: " + error.message()};
    }
    auto value = parser.release();
    return JsonDocument(std::move(memory), std::move(value));
}

std::optional<std::string_view> stringFrom(const json::value& value) {
    const auto* text = value.if_string();
    return text != nullptr ? std::optional(std::string_view(text->data(), text->size())) : std::nullopt;
}

std::optional<bool> booleanFrom(const json::value& value) {
    const auto* flag = value.if_bool();
    return flag != nullptr ? std::optional(*flag) : std::nullopt;
}

std::optional<std::int64_t> integerFrom(const json::value& value) {
    if (const auto* integer = value.if_int64()) {
        return *integer;
    }
    constexpr double limit = 9223372036854775808.0;  // 2^63: what was written as more may have been rounded to it
    const auto* number = value.if_double();
    if (number == nullptr || std::trunc(*number) != *number || std::abs(*number) >= limit) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(*number);
}

}  // namespace velmora
