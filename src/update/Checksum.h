#pragma once

#include <string_view>

namespace velmora {

/// Whether two hexadecimal texts are the same, in whatever case their letters are.
[[nodiscard]] bool isSameChecksum(std::string_view left, std::string_view right);

}  // namespace velmora
