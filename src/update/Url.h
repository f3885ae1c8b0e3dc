#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velmora {

/// The address in the form that it is fetched in; none when the text is not a whole URL.
[[nodiscard]] std::optional<std::string> parseUrl(std::string_view text);

}  // namespace velmora
